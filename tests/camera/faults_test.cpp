// SPDX-License-Identifier: Apache-2.0
#include <gmock/gmock.h>

#include "dry_run.h"
#include "event_recorder.h"
#include "faults.h"
#include "service_request_handler.h"
#include "test_cameras.h"
#include "wire.h"

using namespace camera;
using nlohmann::json;

namespace {

TEST(FaultTable, AffectsTheGivenNumberOfCalls) {
    FaultTable faults;
    faults.set("temperature", "get_temperature_send", 7, 2);
    EXPECT_EQ(std::nullopt, faults.take("temperature", "other"));
    EXPECT_EQ(std::nullopt, faults.take("alarm", "get_temperature_send"));
    EXPECT_EQ(7, faults.take("temperature", "get_temperature_send"));
    EXPECT_EQ(7, faults.take("temperature", "get_temperature_send"));
    EXPECT_EQ(std::nullopt, faults.take("temperature", "get_temperature_send"));
}

TEST(FaultTable, AffectsAllCallsWithoutANumber) {
    FaultTable faults;
    faults.set("temperature", "*", 7, std::nullopt);
    for (int i = 0; i < 100; ++i) {
        EXPECT_EQ(7, faults.take("temperature", "get_temperature_send"));
    }
}

TEST(FaultTable, ForAnOperationPrefersNamedOperations) {
    FaultTable faults;
    faults.set("relay", "*", 1, std::nullopt);
    faults.set("relay", "get_state_send", 2, 1);
    EXPECT_EQ(2, faults.take("relay", "get_state_send"));
    EXPECT_EQ(1, faults.take("relay", "get_state_send"));
}

TEST(FaultTable, ReplacesOlderFaults) {
    FaultTable faults;
    faults.set("relay", "*", 1, std::nullopt);
    faults.set("relay", "*", 2, 1);
    EXPECT_EQ(2, faults.take("relay", "get_state_send"));
    EXPECT_EQ(std::nullopt, faults.take("relay", "get_state_send"));
}

TEST(FaultTable, ClearsTheSelectedFaults) {
    const auto filled = [] {
        FaultTable faults;
        faults.set("relay", "*", 1, 1);
        faults.set("relay", "get_state_send", 2, 3);
        faults.set("alarm", "get_state_send", 3, std::nullopt);
        return faults;
    };
    FaultTable faults = filled();
    faults.clear("relay", "get_state_send");
    EXPECT_EQ((json{{{"service", "alarm"}, {"operation", "get_state_send"}, {"status", 3}, {"times", "always"}},
                    {{"service", "relay"}, {"operation", "*"}, {"status", 1}, {"times", 1}}}),
              faults.list("status"));
    faults = filled();
    faults.clear("relay", std::nullopt);
    EXPECT_EQ(1U, faults.list("status").size());
    faults = filled();
    faults.clear(std::nullopt, std::nullopt);
    EXPECT_EQ(json::array(), faults.list("status"));
}

class RequestHandler : public testing::Test {
protected:
    std::string line(const json &request, const std::string &service = "relay") {
        std::string text = wire::encode(request);
        text.pop_back();
        return handler_.handleService(service, text).line;
    }

    std::unique_ptr<CameraModel> camera_ = test::shippedCamera("dome");
    Faults faults_;
    SimulatedServices services_;
    ServiceRequestHandler handler_{*camera_, faults_, services_};
};

TEST_F(RequestHandler, DoesNotExecuteACallThatFails) {
    test::setUpRelay(*camera_, "relay/1");
    faults_.failures().set("relay", "set_state_send", -5, 1);
    EXPECT_EQ("[-5]\n", line({"set_state_send", "relay/1", 1}));
    EXPECT_EQ(0, camera_->state("relay/1")["state"]);
    EXPECT_EQ("[0]\n", line({"set_state_send", "relay/1", 1}));
    EXPECT_EQ(1, camera_->state("relay/1")["state"]);
}

TEST_F(RequestHandler, CombinesFailureAndDelay) {
    faults_.failures().set("relay", "get_state_send", 5, 1);
    faults_.delays().set("relay", "*", 250, std::nullopt);
    const Reply reply = handler_.handleService("relay", R"(["get_state_send","relay/1"])");
    EXPECT_EQ("[5]\n", reply.line);
    EXPECT_EQ(std::chrono::milliseconds(250), reply.delay);
    const Reply next = handler_.handleService("relay", R"(["get_state_send","relay/1"])");
    EXPECT_EQ("[0,0]\n", next.line);
    EXPECT_EQ(std::chrono::milliseconds(250), next.delay);
}

TEST_F(RequestHandler, PublishesFaults) {
    test::setUpRelay(*camera_, "relay/1");
    const test::EventRecorder recorder(camera_->events());
    faults_.failures().set("relay", "*", 5, 1);
    faults_.delays().set("relay", "set_state_send", 10, 1);
    line({"set_state_send", "relay/1", 1});
    line({"set_state_send", "relay/1", 0});
    faults_.failures().set("relay", "initiator_init", 9, 1);
    line({"initiator_init", nullptr});
    json command = R"({"event": "command", "service": "relay", "target": "relay/1", "operation": "set_state_send",
                       "arguments": [1], "status": 5})"_json;
    json executed = command;
    executed["arguments"] = {0};
    executed["status"] = wire::kSuccess;
    EXPECT_THAT(recorder.seen(),
                testing::ElementsAre(
                    R"({"event": "fault", "service": "relay", "operation": "set_state_send", "status": 5,
                        "milliseconds": 10})"_json,
                    command, executed,
                    R"({"event": "fault", "service": "relay", "operation": "initiator_init", "status": 9})"_json));
}

TEST_F(RequestHandler, AnswersClientsThatRegisterAndLeave) {
    EXPECT_EQ("[0]\n", line({"initiator_init", nullptr}));
    EXPECT_EQ("[0]\n", line({"initiator_deinit", nullptr}));
    EXPECT_EQ("[2]\n", line({"initiator_init", "relay/1"}));
    EXPECT_EQ("[2]\n", line({"initiator_init", nullptr, 1}));
    faults_.failures().set("relay", "*", 42, 1);
    EXPECT_EQ("[42]\n", line({"initiator_init", nullptr}));
}

TEST_F(RequestHandler, DoesNotCountMalformedRequests) {
    faults_.failures().set("relay", "*", 42, 1);
    EXPECT_EQ("[2]\n", handler_.handleService("relay", "rubbish").line);
    EXPECT_EQ("[42]\n", line({"get_state_send", "relay/1"}));
}

} // namespace
