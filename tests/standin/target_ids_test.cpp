// SPDX-License-Identifier: Apache-2.0
#include "standin_test.h"

namespace {

class TargetIdsTest : public StandInTest {
protected:
    bool ask(const char *service = "alarm") {
        ids = {"kept"};
        return zorva::core::getTargetIds(service, ids);
    }

    std::vector<std::string> ids;
};

TEST_F(TargetIdsTest, AreAppended) {
    const ScriptedServer server(directory(), "directory", R"([0,"alarm/1","","größe"])");
    EXPECT_TRUE(ask());
    EXPECT_EQ((std::vector<std::string>{"kept", "alarm/1", "", "größe"}), ids);
    EXPECT_EQ((std::vector<std::string>{R"(["get_target_ids","alarm"])"}), server.requests());
}

TEST_F(TargetIdsTest, NoneAreNoFailureAndOneConnectionServesAllQuestions) {
    const ScriptedServer server(directory(), "directory", "[0]");
    for (int i = 0; i < 20; ++i) {
        EXPECT_TRUE(ask("no such service"));
        EXPECT_EQ(1U, ids.size());
    }
    EXPECT_EQ(1U, server.connectionCount());
}

TEST_F(TargetIdsTest, FailWithoutACamera) {
    EXPECT_FALSE(ask());
    EXPECT_EQ(1U, ids.size());
    const ScriptedServer server(directory(), "directory", R"([0,"alarm/1"])");
    EXPECT_TRUE(ask());
    EXPECT_EQ(2U, ids.size());
}

TEST_F(TargetIdsTest, FailWhenTheServiceIsDownOrTheAnswerIsNotAListOfTexts) {
    ScriptedServer server(directory(), "directory", "[0]");
    for (const std::string answer : {R"([6,"alarm/1"])", R"([0,"a",1])", R"([0,"a",null])", R"([0,["a"]])",
                                     R"([0,"a\u0000b"])", R"(["a"])", "[]", "{}", "nonsense"}) {
        server.setHandler([answer](Peer &peer, const std::string &) { peer.send(answer + "\n"); });
        EXPECT_FALSE(ask()) << answer;
        EXPECT_EQ(1U, ids.size()) << answer;
    }
}

TEST_F(TargetIdsTest, WantAServiceName) {
    const ScriptedServer server(directory(), "directory", "[0]");
    EXPECT_FALSE(ask(nullptr));
    EXPECT_FALSE(ask(std::string(70000, 'x').c_str()));
    EXPECT_TRUE(server.requests().empty());
}

TEST_F(TargetIdsTest, ManyFit) {
    std::string answer = "[0";
    for (int i = 0; i < 4000; ++i) {
        answer += ",\"target" + std::to_string(i) + "\"";
    }
    const ScriptedServer server(directory(), "directory", answer + "]");
    EXPECT_TRUE(ask());
    ASSERT_EQ(4001U, ids.size());
    EXPECT_EQ("target3999", ids.back());
}

} // namespace
