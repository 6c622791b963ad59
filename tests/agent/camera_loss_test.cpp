// SPDX-License-Identifier: Apache-2.0
// The module and its agent without the camera, or without one of its services.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "camera.h"
#include "camera_agent.h"
#include "eventually.h"
#include "object_oids.h"
#include "position_commands.h"
#include "process_information.h"

namespace {

using namespace harness;
using position_commands::stop;
using std::chrono::milliseconds;
using std::chrono::seconds;

/** Expects no object that depends on the service, but those that the module answers by itself. */
void expectNoIdentity(const Agent &agent) {
    Manager manager(agent.peer());
    for (const char *oid :
         {oids::modelNumber, oids::modelName, oids::serialNumber, oids::fwVersion, oids::swVersion, oids::hwVersion}) {
        EXPECT_EQ(manager.get(oid).single().type, Type::NoSuchObject) << oid;
    }
    EXPECT_EQ(manager.get(oids::rangePanHomePosition).single().number, 65535);
}

} // namespace

TEST(CameraLoss, AHeldObjectIsAnsweredWithoutTheCamera) {
    Camera camera("dome");
    const Agent agent(withModule(camera.directory()));
    const std::string name = modelName(agent);
    ASSERT_NE(name, "");
    camera.kill();
    EXPECT_EQ(modelName(agent), name);
    camera.start();
    EXPECT_EQ(modelName(agent), name);
}

TEST(CameraLoss, AReloadFindsTheCameraAgainAfterItsPowerWasCut) {
    Camera camera("dome");
    Agent agent(withCamera(withFastClock(), camera));
    const std::string name = modelName(agent);
    for (int i = 0; i < 3; ++i) {
        camera.kill();
        agent.hup();
        expectNoIdentity(agent);
        camera.start();
        agent.hup();
        EXPECT_EQ(modelName(agent), name);
    }
    EXPECT_EQ(agent.log().count(std::string("oid ") + oids::kVendorSubtree), 0U) << "registered twice";
}

TEST(CameraLoss, WithoutACameraTheModuleAnswersForPanAndTilt) {
    Camera camera("minimal");
    camera.stop();
    // A module that finds no service waits for the lens services; at this pace of its clock that takes no time.
    Agent agent(withCamera(withFastClock(), camera));
    expectNoIdentity(agent);
    EXPECT_EQ(agent.moduleLog().count("no zorva API dev info"), 3U) << agent.moduleLog().text();
    EXPECT_EQ(agent.moduleLog().count("no zorva API positionings"), 1U);
    EXPECT_EQ(oidsOf(Manager(agent.peer()).walk(oids::kNtcipSubtree)), objectsWithoutServices());
    EXPECT_EQ(threadCount(agent.pid()), threadsWithModule());
    camera.start();
    agent.hup();
    EXPECT_NE(modelName(agent), "");
    EXPECT_EQ(threadCount(agent.pid()), threadsWithModule());
    EXPECT_LT(agent.stop().duration, patient(seconds(2)));
}

TEST(CameraLoss, AServiceThatIsDownIsFoundAtTheNextReload) {
    const Camera camera("minimal");
    Agent agent(withModule(camera.directory()));
    ASSERT_TRUE(camera.control("down", "device_information").status.clean());
    agent.hup();
    expectNoIdentity(agent);
    ASSERT_TRUE(camera.control("up", "device_information").status.clean());
    agent.hup();
    EXPECT_NE(modelName(agent), "");
}

TEST(CameraLoss, AServiceThatDoesNotAnswerHoldsTheAgentForTwoSecondsAtMost) {
    const Camera camera("minimal");
    Agent agent(withModule(camera.directory()));
    ASSERT_TRUE(camera.control("delay", "device_information", "get_static_information_send", "60000").status.clean());
    const milliseconds duration = agent.hup();
    EXPECT_GE(duration, milliseconds(1000)) << "the delay was not met";
    EXPECT_LT(duration, patient(seconds(4)));
    expectNoIdentity(agent);
    agent.hup();
    EXPECT_NE(modelName(agent), "");
}

TEST(CameraLoss, ACameraThatIsStoppedInItsTracksHoldsACommandForItsCallsOnly) {
    const Camera camera("dome");
    const Agent agent(withModule(camera.directory()));
    Manager manager(agent.peer());
    const std::string name = modelName(agent);
    EXPECT_TRUE(manager.get(oids::positionPan).ok());
    ASSERT_EQ(kill(camera.pid(), SIGSTOP), 0);
    EXPECT_EQ(modelName(agent), name);
    // One call, which is given up after two seconds.
    EXPECT_TRUE(manager.set({octetString(oids::positionPan, stop())}).ok());
    ASSERT_EQ(kill(camera.pid(), SIGCONT), 0);
    EXPECT_EQ(agent.moduleLog().count("Failed zorva api call: zorva_api_positioning_set_velocity_send("), 1U);
    EXPECT_TRUE(manager.set({octetString(oids::positionPan, stop())}).ok());
    EXPECT_EQ(agent.moduleLog().count("Failed zorva api call"), 1U);
}

TEST(CameraLossSlow, AReloadWhileTheCameraHangsEndsBeforeServicesGiveUp) {
    const Camera camera("dome");
    Agent agent(withModule(camera.directory()));
    const std::string name = modelName(agent);
    ASSERT_EQ(kill(camera.pid(), SIGSTOP), 0);
    // Thirty seconds of waiting for the lens, four discoveries without an answer, and the farewells to ten services.
    EXPECT_LT(agent.hup(), patient(seconds(45)));
    expectNoIdentity(agent);
    ASSERT_EQ(kill(camera.pid(), SIGCONT), 0);
    agent.hup();
    EXPECT_EQ(modelName(agent), name);
}
