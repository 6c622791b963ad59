// SPDX-License-Identifier: Apache-2.0
// Control socket of a running camera, and the effects of its commands on other clients.
#include <filesystem>

#include <gmock/gmock.h>

#include "camera_process.h"

using namespace camera::test;
using namespace support;
using nlohmann::json;

namespace {

class ControlSocket : public CameraTest {
protected:
    json order(const std::string &command) {
        return control_.call(json::parse(command));
    }
};

TEST_F(ControlSocket, ShowsAndSetsTheState) {
    EXPECT_EQ(kDone, set("alarm/2", "state", 1));
    LineClient alarm(directory_, "alarm");
    EXPECT_EQ("[0,1]", alarm.ask(R"(["get_state_send","alarm/2"])"));
    const json shown = state();
    EXPECT_EQ("dome", shown["camera"]);
    EXPECT_EQ(1, shown["services"]["alarm"]["targets"]["alarm/2"]["state"]);
    EXPECT_EQ(true, shown["services"]["alarm"]["up"]);
}

TEST_F(ControlSocket, AnswersWhatItRefuses) {
    EXPECT_EQ((json{{"ok", false}, {"error", "alarm/2 stat: unknown key; expected one of: state"}}),
              set("alarm/2", "stat", 1));
    control_.send("rubbish\n");
    EXPECT_THAT(control_.readLine().value_or(""), testing::HasSubstr("expected an object"));
    EXPECT_EQ(true, order(R"({"command":"state"})")["ok"]);
}

TEST_F(ControlSocket, TakesAServiceDownAndUp) {
    LineClient connected(directory_, "alarm");
    EXPECT_EQ("[0,0]", connected.ask(R"(["get_state_send","alarm/1"])"));
    LineClient directory(directory_, "directory");

    EXPECT_EQ(kDone, order(R"({"command":"down","service":"alarm"})"));
    EXPECT_TRUE(connected.ends());
    EXPECT_FALSE(LineClient(directory_, "alarm").connected());
    EXPECT_FALSE(std::filesystem::exists(directory_ + "/alarm.sock"));
    EXPECT_EQ("[6]", directory.ask(R"(["get_target_ids","alarm"])"));
    EXPECT_EQ(R"([0,"temperature/1"])", directory.ask(R"(["get_target_ids","temperature"])"));
    EXPECT_EQ(false, state()["services"]["alarm"]["up"]);
    // The control program can set fields of a stopped service.
    EXPECT_EQ(kDone, set("alarm/1", "state", 1));

    EXPECT_EQ(kDone, order(R"({"command":"up","service":"alarm"})"));
    LineClient again(directory_, "alarm");
    EXPECT_EQ("[0,1]", again.ask(R"(["get_state_send","alarm/1"])"));
    EXPECT_EQ(R"([0,"alarm/1","alarm/2","alarm/3","alarm/4"])", directory.ask(R"(["get_target_ids","alarm"])"));
}

TEST_F(ControlSocket, RefusesToBringUpAServiceWhosePathIsTaken) {
    EXPECT_EQ(kDone, order(R"({"command":"down","service":"alarm"})"));
    writeFile(directory_ + "/alarm.sock", "");
    EXPECT_EQ("cannot bring up alarm: cannot listen on " + directory_ + "/alarm.sock: Address already in use",
              order(R"({"command":"up","service":"alarm"})")["error"]);
    EXPECT_EQ(false, state()["services"]["alarm"]["up"]);
    std::filesystem::remove(directory_ + "/alarm.sock");
    EXPECT_EQ(kDone, order(R"({"command":"up","service":"alarm"})"));
    EXPECT_TRUE(LineClient(directory_, "alarm").connected());
}

TEST_F(ControlSocket, LetsTheDirectoryFail) {
    LineClient client(directory_, "directory");
    EXPECT_EQ(kDone, order(R"({"command":"fail","service":"directory","operation":"get_target_ids","status":1})"));
    EXPECT_EQ("[1]", client.ask(R"(["get_target_ids","alarm"])"));
    EXPECT_EQ(R"([0,"iris/1"])", client.ask(R"(["get_target_ids","iris"])"));
}

TEST_F(ControlSocket, HoldsBackOneAnswerWhileOthersGoOn) {
    LineClient delayed(directory_, "temperature");
    LineClient other(directory_, "temperature");
    EXPECT_EQ(kDone, order(R"({"command":"delay","service":"temperature","operation":"*","milliseconds":300})"));
    const auto start = std::chrono::steady_clock::now();
    delayed.send(kTemperatureRequest + "\n");
    // The delay is used up as soon as the request is there.
    EXPECT_TRUE(eventually([&] { return state()["delays"].empty(); }));
    EXPECT_EQ(kTemperatureAnswer, other.ask(kTemperatureRequest));
    EXPECT_FALSE(delayed.readable());
    EXPECT_EQ(kTemperatureAnswer, delayed.readLine().value_or("no answer"));
    EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(300));
}

TEST_F(ControlSocket, KeepsTheOrderOfAnswersBehindOneThatIsHeldBack) {
    LineClient client(directory_, "temperature");
    EXPECT_EQ(kDone, order(R"({"command":"delay","service":"temperature","operation":"*","milliseconds":100})"));
    EXPECT_EQ(kDone, order(R"({"command":"fail","service":"temperature","operation":"*","status":5})"));
    client.send(kTemperatureRequest + "\n" + kTemperatureRequest + "\n[]\n");
    EXPECT_EQ("[5]", client.readLine().value_or("no answer"));
    EXPECT_EQ(kTemperatureAnswer, client.readLine().value_or("no answer"));
    EXPECT_EQ("[2]", client.readLine().value_or("no answer"));
}

TEST_F(ControlSocket, DropsAClientWhoseAnswerIsHeldBackWhenItsServiceGoesDown) {
    LineClient client(directory_, "temperature");
    EXPECT_EQ(kDone, order(R"({"command":"delay","service":"temperature","operation":"*","milliseconds":600000})"));
    client.send(kTemperatureRequest + "\n");
    EXPECT_TRUE(eventually([&] { return state()["delays"].empty(); }));
    EXPECT_EQ(kDone, order(R"({"command":"down","service":"temperature"})"));
    EXPECT_TRUE(client.ends());
}

TEST_F(ControlSocket, ForgetsClientsThatGiveUpWhileTheirAnswersAreHeldBack) {
    EXPECT_EQ(kDone, order(R"({"command":"delay","service":"temperature","operation":"*","milliseconds":600000,)"
                           R"("times":"always"})"));
    // More than are served at a time.
    for (int i = 0; i < 100; ++i) {
        LineClient client(directory_, "temperature");
        client.send(kTemperatureRequest + "\n");
    }
    EXPECT_EQ(kDone, order(R"({"command":"clear"})"));
    EXPECT_TRUE(eventually(
        [this] { return LineClient(directory_, "temperature").ask(kTemperatureRequest) == kTemperatureAnswer; }));
}

TEST_F(ControlSocket, TellsFollowersWhatHappens) {
    EXPECT_EQ(kDone, set("relay/1", "configuration.c1", 1));
    EXPECT_EQ(kDone, set("device_management/1", "rebootSeconds", 3600));
    Follower follower(directory_);
    LineClient relay(directory_, "relay");
    EXPECT_EQ("[0,0]", relay.ask(R"(["get_state_send","relay/1"])"));
    EXPECT_EQ("[0]", relay.ask(R"(["set_state_send","relay/1",1])"));
    order(R"({"command":"fail","service":"relay","operation":"*","status":8})");
    EXPECT_EQ("[8]", relay.ask(R"(["get_state_send","relay/1"])"));
    order(R"({"command":"down","service":"relay"})");
    order(R"({"command":"up","service":"relay"})");
    LineClient management(directory_, "device_management");
    EXPECT_EQ("[0]", management.ask(R"(["reboot_send","device_management/1",2])"));

    std::vector<std::string> kinds;
    double lastTime = 0.0;
    for (int i = 0; i < 9; ++i) {
        const json event = follower.next();
        ASSERT_TRUE(event.contains("time"));
        EXPECT_GE(event["time"], lastTime);
        lastTime = event["time"];
        kinds.push_back(event["event"]);
    }
    EXPECT_THAT(kinds, testing::ElementsAre("command", "changed", "fault", "service_down", "service_up", "command",
                                            "changed", "reboot", "changed"));
    const json services = state()["services"];
    for (std::size_t i = 0; i < services.size(); ++i) {
        EXPECT_EQ("service_down", follower.next().value("event", ""));
    }
    EXPECT_FALSE(follower.readable());
}

TEST_F(ControlSocket, RunsCommandsDryOnOneConnection) {
    Follower follower(directory_);
    LineClient dry(directory_, "control");
    EXPECT_EQ(kDone, dry.call({{"command", "dryRun"}, {"skipMissingServices", true}}));
    EXPECT_EQ(kDone, dry.call({{"command", "down"}, {"service", "alarm"}}));
    EXPECT_EQ(kDone, dry.call({{"command", "set"}, {"target", "alarm/1"}, {"field", "state"}, {"value", 1}}));
    EXPECT_EQ(1, dry.call({{"command", "state"}})["state"]["services"]["alarm"]["targets"]["alarm/1"]["state"]);
    EXPECT_EQ((json{{"ok", true}, {"skipped", "zoom_stepper"}}),
              dry.call({{"command", "down"}, {"service", "zoom_stepper"}}));
    EXPECT_EQ(false, dry.call({{"command", "set"}})["ok"]);
    EXPECT_EQ("[0,0]", LineClient(directory_, "alarm").ask(R"(["get_state_send","alarm/1"])"));
    EXPECT_FALSE(follower.readable()) << "an event of a dry run";
}

TEST_F(ControlSocket, GoesOnWhenAFollowerLeaves) {
    { const Follower follower(directory_); }
    for (int i = 0; i < 20; ++i) {
        EXPECT_EQ(kDone,
                  order(R"({"command":"set","target":"alarm/1","field":"state","value":)" + std::to_string(i) + "}"));
    }
}

} // namespace
