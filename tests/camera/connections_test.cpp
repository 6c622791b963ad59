// SPDX-License-Identifier: Apache-2.0
// Misbehaving clients, and their effects on others.
#include <fstream>

#include <gmock/gmock.h>

#include "camera_process.h"
#include "wire.h"

using namespace camera::test;
using namespace support;

namespace {

using Connections = CameraTest;

TEST_F(Connections, TakeALineOfTheLargestSize) {
    LineClient client(directory_, "temperature");
    const std::string longest =
        kTemperatureRequest + std::string(wire::kMaximumLine - 1 - kTemperatureRequest.size(), ' ');
    EXPECT_EQ(kTemperatureAnswer, client.ask(longest));
    EXPECT_EQ(kTemperatureAnswer, client.ask(longest));
}

TEST_F(Connections, EndWithALongerLine) {
    LineClient witness(directory_, "temperature");
    LineClient client(directory_, "temperature");
    client.send(kTemperatureRequest + std::string(wire::kMaximumLine - kTemperatureRequest.size(), ' ') + "\n");
    EXPECT_TRUE(client.ends());
    LineClient endless(directory_, "control");
    endless.send(std::string(wire::kMaximumLine, 'x'));
    EXPECT_TRUE(endless.ends());
    EXPECT_EQ(kTemperatureAnswer, witness.ask(kTemperatureRequest));
    EXPECT_EQ(kTemperatureAnswer, LineClient(directory_, "temperature").ask(kTemperatureRequest));
}

TEST_F(Connections, PutHalfLinesTogether) {
    LineClient witness(directory_, "temperature");
    LineClient client(directory_, "temperature");
    for (const char octet : kTemperatureRequest) {
        client.send(std::string(1, octet));
        ASSERT_EQ(kTemperatureAnswer, witness.ask(kTemperatureRequest));
        ASSERT_FALSE(client.readable());
    }
    client.send("\n");
    EXPECT_EQ(kTemperatureAnswer, client.readLine().value_or("no answer"));
}

TEST_F(Connections, OfAClientThatDoesNotReadEndAndDisturbNobody) {
    LineClient witness(directory_, "device_information");
    LineClient client(directory_, "device_information");
    const std::string request = R"(["get_static_information_send","device_information/1"])";
    const std::string answer = witness.ask(request);
    std::string requests;
    for (int i = 0; i < 1000; ++i) {
        requests += request + "\n";
    }
    // The answers that the client does not read fill first the socket, then what the camera keeps for it.
    EXPECT_TRUE(eventually([&] {
        EXPECT_EQ(answer, witness.ask(request));
        return !client.sendWhatFits(requests);
    }));
    EXPECT_EQ(answer, witness.ask(request));
}

TEST_F(Connections, LoseNothingOfWhatWaitsForAClientToRead) {
    LineClient client(directory_, "device_information");
    const std::string request = R"(["get_static_information_send","device_information/1"])";
    const std::string answer = client.ask(request);
    std::string requests;
    // Far more answers than a socket holds, but less than the camera keeps.
    constexpr int kRequests = 20000;
    for (int i = 0; i < kRequests; ++i) {
        requests += request + "\n";
    }
    client.send(requests);
    for (int i = 0; i < kRequests; ++i) {
        ASSERT_EQ(answer, client.readLine().value_or("no answer")) << i;
    }
}

TEST_F(Connections, OfAFollowerThatDoesNotReadEnd) {
    LineClient follower(directory_, "control");
    EXPECT_EQ(R"({"ok":true})", follower.ask(R"({"command":"follow"})"));
    LineClient client(directory_, "relay");
    // 8 MiB of events are more than the socket and the camera keep for the follower.
    const std::string unknown(10000, 'x');
    for (int i = 0; i < 800; ++i) {
        ASSERT_EQ("[4]", client.ask("[\"" + unknown + "\",null]"));
    }
    EXPECT_TRUE(follower.ends());
    EXPECT_EQ("[0,0]", client.ask(R"(["get_state_send","relay/1"])"));
}

TEST_F(Connections, OfTheLongestIdleClientEndsBeyondTheLimit) {
    for (const char *socket : {"temperature", "directory", "control"}) {
        const std::string request = R"({"command":"none"})";
        LineClient active(directory_, socket);
        const std::string answer = active.ask(request);
        std::vector<std::unique_ptr<LineClient>> idle;
        for (int i = 0; i < 47; ++i) {
            idle.push_back(std::make_unique<LineClient>(directory_, socket));
            EXPECT_EQ(answer, idle.back()->ask(request));
        }
        EXPECT_EQ(answer, active.ask(request));
        LineClient other(directory_, socket);
        ASSERT_EQ(answer, other.ask(request)) << socket;
        EXPECT_TRUE(idle[0]->ends());
        EXPECT_FALSE(idle[1]->readable());
        EXPECT_EQ(answer, active.ask(request));
    }
}

TEST_F(Connections, OfAFollowerWithEventsIsNotIdle) {
    Follower follower(directory_);
    std::vector<std::unique_ptr<LineClient>> idle;
    for (int i = 0; i < 100; ++i) {
        idle.push_back(std::make_unique<LineClient>(directory_, "control"));
        EXPECT_EQ(kDone,
                  idle.back()->call(
                      {{"command", "set"}, {"target", "temperature/1"}, {"field", "temperature"}, {"value", i}}));
        ASSERT_EQ("changed", follower.next().value("event", ""));
    }
}

/** Returns the processor time of a process in clock ticks. */
long ticksOf(pid_t process) {
    std::ifstream file("/proc/" + std::to_string(process) + "/stat");
    std::string field;
    std::getline(file, field, ')');
    constexpr int kUserTime = 12; // counted from the field behind the name
    long user = 0;
    long system = 0;
    for (int i = 1; i < kUserTime; ++i) {
        file >> field;
    }
    file >> user >> system;
    return user + system;
}

TEST_F(Connections, WaitWhenTheCameraHasNoFileLeft) {
    constexpr unsigned kFiles = 40;
    directory_ = root_.file("few");
    RunningCamera camera(directory_, "dome", kFiles);
    LineClient witness(directory_, "temperature");
    EXPECT_EQ(kTemperatureAnswer, witness.ask(kTemperatureRequest));
    std::vector<std::unique_ptr<LineClient>> clients;
    for (unsigned i = 0; i < kFiles; ++i) {
        clients.push_back(std::make_unique<LineClient>(directory_, i % 2 == 0 ? "temperature" : "relay"));
        ASSERT_TRUE(clients.back()->connected());
    }
    LineClient waiting(directory_, "temperature");
    waiting.send(kTemperatureRequest + "\n");
    const auto start = std::chrono::steady_clock::now();
    const long before = ticksOf(camera.pid());
    // The camera tries again ten times a second; spinning would use all of this second.
    EXPECT_TRUE(eventually([&] { return std::chrono::steady_clock::now() - start > std::chrono::seconds(1); }));
    EXPECT_LT(ticksOf(camera.pid()) - before, sysconf(_SC_CLK_TCK) / 2);
    EXPECT_FALSE(waiting.readable());
    EXPECT_EQ(kTemperatureAnswer, witness.ask(kTemperatureRequest));
    clients.clear();
    EXPECT_EQ(kTemperatureAnswer, waiting.readLine().value_or("no answer"));
}

} // namespace
