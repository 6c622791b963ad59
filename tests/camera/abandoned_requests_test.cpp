// SPDX-License-Identifier: Apache-2.0
// Requests of clients that gave up before the camera read them.
#include <csignal>
#include <set>

#include <gtest/gtest.h>

#include "camera_process.h"

using namespace camera::test;
using namespace support;

namespace {

class AbandonedRequests : public CameraTest {
protected:
    static constexpr const char *kReboot = R"(["reboot_send","device_management/1",2])";
    static constexpr const char *kMove =
        R"(["move_to_position_with_speed_percentage_send","positioning/1",1,20000,0.5,0,0,0.0,0,0,0.0,1])";
    static constexpr const char *kSwitch = R"(["set_state_send","relay/1",1])";

    static std::string line(const std::string &request) {
        return request + "\n";
    }

    /** Connects a client to the camera. */
    std::unique_ptr<LineClient> connect(const std::string &socket) {
        auto client = std::make_unique<LineClient>(directory_, socket);
        client->ask("[]"); // The camera has accepted the connection.
        return client;
    }

    /** Resumes a stopped camera. @return the operations and kinds of the events up to a later command */
    std::multiset<std::string> resume() {
        camera_.signal(SIGCONT);
        // Each round trip gives the camera an opportunity to execute the requests of the other connections.
        LineClient witness(directory_, "relay");
        for (int i = 0; i < 20; ++i) {
            EXPECT_EQ("[0,0]", witness.ask(R"(["get_state_send","relay/1"])"));
        }
        EXPECT_EQ("[4]", witness.ask(R"(["the_end",null])"));
        std::multiset<std::string> events;
        for (std::string operation; operation != "the_end";) {
            const nlohmann::json event = follower_.next();
            if (event.empty()) {
                ADD_FAILURE() << "no event of the last command";
                break;
            }
            operation = event.value("operation", "");
            events.insert(operation.empty() ? event.value("event", "") : operation);
        }
        return events;
    }

    Follower follower_{directory_};
};

const std::multiset<std::string> kTheEndOnly = {"the_end"};

TEST_F(AbandonedRequests, AreDropped) {
    const std::unique_ptr<LineClient> management = connect("device_management");
    std::unique_ptr<LineClient> known = connect("device_management");
    camera_.signal(SIGSTOP);
    known->send(line(kReboot));
    known.reset();
    LineClient(directory_, "device_management").send(line(kReboot));
    LineClient(directory_, "positioning").send(line(kMove) + line(kMove));
    LineClient(directory_, "relay").send(line(kSwitch));
    LineClient(directory_, "control").send(line(R"({"command":"down","service":"alarm"})"));
    EXPECT_EQ(kTheEndOnly, resume());
    EXPECT_EQ("[2]", management->ask("[]")) << "the camera has restarted";
}

TEST_F(AbandonedRequests, AreNotThoseOfAClientThatOnlyEndsItsSendingDirection) {
    LineClient client(directory_, "positioning");
    camera_.signal(SIGSTOP);
    client.send(line(kMove));
    client.finish();
    const std::multiset<std::string> events = resume();
    EXPECT_EQ(1U, events.count("move_to_position_with_speed_percentage_send"));
    EXPECT_EQ("[0]", client.readLine().value_or("no answer"));
}

} // namespace
