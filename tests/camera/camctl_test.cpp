// SPDX-License-Identifier: Apache-2.0
// The control program.
#include <csignal>
#include <cstring>
#include <thread>

#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <gmock/gmock.h>

#include "camera_process.h"

using namespace camera::test;
using nlohmann::json;

namespace {

class Camctl : public testing::Test {
protected:
    Ended control(const std::vector<std::string> &arguments) {
        std::vector<std::string> command = {QUARNSNMP_CAMCTL, "--directory", directory_};
        command.insert(command.end(), arguments.begin(), arguments.end());
        return run(command);
    }

    void expectDone(const std::vector<std::string> &arguments, const std::string &output) {
        const Ended ended = control(arguments);
        EXPECT_EQ(0, ended.status);
        EXPECT_EQ(output + "\n", ended.output);
        EXPECT_EQ("", ended.errors);
    }

    void expectRefused(const std::vector<std::string> &arguments, const std::string &error) {
        const Ended ended = control(arguments);
        EXPECT_EQ(1, ended.status);
        EXPECT_EQ("", ended.output);
        EXPECT_EQ("quarnsnmp-camctl: " + error + "\n", ended.errors);
    }

    json state() {
        return json::parse(control({"state"}).output);
    }

    json target(const std::string &service, const std::string &id) {
        return state()["services"][service]["targets"][id];
    }

    TempDirectory root_;
    std::string directory_ = root_ / "sockets";
};

TEST_F(Camctl, PrintsTheStateAsReadableJson) {
    RunningCamera camera(directory_, "minimal");
    const Ended ended = control({"state"});
    EXPECT_EQ(0, ended.status);
    EXPECT_EQ("", ended.errors);
    EXPECT_THAT(ended.output, testing::StartsWith("{\n  \"camera\": \"minimal\",\n"));
    EXPECT_EQ("QN-100 Minimal",
              json::parse(ended.output)["services"]["device_information"]["targets"]["device_information/1"]["model"]);
}

TEST_F(Camctl, SetsNumbersFlagsTextsAndGroups) {
    RunningCamera camera(directory_);
    expectDone({"set", "alarm/1", "state", "1"}, "alarm/1 state is 1");
    expectDone({"set", "temperature/1", "temperature", "-5000"}, "temperature/1 temperature is -5000");
    expectDone({"set", "exposure/1", "manualMode", "true"}, "exposure/1 manualMode is true");
    expectDone({"set", "positioning/1", "tilt", R"({"position":-7,"acceleration":3})"},
               R"(positioning/1 tilt is {"acceleration":3,"position":-7})");
    expectDone({"set", "presets_tours/1", "presets", R"([{"id":"a","number":2}])"},
               R"(presets_tours/1 presets is [{"id":"a","number":2}])");
    EXPECT_EQ(1, target("alarm", "alarm/1")["state"]);
    EXPECT_EQ(-5000, target("temperature", "temperature/1")["temperature"]);
    EXPECT_EQ(true, target("exposure", "exposure/1")["manualMode"]);
    EXPECT_EQ(-7, target("positioning", "positioning/1")["tilt"]["position"]);
    EXPECT_EQ("a", target("presets_tours", "presets_tours/1")["presets"][0]["id"]);
}

TEST_F(Camctl, TakesWhatIsNotJsonAsAText) {
    RunningCamera camera(directory_);
    const std::vector<std::pair<std::string, std::string>> texts = {
        {"QN 5", "QN 5"}, {"\"17\"", "17"}, {"", ""}, {"2.4.1-1", "2.4.1-1"}, {"[x", "[x"}};
    for (const auto &[value, stored] : texts) {
        EXPECT_EQ(0, control({"set", "device_information/1", "serial", value}).status) << value;
        EXPECT_EQ(stored, target("device_information", "device_information/1")["serial"]);
    }
    expectRefused({"set", "device_information/1", "serial", "17"},
                  "device_information/1 serial: expected a text of at most 255 octets or null, found 17");
}

TEST_F(Camctl, TakesServicesDownAndUp) {
    RunningCamera camera(directory_);
    expectDone({"down", "alarm"}, "alarm is down");
    EXPECT_EQ(false, state()["services"]["alarm"]["up"]);
    expectDone({"up", "alarm"}, "alarm is up");
    EXPECT_EQ(true, state()["services"]["alarm"]["up"]);
}

TEST_F(Camctl, OrdersAndClearsFaults) {
    RunningCamera camera(directory_);
    expectDone({"fail", "relay", "*", "-3"}, "relay * fails with status -3, once");
    expectDone({"fail", "relay", "get_state_send", "4", "--times", "2"},
               "relay get_state_send fails with status 4, 2 times");
    expectDone({"delay", "directory", "get_target_ids", "250", "--always"},
               "directory get_target_ids answers 250 ms late, always");
    EXPECT_EQ(json::parse(R"([{"service":"relay","operation":"*","status":-3,"times":1},
                              {"service":"relay","operation":"get_state_send","status":4,"times":2}])"),
              state()["failures"]);
    EXPECT_EQ(json::parse(R"([{"service":"directory","operation":"get_target_ids","milliseconds":250,
                               "times":"always"}])"),
              state()["delays"]);
    expectDone({"clear", "relay", "*"}, "no failures and delays for relay *");
    EXPECT_EQ(1U, state()["failures"].size());
    expectDone({"clear", "relay"}, "no failures and delays for relay");
    EXPECT_EQ(json::array(), state()["failures"]);
    EXPECT_EQ(1U, state()["delays"].size());
    expectDone({"clear"}, "no failures and delays");
    EXPECT_EQ(json::array(), state()["delays"]);
}

TEST_F(Camctl, PrintsRefusals) {
    RunningCamera camera(directory_, "minimal");
    expectRefused({"down", "alarm"},
                  "unknown service \"alarm\"; expected one of: device_information, device_management");
    expectRefused({"fail", "device_management", "reboot_send", "0"},
                  "status: 0 is success; expected the status of a failure");
    expectRefused({"fail", "device_management", "reboot_send", "1", "--times", "0"},
                  "times: expected an integer from 1 to 1000000 or \"always\", found 0");
    expectRefused({"set", "device_management/1", "reboots", "many"},
                  "device_management/1 reboots: expected an integer from 0 to 4294967295, found \"many\"");
}

TEST_F(Camctl, DoesNotSetWhatFollowsFromCommands) {
    RunningCamera camera(directory_);
    expectRefused({"set", "positioning/1", "pan.velocity", "5"},
                  "positioning/1 pan.velocity: read-only: it follows from commands");
    expectRefused({"set", "positioning/1", "pan", R"({"position":5,"target":7})"},
                  "positioning/1 pan.target: read-only: it follows from commands");
    EXPECT_EQ(0, target("positioning", "positioning/1")["pan"]["position"]);
}

TEST_F(Camctl, FollowsUntilTheCameraEnds) {
    RunningCamera camera(directory_);
    Process follow({QUARNSNMP_CAMCTL, "--directory", directory_, "follow"});
    // Events before the follower is there are not told, so the first may take several attempts.
    std::optional<std::string> line;
    Process setter({"/bin/sh", "-c",
                    std::string("i=0; while [ $i -lt 1000 ]; do i=$((i+1)); \"$0\" --directory \"$1\" set alarm/1 "
                                "state $i >/dev/null || exit; done"),
                    QUARNSNMP_CAMCTL, directory_});
    line = follow.nextLine();
    setter.signal(SIGKILL);
    ASSERT_TRUE(line);
    const json event = json::parse(*line);
    EXPECT_EQ("changed", event["event"]);
    EXPECT_EQ("alarm/1", event["target"]);
    camera.process().signal(SIGTERM);
    EXPECT_EQ(0, camera.process().wait().status);
    const Ended ended = follow.wait();
    EXPECT_EQ(1, ended.status);
    EXPECT_EQ("quarnsnmp-camctl: the camera in " + directory_ + " has ended\n", ended.errors);
}

TEST_F(Camctl, SaysThatNoCameraIsThere) {
    expectRefused({"state"}, "no camera answers in " + directory_ + ": No such file or directory");
    {
        RunningCamera camera(directory_);
        camera.process().signal(SIGKILL);
        camera.process().wait();
    }
    expectRefused({"follow"}, "no camera answers in " + directory_ + ": Connection refused");
}

TEST_F(Camctl, DoesNotWaitForEverForACamera) {
    RunningCamera camera(directory_);
    camera.process().signal(SIGSTOP);
    const auto start = std::chrono::steady_clock::now();
    expectRefused({"state"}, "the camera in " + directory_ + " does not answer");
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(15));
    camera.process().signal(SIGCONT);
}

/** A socket that plays the control socket of a broken camera: it sends one text to its first client, and ends. */
class BrokenCamera {
public:
    BrokenCamera(const std::string &path, std::string text) : socket_(socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
        sockaddr_un address{};
        address.sun_family = AF_UNIX;
        std::strncpy(address.sun_path, path.c_str(), sizeof address.sun_path - 1);
        EXPECT_EQ(0, bind(socket_, reinterpret_cast<const sockaddr *>(&address), sizeof address));
        EXPECT_EQ(0, listen(socket_, 1));
        thread_ = std::thread([this, sent = std::move(text)] {
            const int client = accept(socket_, nullptr, nullptr);
            char request[4096];
            EXPECT_GT(recv(client, request, sizeof request, 0), 0);
            EXPECT_EQ(static_cast<ssize_t>(sent.size()), send(client, sent.data(), sent.size(), MSG_NOSIGNAL));
            close(client);
        });
    }
    BrokenCamera(const BrokenCamera &) = delete;
    BrokenCamera &operator=(const BrokenCamera &) = delete;
    ~BrokenCamera() {
        thread_.join();
        close(socket_);
    }

private:
    int socket_;
    std::thread thread_;
};

TEST_F(Camctl, SaysWhenAnAnswerCannotBeUnderstood) {
    for (const auto &[text, error] :
         {std::pair<std::string, std::string>{"rubbish\n", "sent an answer that cannot be understood"},
          {"[1]\n", "sent an answer that cannot be understood"},
          {"{\"ok\":", "ended the connection without an answer"}}) {
        directory_ = root_.path();
        const BrokenCamera camera(root_ / "control.sock", text);
        expectRefused({"state"}, "the camera in " + directory_ + " " + error);
        unlink((root_ / "control.sock").c_str());
    }
}

TEST_F(Camctl, RefusesWrongUsage) {
    const std::vector<std::vector<std::string>> wrong = {
        {},
        {"status"},
        {"state", "now"},
        {"set", "alarm/1", "state"},
        {"down"},
        {"fail", "alarm", "*"},
        {"fail", "alarm", "*", "bad"},
        {"fail", "alarm", "*", "1", "--times", "often"},
        {"fail", "alarm", "*", "1", "--times", "2", "--always"},
        {"delay", "alarm", "*", "1.5"},
        {"state", "follow"},
    };
    for (const std::vector<std::string> &arguments : wrong) {
        const Ended ended = control(arguments);
        EXPECT_EQ(2, ended.status) << testing::PrintToString(arguments);
        EXPECT_EQ("", ended.output);
        EXPECT_THAT(ended.errors, testing::StartsWith("quarnsnmp-camctl: "));
    }
}

} // namespace
