// SPDX-License-Identifier: Apache-2.0
// Calls over the sockets of a running camera.
#include <gmock/gmock.h>

#include "camera_process.h"

using namespace camera::test;
using namespace support;
using nlohmann::json;

namespace {

using ServiceSocket = CameraTest;

TEST_F(ServiceSocket, AnswersCalls) {
    LineClient client(directory_, "positioning");
    EXPECT_EQ("[0]", client.ask(R"(["initiator_init",null])"));
    EXPECT_EQ("[0,0,0,10]", client.ask(R"(["get_position_send","positioning/1"])"));
    EXPECT_EQ("[0]", client.ask(R"(["move_to_position_with_speed_percentage_send","positioning/1",)"
                                R"(1,90000,1.0,1,-45000,0.5,0,0,0.0,1])"));
    const std::string position = R"(["get_position_send","positioning/1"])";
    EXPECT_TRUE(eventually([&] { return client.ask(position) == "[0,90000,-45000,10]"; }));
    EXPECT_EQ("[0]", client.ask(R"(["initiator_deinit",null])"));
}

TEST_F(ServiceSocket, AnswersWhatItDoesNotKnow) {
    LineClient client(directory_, "alarm");
    EXPECT_EQ("[3]", client.ask(R"(["get_state_send","alarm/9"])"));
    EXPECT_EQ("[3]", client.ask(R"(["get_state_send",null])"));
    EXPECT_EQ("[4]", client.ask(R"(["get_states_send","alarm/1"])"));
    EXPECT_EQ("[0,0]", client.ask(R"(["get_state_send","alarm/1"])"));
}

TEST_F(ServiceSocket, AnswersRubbish) {
    LineClient client(directory_, "alarm");
    for (const char *rubbish : {"", " ", "rubbish", "{}", "[]", "3", "\"x\"", "null", R"(["get_state_send"])",
                                R"([7,"alarm/1"])", R"(["get_state_send",1])", R"(["get_state_send","alarm/1")",
                                R"(["get_state_send","alarm/1"]])", "[\"\xff\xfe\",\"alarm/1\"]", "\r"}) {
        EXPECT_EQ("[2]", client.ask(rubbish)) << rubbish;
    }
    EXPECT_EQ("[2]", client.ask(std::string("\0\0", 2)));
    EXPECT_EQ("[2]", client.ask(R"(["get_state_send","alarm/1",)" + std::string(60000, '[')));
    EXPECT_EQ("[0,0]", client.ask("[\"get_state_send\",\"alarm/1\"]\r"));
}

TEST_F(ServiceSocket, TellsItsTargets) {
    LineClient client(directory_, "directory");
    EXPECT_EQ(R"([0,"alarm/1","alarm/2","alarm/3","alarm/4"])", client.ask(R"(["get_target_ids","alarm"])"));
    EXPECT_EQ(R"([0,"positioning/1"])", client.ask(R"(["get_target_ids","positioning"])"));
    EXPECT_EQ("[0]", client.ask(R"(["get_target_ids","focus_stepper"])"));
    EXPECT_EQ("[0]", client.ask(R"(["get_target_ids","control"])"));
    EXPECT_EQ("[0]", client.ask(R"(["get_target_ids",""])"));
    for (const char *wrong : {R"(["get_targets","alarm"])", R"(["get_target_ids"])", R"(["get_target_ids",null])",
                              R"(["get_target_ids","alarm",1])", "alarm"}) {
        EXPECT_EQ("[2]", client.ask(wrong)) << wrong;
    }
}

TEST_F(ServiceSocket, AnswersManyRequestsAtOnceInTheirOrder) {
    LineClient client(directory_, "temperature");
    constexpr int kRequests = 500;
    std::string requests;
    for (int i = 0; i < kRequests; ++i) {
        requests += i % 2 == 0 ? "[\"get_temperature_send\",\"temperature/1\"]\n" : "[]\n";
    }
    client.send(requests);
    for (int i = 0; i < kRequests; ++i) {
        ASSERT_EQ(i % 2 == 0 ? "[0,31500]" : "[2]", client.readLine().value_or("no answer")) << i;
    }
}

TEST_F(ServiceSocket, AnswersAClientThatHasNothingMoreToSay) {
    LineClient client(directory_, "temperature");
    client.send("[\"get_temperature_send\",\"temperature/1\"]\n");
    client.finish();
    EXPECT_EQ("[0,31500]", client.readLine().value_or("no answer"));
    EXPECT_TRUE(client.ends());
}

TEST_F(ServiceSocket, KeepsTextsAsTheyAre) {
    LineClient client(directory_, "presets_tours");
    const std::string name = "T\u00fcr \"Nord\" \\ \u2603";
    EXPECT_EQ(json::array({0}),
              client.call({"set_preset_with_current_position_send", "presets_tours/1", "\u00e9", name, 3, 1}));
    EXPECT_EQ(json::array({0, "\u00e9"}), client.call({"get_preset_id_for_quarnapi_id_send", "presets_tours/1", 3}));
    LineClient control(directory_, "control");
    const json state = control.call({{"command", "state"}});
    EXPECT_EQ(name, state["state"]["services"]["presets_tours"]["targets"]["presets_tours/1"]["presets"][0]["name"]);
}

TEST(EachShippedCamera, HasASocketForEachOfItsServices) {
    for (const char *name : {"dome", "minimal", "stepper", "twinfocus"}) {
        const TemporaryDirectory root;
        RunningCamera camera(root.file("sockets"), name);
        EXPECT_EQ("camera " + std::string(name) + " ready in " + root.file("sockets"), camera.readyLine());
        std::vector<std::string> expected = {"camera.lock", "control.sock", "directory.sock"};
        LineClient control(root.file("sockets"), "control");
        const json state = control.call({{"command", "state"}})["state"];
        for (const auto &service : state["services"].items()) {
            expected.push_back(service.key() + ".sock");
        }
        EXPECT_THAT(entriesOf(root.file("sockets")), testing::UnorderedElementsAreArray(expected));
        LineClient client(root.file("sockets"), "device_information");
        EXPECT_EQ(10U, client.call({"get_static_information_send", "device_information/1"}).size());
    }
}

} // namespace
