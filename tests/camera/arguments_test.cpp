// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include "operation.h"
#include "test_cameras.h"

using namespace camera;
using nlohmann::json;

namespace {

template <typename Value>
std::optional<Value> read(const json &value) {
    Value argument{};
    return readArgument(value, argument) ? std::optional<Value>(argument) : std::nullopt;
}

/** Expects that an integer type takes the values from its minimum to its maximum only. */
template <typename Value>
void expectRange() {
    const auto lowest = static_cast<std::int64_t>(std::numeric_limits<Value>::min());
    const auto highest = static_cast<std::int64_t>(std::numeric_limits<Value>::max());
    EXPECT_EQ(std::numeric_limits<Value>::min(), read<Value>(lowest));
    EXPECT_EQ(std::numeric_limits<Value>::max(), read<Value>(highest));
    EXPECT_FALSE(read<Value>(lowest - 1));
    EXPECT_FALSE(read<Value>(highest + 1));
    EXPECT_FALSE(read<Value>(18446744073709551615ULL));
}

TEST(Arguments, OfEachIntegerTypeTakeItsWholeRangeOnly) {
    expectRange<std::uint8_t>();
    expectRange<std::int32_t>();
    expectRange<std::uint32_t>();
}

TEST(Arguments, ThatAreIntegersTakeNothingElse) {
    for (const json &wrong : {json(1.0), json("1"), json(true), json(nullptr), json::array(), json::object()}) {
        EXPECT_FALSE(read<std::int32_t>(wrong)) << wrong;
        EXPECT_FALSE(read<std::uint8_t>(wrong)) << wrong;
    }
}

TEST(Arguments, ThatAreDoublesTakeAnyNumber) {
    EXPECT_EQ(0.25, read<double>(0.25));
    EXPECT_EQ(-3.0, read<double>(-3));
    EXPECT_FALSE(read<double>("0.5"));
    EXPECT_FALSE(read<double>(nullptr));
}

TEST(Arguments, ThatAreTextsTakeNull) {
    EXPECT_EQ(Text("gate"), read<Text>("gate").value());
    EXPECT_EQ(Text(), read<Text>(nullptr).value());
    EXPECT_FALSE(read<Text>(7));
    EXPECT_FALSE(read<Text>(std::string("a\0b", 3)));
    EXPECT_TRUE(read<Text>(std::string(kLongestText, 'x')));
    EXPECT_FALSE(read<Text>(std::string(kLongestText + 1, 'x')));
}

wire::Status statusOf(const json &request, const std::string &service = "alarm") {
    return test::shippedCamera("dome")->call(service, request).status;
}

TEST(Requests, NeedTheirShape) {
    EXPECT_EQ(wire::kSuccess, statusOf({"get_state_send", "alarm/4"}));
    for (const json &wrong : {json(), json(3), json::object(), json::array(), json::array({"get_state_send"}),
                              json::array({1, "alarm/1"}), json::array({"get_state_send", 1})}) {
        EXPECT_EQ(wire::kInvalidArgument, statusOf(wrong)) << wrong;
    }
}

TEST(Requests, NeedAKnownOperation) {
    EXPECT_EQ(wire::kUnknownOperation, statusOf({"get_state", "alarm/1"}));
    EXPECT_EQ(wire::kUnknownOperation, statusOf({"", "alarm/1"}));
    EXPECT_EQ(wire::kUnknownOperation, statusOf({"get_temperature_send", "alarm/1"}));
    EXPECT_EQ(wire::kUnknownOperation, statusOf({"get_position_send", "zoom_stepper/1"}, "zoom_stepper"));
}

TEST(Requests, NeedATargetOfTheService) {
    for (const char *wrong : {"alarm/0", "alarm/5", "alarm/01", "alarm/-1", "alarm/", "alarm", "", "temperature/1"}) {
        EXPECT_EQ(wire::kUnknownTarget, statusOf({"get_state_send", wrong})) << wrong;
    }
    EXPECT_EQ(wire::kUnknownTarget, statusOf({"get_state_send", nullptr}));
}

} // namespace
