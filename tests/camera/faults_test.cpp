// SPDX-License-Identifier: Apache-2.0
#include <gmock/gmock.h>

#include "dry_run.h"
#include "faults.h"
#include "service_request_handler.h"
#include "test_cameras.h"
#include "wire.h"

using namespace camera;
using nlohmann::json;

namespace {

TEST(FaultTable, StrikeAsOftenAsOrdered) {
    FaultTable orders;
    orders.set("temperature", "get_temperature_send", 7, 2);
    EXPECT_EQ(std::nullopt, orders.take("temperature", "other"));
    EXPECT_EQ(std::nullopt, orders.take("alarm", "get_temperature_send"));
    EXPECT_EQ(7, orders.take("temperature", "get_temperature_send"));
    EXPECT_EQ(7, orders.take("temperature", "get_temperature_send"));
    EXPECT_EQ(std::nullopt, orders.take("temperature", "get_temperature_send"));
}

TEST(FaultTable, StrikeAlways) {
    FaultTable orders;
    orders.set("temperature", "*", 7, std::nullopt);
    for (int i = 0; i < 100; ++i) {
        EXPECT_EQ(7, orders.take("temperature", "get_temperature_send"));
    }
}

TEST(FaultTable, ForAnOperationGoBeforeThoseForAll) {
    FaultTable orders;
    orders.set("relay", "*", 1, std::nullopt);
    orders.set("relay", "get_state_send", 2, 1);
    EXPECT_EQ(2, orders.take("relay", "get_state_send"));
    EXPECT_EQ(1, orders.take("relay", "get_state_send"));
}

TEST(FaultTable, TakeThePlaceOfOlderOnes) {
    FaultTable orders;
    orders.set("relay", "*", 1, std::nullopt);
    orders.set("relay", "*", 2, 1);
    EXPECT_EQ(2, orders.take("relay", "get_state_send"));
    EXPECT_EQ(std::nullopt, orders.take("relay", "get_state_send"));
}

TEST(FaultTable, AreClearedAsMeant) {
    const auto ordered = [] {
        FaultTable orders;
        orders.set("relay", "*", 1, 1);
        orders.set("relay", "get_state_send", 2, 3);
        orders.set("alarm", "get_state_send", 3, std::nullopt);
        return orders;
    };
    FaultTable orders = ordered();
    orders.clear("relay", "get_state_send");
    EXPECT_EQ((json{{{"service", "alarm"}, {"operation", "get_state_send"}, {"status", 3}, {"times", "always"}},
                    {{"service", "relay"}, {"operation", "*"}, {"status", 1}, {"times", 1}}}),
              orders.list("status"));
    orders = ordered();
    orders.clear("relay", std::nullopt);
    EXPECT_EQ(1U, orders.list("status").size());
    orders = ordered();
    orders.clear(std::nullopt, std::nullopt);
    EXPECT_EQ(json::array(), orders.list("status"));
}

class Desk : public testing::Test {
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

TEST_F(Desk, DoesNotExecuteACallThatFails) {
    test::setUpRelay(*camera_, "relay/1");
    faults_.failures().set("relay", "set_state_send", -5, 1);
    EXPECT_EQ("[-5]\n", line({"set_state_send", "relay/1", 1}));
    EXPECT_EQ(0, camera_->state("relay/1")["state"]);
    EXPECT_EQ("[0]\n", line({"set_state_send", "relay/1", 1}));
    EXPECT_EQ(1, camera_->state("relay/1")["state"]);
}

TEST_F(Desk, CombinesFailureAndDelay) {
    faults_.failures().set("relay", "get_state_send", 5, 1);
    faults_.delays().set("relay", "*", 250, std::nullopt);
    const Reply reply = handler_.handleService("relay", R"(["get_state_send","relay/1"])");
    EXPECT_EQ("[5]\n", reply.line);
    EXPECT_EQ(std::chrono::milliseconds(250), reply.delay);
    const Reply next = handler_.handleService("relay", R"(["get_state_send","relay/1"])");
    EXPECT_EQ("[0,0]\n", next.line);
    EXPECT_EQ(std::chrono::milliseconds(250), next.delay);
}

TEST_F(Desk, TellsOfFaultsThatStrike) {
    test::setUpRelay(*camera_, "relay/1");
    std::vector<json> seen;
    const auto subscription = camera_->events().subscribe([&](json event) {
        event.erase("time");
        seen.push_back(event);
    });
    faults_.failures().set("relay", "*", 5, 1);
    faults_.delays().set("relay", "set_state_send", 10, 1);
    line({"set_state_send", "relay/1", 1});
    line({"set_state_send", "relay/1", 0});
    faults_.failures().set("relay", "initiator_init", 9, 1);
    line({"initiator_init", nullptr});
    EXPECT_THAT(seen,
                testing::ElementsAre(
                    R"({"event": "fault", "service": "relay", "operation": "set_state_send", "status": 5,
                       "milliseconds": 10})"_json,
                    R"({"event": "command", "service": "relay", "target": "relay/1", "operation": "set_state_send",
                       "arguments": [1], "status": 5})"_json,
                    R"({"event": "command", "service": "relay", "target": "relay/1", "operation": "set_state_send",
                       "arguments": [0], "status": 0})"_json,
                    json{{"event", "fault"}, {"service", "relay"}, {"operation", "initiator_init"}, {"status", 9}}));
}

TEST_F(Desk, WelcomesClientsThatComeAndGo) {
    EXPECT_EQ("[0]\n", line({"initiator_init", nullptr}));
    EXPECT_EQ("[0]\n", line({"initiator_deinit", nullptr}));
    EXPECT_EQ("[2]\n", line({"initiator_init", "relay/1"}));
    EXPECT_EQ("[2]\n", line({"initiator_init", nullptr, 1}));
    faults_.failures().set("relay", "*", 42, 1);
    EXPECT_EQ("[42]\n", line({"initiator_init", nullptr}));
}

TEST_F(Desk, DoesNotCountRubbishAsACall) {
    faults_.failures().set("relay", "*", 42, 1);
    EXPECT_EQ("[2]\n", handler_.handleService("relay", "rubbish").line);
    EXPECT_EQ("[42]\n", line({"get_state_send", "relay/1"}));
}

} // namespace
