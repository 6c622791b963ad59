// SPDX-License-Identifier: Apache-2.0
// Restarts of a running camera from the perspective of its clients.
#include <csignal>
#include <set>

#include <gmock/gmock.h>

#include "camera_process.h"

using namespace camera::test;
using namespace support;
using nlohmann::json;

namespace {

const std::string kReboot = R"(["reboot_send","device_management/1",2])";

class RebootSocket : public CameraTest {
protected:
    void expectRebootSeconds(int seconds) {
        EXPECT_EQ(kDone, set("device_management/1", "rebootSeconds", seconds));
    }

    void reboot() {
        LineClient management(directory_, "device_management");
        EXPECT_EQ("[0]", management.ask(kReboot));
        EXPECT_TRUE(management.ends());
    }

    /** Reads events until each of the services has had one of a kind. @return the time of the last one */
    double await(const std::string &kind, std::set<std::string> services) {
        double time = -1.0;
        while (!services.empty()) {
            const json event = follower_.next();
            if (event.empty()) {
                ADD_FAILURE() << "no more events; missing " << kind << " of " << *services.begin();
                break;
            }
            if (event["event"] == kind) {
                services.erase(event["service"].get<std::string>());
                time = event["time"];
            }
        }
        return time;
    }

    std::set<std::string> allServices() {
        std::set<std::string> names;
        const json now = state();
        for (const auto &item : now["services"].items()) {
            names.insert(item.key());
        }
        return names;
    }

    Follower follower_{directory_};
};

TEST_F(RebootSocket, AnswersAndGoesAway) {
    expectRebootSeconds(3600);
    LineClient connected(directory_, "temperature");
    EXPECT_EQ(kTemperatureAnswer, connected.ask(kTemperatureRequest));
    LineClient directory(directory_, "directory");
    reboot();
    await("service_down", allServices());
    EXPECT_TRUE(connected.ends());
    EXPECT_EQ(true, state()["rebooting"]);
    for (const std::string &service : allServices()) {
        EXPECT_FALSE(LineClient(directory_, service).connected()) << service;
        EXPECT_EQ("[6]", directory.ask(R"(["get_target_ids",")" + service + "\"]")) << service;
        EXPECT_EQ(false, state()["services"][service]["up"]) << service;
    }
}

TEST_F(RebootSocket, ComesBackInTime) {
    expectRebootSeconds(1);
    reboot();
    const double down = await("service_down", allServices());
    const double up = await("service_up", allServices());
    EXPECT_GE(up - down, 0.9);
    EXPECT_EQ(false, state()["rebooting"]);
    for (const std::string &service : allServices()) {
        EXPECT_TRUE(LineClient(directory_, service).connected()) << service;
    }
    EXPECT_EQ(kTemperatureAnswer, LineClient(directory_, "temperature").ask(kTemperatureRequest));
}

TEST_F(RebootSocket, DoesNotExecuteWhatComesBehindItsCall) {
    expectRebootSeconds(0);
    LineClient management(directory_, "device_management");
    management.send(kReboot + "\n" + kReboot + "\n");
    EXPECT_EQ("[0]", management.readLine().value_or("no answer"));
    EXPECT_TRUE(management.ends());
    await("service_down", allServices());
    await("service_up", allServices());
    EXPECT_EQ(1, state()["services"]["device_management"]["targets"]["device_management/1"]["reboots"]);
}

TEST_F(RebootSocket, KeepsFaultsAndIsControlledMeanwhile) {
    expectRebootSeconds(2);
    EXPECT_EQ(kDone,
              control_.call(
                  {{"command", "fail"}, {"service", "temperature"}, {"operation", "*"}, {"status", 7}, {"times", 1}}));
    reboot();
    await("service_down", allServices());
    EXPECT_EQ(kDone, set("temperature/1", "temperature", 40000));
    await("service_up", allServices());
    LineClient client(directory_, "temperature");
    EXPECT_EQ("[7]", client.ask(kTemperatureRequest));
    EXPECT_EQ("[0,40000]", client.ask(kTemperatureRequest));
}

TEST_F(RebootSocket, EndsCleanlyMeanwhile) {
    expectRebootSeconds(3600);
    reboot();
    await("service_down", allServices());
    EXPECT_TRUE(camera_.stop().clean());
    EXPECT_EQ("", camera_.errors().text());
}

TEST_F(RebootSocket, SaysWhichServiceDoesNotComeBack) {
    expectRebootSeconds(2);
    reboot();
    std::set<std::string> others = allServices();
    await("service_down", others);
    writeFile(directory_ + "/iris.sock", "");
    await("service_not_up", {"iris"});
    EXPECT_TRUE(camera_.stop().clean());
    EXPECT_EQ("quarnsnmp-camera: cannot bring up iris: cannot listen on " + directory_ +
                  "/iris.sock: Address already in use\n",
              camera_.errors().text());
}

} // namespace
