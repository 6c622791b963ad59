// What happens to the module and its agent when the camera, or one of its services, is not there.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "camera.h"
#include "eventually.h"
#include "identity_objects.h"
#include "process_information.h"

namespace {

using namespace harness;
using namespace identity;
using std::chrono::milliseconds;
using std::chrono::seconds;

constexpr const char *kReadOperation = "get_static_information_send";

void expectNoObjects(const Agent &agent) {
    Manager manager(agent.peer());
    EXPECT_EQ(manager.get(kModelName).single().type, Type::NoSuchObject);
    EXPECT_THAT(manager.walk(kVendorSubtree), testing::IsEmpty());
    EXPECT_THAT(manager.walk(kNtcipSubtree), testing::IsEmpty());
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
    Agent agent(withModule(camera.directory()));
    const std::string name = modelName(agent);
    for (int i = 0; i < 3; ++i) {
        camera.kill();
        agent.hup();
        expectNoObjects(agent);
        camera.start();
        agent.hup();
        EXPECT_EQ(modelName(agent), name);
    }
    EXPECT_EQ(agent.log().count(std::string("oid ") + kVendorSubtree), 0U) << "registered twice";
}

TEST(CameraLoss, WithoutACameraTheModuleEndsItselfAndTheAgentServes) {
    Camera camera("minimal");
    camera.stop();
    Agent agent(withModule(camera.directory()));
    expectNoObjects(agent);
    EXPECT_EQ(agent.moduleLog().count("no zorva API dev info"), 1U) << agent.moduleLog().text();
    EXPECT_EQ(agent.moduleLog().count("timer_thread_func: LEAVING IN THREAD FUNC due to interruption"), 1U);
    EXPECT_EQ(threadCount(agent.pid()), threadsWithoutModule());
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
    expectNoObjects(agent);
    ASSERT_TRUE(camera.control("up", "device_information").status.clean());
    agent.hup();
    EXPECT_NE(modelName(agent), "");
}

TEST(CameraLoss, AServiceThatDoesNotOpenIsLogged) {
    const Camera camera("minimal");
    Agent agent(withModule(camera.directory()));
    ASSERT_TRUE(camera.control("fail", "device_information", "initiator_init", "1").status.clean());
    agent.hup();
    expectNoObjects(agent);
    EXPECT_EQ(agent.moduleLog().count(" SNMP error InitDeviceInfo: failed dev info initiator init"), 1U)
        << agent.moduleLog().text();
    agent.hup();
    EXPECT_NE(modelName(agent), "");
}

TEST(CameraLoss, AReadThatFailsIsLogged) {
    const Camera camera("minimal");
    Agent agent(withModule(camera.directory()));
    ASSERT_TRUE(camera.control("fail", "device_information", kReadOperation, "1").status.clean());
    agent.hup();
    expectNoObjects(agent);
    EXPECT_EQ(agent.moduleLog().count(" SNMP error InitDeviceInfo: failed dev info:get_static_information"), 1U)
        << agent.moduleLog().text();
    agent.hup();
    EXPECT_NE(modelName(agent), "");
}

TEST(CameraLoss, AServiceThatDoesNotAnswerHoldsTheAgentForTwoSecondsAtMost) {
    const Camera camera("minimal");
    Agent agent(withModule(camera.directory()));
    ASSERT_TRUE(camera.control("delay", "device_information", kReadOperation, "60000").status.clean());
    const milliseconds duration = agent.hup();
    EXPECT_GE(duration, milliseconds(1000)) << "the delay was not met";
    EXPECT_LT(duration, patient(seconds(4)));
    expectNoObjects(agent);
    agent.hup();
    EXPECT_NE(modelName(agent), "");
}

TEST(CameraLoss, ACameraThatIsStoppedInItsTracksHoldsNobodyForLong) {
    const Camera camera("minimal");
    Agent agent(withModule(camera.directory()));
    const std::string name = modelName(agent);
    ASSERT_EQ(kill(camera.pid(), SIGSTOP), 0);
    EXPECT_EQ(modelName(agent), name);
    EXPECT_LT(agent.hup(), patient(seconds(10)));
    expectNoObjects(agent);
    ASSERT_EQ(kill(camera.pid(), SIGCONT), 0);
    agent.hup();
    EXPECT_EQ(modelName(agent), name);
}
