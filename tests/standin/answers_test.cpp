// SPDX-License-Identifier: Apache-2.0
#include <cmath>
#include <limits>

#include "standin_test.h"

namespace {

/** Malformed answers to a call with two outputs. */
class AnswersTest : public StandInTest {
protected:
    void SetUp() override {
        StandInTest::SetUp();
        cookie = open(&zorva_api_focus_stepper_initiator_init);
    }

    zorva_core_status callAnsweredWith(const std::string &octets) {
        server.setHandler([octets](Peer &peer, const std::string &) { peer.send(octets); });
        current = second = kUntouched;
        return zorva_api_focus_stepper_get_position_send(cookie, kTarget, &current, &second);
    }

    static constexpr int32_t kUntouched = -77;
    ScriptedServer server{directory(), "focus_stepper", "[0]"};
    void *cookie = nullptr;
    int32_t current = kUntouched;
    int32_t second = kUntouched;
};

TEST_F(AnswersTest, MalformedOnesEndTheConnection) {
    const std::vector<std::string> malformed = {"",
                                                " ",
                                                "[",
                                                "[0,1,2",
                                                "0",
                                                "{}",
                                                "null",
                                                "[]",
                                                "\"[0,1,2]\"",
                                                "[[0],1,2]",
                                                "[\"0\",1,2]",
                                                "[0.0,1,2]",
                                                "[null,1,2]",
                                                "[true,1,2]",
                                                "[0]",
                                                "[0,1]",
                                                "[0,1,2,3]",
                                                "[0,1,2] [0,1,2]",
                                                "[0,1,2]]",
                                                "[2147483648]",
                                                "[-2147483649]",
                                                "[0,01,2]",
                                                "[0,1,2],",
                                                "[0,[1,2]]",
                                                "[0,1,\xff]",
                                                "[0,\"\xc3\",2]",
                                                std::string("[0,1,2]\0", 8),
                                                std::string(20000, '[')};
    unsigned connections = 1;
    for (const std::string &answer : malformed) {
        EXPECT_EQ(wire::kBadResponse, callAnsweredWith(answer + "\n")) << answer;
        EXPECT_EQ(kUntouched, current) << answer;
        EXPECT_EQ(kUntouched, second) << answer;
        EXPECT_TRUE(clientSockets(directory()).empty()) << answer;
        EXPECT_EQ(wire::kSuccess, callAnsweredWith("[0,1,2]\n")) << answer;
        EXPECT_EQ(1, current);
        EXPECT_EQ(2, second);
        // Each malformed one costs a connection; the good one after it opens the next.
        EXPECT_EQ(++connections, server.connectionCount()) << answer;
    }
}

TEST_F(AnswersTest, MayBeAsLongAsALineMayBe) {
    const std::string answer = "[0,1,2]";
    EXPECT_EQ(wire::kSuccess, callAnsweredWith(answer + std::string(65536 - answer.size() - 1, ' ') + "\n"));
    EXPECT_EQ(1, current);
    EXPECT_EQ(wire::kBadResponse, callAnsweredWith(answer + std::string(65536 - answer.size(), ' ') + "\n"));
    EXPECT_EQ(kUntouched, current);
}

TEST_F(AnswersTest, ServicesStatusesAreKeptAsTheyAre) {
    for (const zorva_core_status status :
         {1, 6, 99, 105, 4711, std::numeric_limits<int32_t>::max(), -1, std::numeric_limits<int32_t>::min()}) {
        EXPECT_EQ(status, callAnsweredWith("[" + std::to_string(status) + ",8,9]\n"));
        EXPECT_EQ(kUntouched, current);
    }
}

TEST_F(AnswersTest, OctetsBehindAnAnswerAreNotTakenForTheNext) {
    for (const char *surplus : {"[0,3,4]\n", "[0,3"}) {
        EXPECT_EQ(wire::kSuccess, callAnsweredWith(std::string("[0,1,2]\n") + surplus));
        EXPECT_EQ(1, current);
    }
    EXPECT_EQ(wire::kSuccess, callAnsweredWith("[0,1,2]\n"));
    EXPECT_EQ(3U, server.connectionCount());
    server.forEachPeer([](Peer &peer) { peer.send("[0,3,4]\n"); });
    EXPECT_EQ(wire::kSuccess, callAnsweredWith("[0,5,6]\n"));
    EXPECT_EQ(5, current);
}

TEST_F(AnswersTest, PiecesAreJoined) {
    server.setHandler([](Peer &peer, const std::string &) {
        for (const char octet : std::string("[0,-12345,67890]\n")) {
            peer.send(std::string(1, octet));
        }
    });
    EXPECT_EQ(wire::kSuccess, zorva_api_focus_stepper_get_position_send(cookie, kTarget, &current, &second));
    EXPECT_EQ(-12345, current);
    EXPECT_EQ(67890, second);
}

TEST_F(AnswersTest, ArgumentsThatCannotBeSentAreRefused) {
    const ScriptedServer presets(directory(), "presets_tours", "[0]");
    void *const tours = open(&zorva_api_presets_tours_initiator_init);
    for (const double speed : {std::nan(""), HUGE_VAL, -HUGE_VAL}) {
        EXPECT_EQ(wire::kInvalidArgument,
                  zorva_api_presets_tours_move_to_preset_send(tours, kTarget, "1", speed, 0, 1));
    }
    const std::string tooLong(65536, 'x');
    EXPECT_EQ(wire::kInvalidArgument,
              zorva_api_presets_tours_move_to_preset_send(tours, kTarget, tooLong.c_str(), 1.0, 0, 1));
    EXPECT_TRUE(presets.requests().empty());
    const std::string rest = "[\"move_to_preset_send\",\"camera/1\",\"\",1.0,0,1]\n";
    const std::string fitting(65536 - rest.size(), 'x');
    EXPECT_EQ(wire::kSuccess, zorva_api_presets_tours_move_to_preset_send(tours, kTarget, fitting.c_str(), 1.0, 0, 1));
    ASSERT_EQ(1U, presets.requests().size());
    EXPECT_EQ(65535U, presets.requests()[0].size());
}

TEST_F(AnswersTest, TextsThatAreNotUtf8AreSentReplaced) {
    EXPECT_EQ(wire::kSuccess, callAnsweredWith("[0,1,2]\n"));
    EXPECT_EQ(wire::kSuccess, zorva_api_focus_stepper_get_position_send(cookie, "caf\xe9", &current, &second));
    EXPECT_EQ("[\"get_position_send\",\"caf\xef\xbf\xbd\"]", server.requests().back());
}

} // namespace
