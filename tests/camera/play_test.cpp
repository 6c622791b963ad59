// SPDX-License-Identifier: Apache-2.0
// Scenarios of the control program on a running camera.
#include <csignal>

#include <gmock/gmock.h>

#include "camera_process.h"

using namespace camera::test;
using namespace support;
using nlohmann::json;
using testing::HasSubstr;

namespace {

class Play : public ControlProgramTest {
protected:
    std::vector<std::string> command(const std::string &scenario, const std::string &speed = "1") const {
        return {controlPath(), "--directory", directory_, "play", scenario, "--speed", speed};
    }

    std::string write(const std::string &steps) const {
        std::string path = root_.file("own.json");
        writeFile(path, R"({"name": "own", "description": "Mine", "steps": )" + steps + "}");
        return path;
    }
};

TEST_F(Play, GivesTheStepsInTimeAndOrder) {
    RunningCamera camera(directory_);
    Follower follower(directory_);
    const std::string path = write(R"([
        {"at": 0, "set": {"alarm/1": {"state": 1}}},
        {"at": 3000, "down": "iris"},
        {"at": 3000, "up": "iris"},
        {"at": 6000, "set": {"alarm/1": {"state": 0}}},
        {"at": 6000, "fail": {"service": "power", "operation": "*", "status": 5}},
        {"at": 6000, "delay": {"service": "power", "operation": "*", "milliseconds": 5, "times": "always"}}])");
    const auto start = std::chrono::steady_clock::now();
    const auto elapsed = [start] {
        return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    };
    Process player({command(path, "10000")});
    EXPECT_EQ(1, follower.next()["fields"]["state"]);
    EXPECT_EQ("service_down", follower.next()["event"]);
    EXPECT_GE(elapsed(), 0.3);
    EXPECT_EQ("service_up", follower.next()["event"]);
    EXPECT_EQ(0, follower.next()["fields"]["state"]);
    EXPECT_GE(elapsed(), 0.6);
    const CommandResult ended = player.result();
    EXPECT_EQ(0, ended.status.code);
    EXPECT_EQ("", ended.errors);
    EXPECT_EQ("own: Mine\n"
              "      0.0 s  alarm/1 state is 1\n"
              "   3000.0 s  iris is down\n"
              "   3000.0 s  iris is up\n"
              "   6000.0 s  alarm/1 state is 0\n"
              "   6000.0 s  power * fails with status 5, once\n"
              "   6000.0 s  power * answers 5 ms late, always\n"
              "own has been played\n",
              ended.output);
    LineClient control(directory_, "control");
    const json state = control.call({{"command", "state"}})["state"];
    EXPECT_EQ(1U, state["failures"].size());
    EXPECT_EQ(1U, state["delays"].size());
}

TEST_F(Play, PrintsEachStepWhenItIsPlayedAndEndsOnAnInterrupt) {
    RunningCamera camera(directory_);
    Process player({command(write(R"([{"at": 0, "down": "iris"}, {"at": 3600, "up": "iris"}])"))});
    EXPECT_EQ("      0.0 s  iris is down", player.output().awaitLine(1));
    player.signal(SIGINT);
    const CommandResult ended = player.result();
    EXPECT_EQ(128 + SIGINT, ended.status.code);
    EXPECT_EQ("own: Mine\n      0.0 s  iris is down\n", ended.output);
    EXPECT_FALSE(LineClient(directory_, "iris").connected());
}

TEST_F(Play, EndsWithTheCamera) {
    RunningCamera camera(directory_);
    Process player({command(write(R"([{"at": 0, "down": "iris"}, {"at": 3600, "up": "iris"}])"))});
    ASSERT_NE("", player.output().awaitLine(1));
    camera.stop();
    const CommandResult ended = player.result();
    EXPECT_EQ(1, ended.status.code);
    EXPECT_EQ("quarnsnmp-camctl: the camera in " + directory_ + " has ended\n", ended.errors);
}

TEST_F(Play, ChecksTheWholeFileFirst) {
    const std::string path = write(R"([{"at": 0, "down": "iris"}, {"at": 1, "set": {"alarm/9": {"state": 1}}}])");
    RunningCamera camera(directory_, "dome");
    const CommandResult ended = runCommand(command(path));
    EXPECT_EQ(1, ended.status.code);
    EXPECT_EQ("", ended.output);
    EXPECT_THAT(ended.errors, testing::StartsWith("quarnsnmp-camctl: " + path +
                                                  ": steps[1]: alarm/9: unknown target; expected one of: alarm/1, "));
    EXPECT_TRUE(LineClient(directory_, "iris").connected());
}

TEST_F(Play, NeedsAFileAndACamera) {
    expectRefused({"play", root_.file("none.json")}, root_.file("none.json") + ": No such file or directory");
    const CommandResult unknown = runCommand(command("cool-down"));
    EXPECT_EQ(1, unknown.status.code);
    EXPECT_THAT(unknown.errors,
                testing::MatchesRegex("quarnsnmp-camctl: no scenario 'cool-down' in .*/share/quarnsnmp/scenarios; "
                                      "available: drop-services, warm-up\n"));
    const std::string wrong = write("3");
    expectRefused({"play", wrong}, wrong + ": steps: expected a list of steps, found 3");
    const std::string path = write("[]");
    expectRefused({"play", path}, "no camera answers in " + directory_ + ": No such file or directory");
}

TEST_F(Play, RefusesInvalidSpeeds) {
    for (const char *speed : {"0", "-1", "nan", "inf", "1e7", "fast"}) {
        const CommandResult ended = runCommand(command("warm-up", speed));
        EXPECT_EQ(2, ended.status.code) << speed;
        EXPECT_THAT(ended.errors, testing::StartsWith("quarnsnmp-camctl: "));
        EXPECT_THAT(ended.errors, HasSubstr("--speed"));
    }
    EXPECT_EQ(2, runCommand({controlPath(), "play"}).status.code);
}

TEST(EachShippedScenario, PlaysToItsEnd) {
    for (const std::string scenario : {"drop-services", "warm-up"}) {
        for (const char *camera : {"dome", "stepper"}) {
            SCOPED_TRACE(scenario + " " + camera);
            const TemporaryDirectory root;
            const RunningCamera running(root.file("sockets"), camera);
            Follower follower(root.file("sockets"));
            const CommandResult ended =
                runCommand({controlPath(), "--directory", root.file("sockets"), "play", scenario, "--speed", "100000"});
            EXPECT_EQ(0, ended.status.code);
            EXPECT_EQ("", ended.errors);
            EXPECT_THAT(ended.output, testing::EndsWith(scenario + " has been played\n"));
            EXPECT_NE("", follower.next().value("event", "")) << "no event of the camera";
        }
    }
}

} // namespace
