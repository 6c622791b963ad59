// SPDX-License-Identifier: Apache-2.0
// The first objects, through the whole chain: manager, agent, module, core library, camera process.
#include <fstream>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "camera_agent.h"
#include "golden_walk.h"
#include "object_oids.h"

namespace {

using namespace harness;

/** A camera with an identity and nothing else. */
CameraFile cameraWith(const std::string &model, const std::string &firmware) {
    const nlohmann::json information = {
        {"model", model}, {"firmware", firmware}, {"hardware", "B7"}, {"serial", "SN0042"}};
    const nlohmann::json services = {{"device_information", {{"targets", {information}}}}};
    return CameraFile(services);
}

std::string answer(Manager &manager, const char *oid) {
    const Result result = manager.get(oid);
    if (!result.ok() || result.single().type != Type::Octets) {
        ADD_FAILURE() << result;
        return "";
    }
    return result.single().octets;
}

} // namespace

TEST(FirstRequest, TheCamerasOwnTextsReachTheManager) {
    const CameraFile file = cameraWith("Model of this test", "1.4.2-20200512");
    const Camera camera(file.path);
    const Agent agent(withModule(camera.directory()));
    Manager manager(agent.peer());
    EXPECT_EQ(answer(manager, oids::modelNumber), "Model of this test");
    EXPECT_EQ(answer(manager, oids::modelName), "Model of this test");
    EXPECT_EQ(answer(manager, oids::serialNumber), "SN0042");
    EXPECT_EQ(answer(manager, oids::fwVersion), "1.4.2-20200512");
    EXPECT_EQ(answer(manager, oids::swVersion), "1.4.2-20200512");
    EXPECT_EQ(answer(manager, oids::hwVersion), "B7");
}

TEST(FirstRequest, AnEmptyModelNameIsAnEmptyString) {
    const CameraFile file = cameraWith("", "1.4.2");
    const Camera camera(file.path);
    const Agent agent(withModule(camera.directory()));
    Manager manager(agent.peer());
    EXPECT_EQ(answer(manager, oids::modelNumber), "");
    EXPECT_EQ(answer(manager, oids::modelName), "");
}

TEST(FirstRequest, CamerasAnswerAsRecorded) {
    for (const char *name : {"dome", "minimal"}) {
        const Camera camera(name);
        const Agent agent(withModule(camera.directory()));
        Manager manager(agent.peer());
        EXPECT_TRUE(matchesGoldenWalk(manager, ".1.3.6.1.4.1", name)) << name;
    }
}

TEST(FirstRequest, SeveralObjectsInOneRequest) {
    const Camera camera("dome");
    const Agent agent(withModule(camera.directory()));
    const Result result =
        Manager(agent.peer()).get(oids::modelName, oids::sysUpTime, oids::modelName, oids::serialNumber);
    ASSERT_TRUE(result.ok()) << result;
    ASSERT_EQ(result.varbinds.size(), 4U);
    EXPECT_EQ(result.varbinds[0], result.varbinds[2]);
    EXPECT_EQ(result.varbinds[3].type, Type::Octets);
}

TEST(FirstRequest, TheModuleLogsItsRegistrations) {
    const Camera camera("minimal");
    const Agent agent(withModule(camera.directory()));
    for (const char *name : {"modelNumber", "modelName", "serialNumber", "fwVersion", "swVersion", "hwVersion"}) {
        EXPECT_EQ(agent.moduleLog().count("registerScalar: Registration for " + std::string(name) + " OID OK"), 1U)
            << agent.moduleLog().text();
    }
}
