// SPDX-License-Identifier: Apache-2.0
// The first objects, through the whole chain: manager, agent, module, core library, camera process.
#include <fstream>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "camera_agent.h"
#include "golden_walk.h"
#include "identity_objects.h"
#include "well_known_objects.h"

namespace {

using namespace harness;
using namespace identity;

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
    EXPECT_EQ(answer(manager, kModelNumber), "Model of this test");
    EXPECT_EQ(answer(manager, kModelName), "Model of this test");
    EXPECT_EQ(answer(manager, kSerialNumber), "SN0042");
    EXPECT_EQ(answer(manager, kFirmwareVersion), "1.4.2-20200512");
    EXPECT_EQ(answer(manager, kSoftwareVersion), "1.4.2-20200512");
    EXPECT_EQ(answer(manager, kHardwareVersion), "B7");
}

TEST(FirstRequest, AnEmptyModelNameIsAnEmptyString) {
    const CameraFile file = cameraWith("", "1.4.2");
    const Camera camera(file.path);
    const Agent agent(withModule(camera.directory()));
    Manager manager(agent.peer());
    EXPECT_EQ(answer(manager, kModelNumber), "");
    EXPECT_EQ(answer(manager, kModelName), "");
}

TEST(FirstRequest, CamerasAnswerAsRecorded) {
    for (const char *name : {"dome", "minimal"}) {
        const Camera camera(name);
        const Agent agent(withModule(camera.directory()));
        Manager manager(agent.peer());
        EXPECT_TRUE(matchesGoldenWalk(manager, ".1.3.6.1.4.1", name)) << name;
    }
}

TEST(FirstRequest, EveryCameraHasAnIdentity) {
    for (const char *name : {"dome", "stepper", "minimal"}) {
        const Camera camera(name);
        const Agent agent(withModule(camera.directory()));
        EXPECT_NE(modelName(agent), "") << name;
    }
}

TEST(FirstRequest, TheStoredIdentifierIsNoInstance) {
    const Camera camera("minimal");
    const Agent agent(withModule(camera.directory()));
    Manager manager(agent.peer());
    EXPECT_EQ(manager.get(".1.3.6.1.4.1.99999.1.1.1.0").single().type, Type::NoSuchInstance);
    EXPECT_EQ(manager.get(".1.3.6.1.4.1.99999.1.1.1.0.1").single().type, Type::NoSuchInstance);
    EXPECT_EQ(manager.get(".1.3.6.1.4.1.99999.1.1.1.0.0.0").single().type, Type::NoSuchInstance);
    EXPECT_EQ(manager.getNext(".1.3.6.1.4.1.99999.1.1.1.0").single().oid, kModelNumber);
}

TEST(FirstRequest, TheIdentityCannotBeWritten) {
    const Camera camera("minimal");
    const Agent agent(withModule(camera.directory()));
    Manager manager(agent.peer());
    const std::string before = answer(manager, kModelName);
    for (const char *oid :
         {kModelNumber, kModelName, kSerialNumber, kFirmwareVersion, kSoftwareVersion, kHardwareVersion}) {
        const Result result = manager.set({octets(oid, "mine")});
        EXPECT_EQ(result.error, ErrorStatus::NotWritable) << oid;
        EXPECT_EQ(result.errorIndex, 1) << oid;
    }
    EXPECT_EQ(answer(manager, kModelName), before);
}

TEST(FirstRequest, SeveralObjectsInOneRequest) {
    const Camera camera("dome");
    const Agent agent(withModule(camera.directory()));
    const Result result = Manager(agent.peer()).get(kModelName, kUpTime, kModelName, kSerialNumber);
    ASSERT_TRUE(result.ok()) << result;
    ASSERT_EQ(result.variables.size(), 4U);
    EXPECT_EQ(result.variables[0], result.variables[2]);
    EXPECT_EQ(result.variables[3].type, Type::Octets);
}

TEST(FirstRequest, TheModuleLogsItsRegistrations) {
    const Camera camera("minimal");
    const Agent agent(withModule(camera.directory()));
    for (const char *name : {"modelNumber", "modelName", "serialNumber", "fwVersion", "swVersion", "hwVersion"}) {
        EXPECT_EQ(agent.moduleLog().count("registerScalar: Registration for " + std::string(name) + " OID OK"), 1U)
            << agent.moduleLog().text();
    }
}
