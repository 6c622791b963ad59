// SPDX-License-Identifier: Apache-2.0
#include <algorithm>
#include <set>

#include "service_trials.h"

namespace {

using nlohmann::json;

/** Every call of every service. */
class ServiceCallTest : public StandInTest, public ::testing::WithParamInterface<ServiceCall> {
protected:
    void SetUp() override {
        StandInTest::SetUp();
        server = std::make_unique<ScriptedServer>(directory(), GetParam().service, "[0]");
        cookie = open(GetParam().initiatorInit);
    }

    void answerWith(const json &answer) {
        const std::string line = answer.dump() + "\n";
        server->setHandler([line](Peer &peer, const std::string &) { peer.send(line); });
    }

    static json withStatus(zorva_core_status status, const json &results) {
        json answer = results;
        answer.insert(answer.begin(), status);
        return answer;
    }

    static json untouched(const Trial &trial) {
        return json(json::array_t(trial.results().size(), json("untouched")));
    }

    std::unique_ptr<ScriptedServer> server;
    void *cookie = nullptr;
};

TEST_P(ServiceCallTest, CarriesArgumentsAndResults) {
    for (unsigned round = 0; round < kTrialRounds; ++round) {
        const std::unique_ptr<Trial> trial = GetParam().trial(round);
        answerWith(withStatus(0, trial->results()));
        ASSERT_EQ(wire::kSuccess, trial->run(cookie, kTarget));

        json expected = json::array({GetParam().operation, kTarget});
        for (const json &argument : trial->arguments()) {
            expected.push_back(argument);
        }
        EXPECT_EQ(expected, json::parse(server->requests().back()));
        EXPECT_EQ(trial->results(), trial->outputs());
    }
    EXPECT_EQ(kTrialRounds, server->requests().size());
    EXPECT_EQ(1U, server->connectionCount());
}

TEST_P(ServiceCallTest, PassesOnTheServicesRefusal) {
    const std::unique_ptr<Trial> trial = GetParam().trial(0);
    for (const zorva_core_status refusal : {wire::kFailed, wire::kUnknownTarget, wire::kNotSupported}) {
        answerWith(json::array({refusal}));
        EXPECT_EQ(refusal, trial->run(cookie, kTarget));
        EXPECT_EQ(untouched(*trial), trial->outputs());
    }
    EXPECT_EQ(1U, server->connectionCount());
}

TEST_P(ServiceCallTest, WritesNothingUnlessAllResultsFit) {
    const std::unique_ptr<Trial> trial = GetParam().trial(0);
    const auto badResponses = trial->badResponses();
    ASSERT_EQ(trial->results().size(), badResponses.size());
    for (std::size_t output = 0; output < badResponses.size(); ++output) {
        for (const json &badResponse : badResponses[output]) {
            json results = trial->results();
            results[output] = badResponse;
            answerWith(withStatus(0, results));
            EXPECT_EQ(wire::kBadResponse, trial->run(cookie, kTarget)) << output << ": " << badResponse;
            EXPECT_EQ(untouched(*trial), trial->outputs()) << output << ": " << badResponse;
        }
    }
}

TEST_P(ServiceCallTest, WantsTheRightNumberOfResults) {
    const std::unique_ptr<Trial> trial = GetParam().trial(0);
    json results = trial->results();
    results.push_back(0);
    answerWith(withStatus(0, results));
    EXPECT_EQ(wire::kBadResponse, trial->run(cookie, kTarget));
    if (results.size() > 1) {
        results.erase(results.size() - 1);
        results.erase(results.size() - 1);
        answerWith(withStatus(0, results));
        EXPECT_EQ(wire::kBadResponse, trial->run(cookie, kTarget));
    }
    EXPECT_EQ(untouched(*trial), trial->outputs());
}

TEST_P(ServiceCallTest, RefusesNullWithoutAsking) {
    const std::unique_ptr<Trial> trial = GetParam().trial(0);
    for (std::size_t output = 0; output < trial->results().size(); ++output) {
        EXPECT_EQ(wire::kInvalidArgument, trial->run(cookie, kTarget, output));
    }
    EXPECT_EQ(wire::kInvalidArgument, trial->run(cookie, nullptr));
    EXPECT_EQ(untouched(*trial), trial->outputs());
    EXPECT_TRUE(server->requests().empty());
}

TEST_P(ServiceCallTest, WantsAHandleOfItsService) {
    const std::unique_ptr<Trial> trial = GetParam().trial(0);
    const std::string otherName = GetParam().service == "iris" ? "power" : "iris";
    const ScriptedServer otherServer(directory(), otherName, "[0]");
    void *const other = open(otherName == "iris" ? &zorva_api_iris_initiator_init : &zorva_api_power_initiator_init);
    int unknown = 0;
    for (void *const wrong :
         {static_cast<void *>(nullptr), static_cast<void *>(&unknown), other, logCookie, ipcCookie}) {
        EXPECT_EQ(wire::kInvalidHandle, trial->run(wrong, kTarget));
    }
    EXPECT_TRUE(otherServer.requests().empty());
    EXPECT_EQ(wire::kSuccess, zorva_core_deinit());
    EXPECT_EQ(wire::kNotInitialised, trial->run(cookie, kTarget));
    EXPECT_EQ(untouched(*trial), trial->outputs());
    EXPECT_TRUE(server->requests().empty());
}

INSTANTIATE_TEST_SUITE_P(All, ServiceCallTest, ::testing::ValuesIn(serviceCalls()),
                         [](const auto &call) { return call.param.service + "_" + call.param.operation; });

TEST(ServiceCalls, AreDifferent) {
    std::set<std::string> names;
    for (const ServiceCall &call : serviceCalls()) {
        names.insert(call.service + "_" + call.operation);
    }
    EXPECT_FALSE(names.empty());
    EXPECT_EQ(serviceCalls().size(), names.size());
}

} // namespace
