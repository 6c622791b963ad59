// SPDX-License-Identifier: Apache-2.0
// Alarm inputs and relay outputs through the whole chain.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "camera_agent.h"
#include "object_oids.h"

namespace {

using namespace harness;
using nlohmann::json;
using testing::ElementsAre;

std::string alarmState(std::uint32_t row) {
    return oids::row(oids::alarmStatesState, row);
}
std::string relayState(std::uint32_t row) {
    return oids::row(oids::relayStatesState, row);
}

class InputsAndOutputs : public CameraAgent {
protected:
    InputsAndOutputs() : CameraAgent("dome") {}

    int relay(int number) const {
        return targetState(camera_, "relay/" + std::to_string(number)).at("state");
    }
};

} // namespace

TEST_F(InputsAndOutputs, TheBitmapAndTheTableFollowTheInputs) {
    EXPECT_EQ(get(oids::inputStatus), "0x00");
    setField(camera_, "alarm/2", "state", 1);
    setField(camera_, "alarm/4", "state", 3);
    EXPECT_EQ(get(oids::inputStatus), "0x0a");
    EXPECT_EQ(get(alarmState(2)), "1");
    EXPECT_EQ(get(alarmState(4)), "3") << "all of it, of which the bitmap has the lowest bit";
    setField(camera_, "alarm/4", "state", -2);
    EXPECT_EQ(get(alarmState(4)), "-2");
    EXPECT_EQ(get(oids::inputStatus), "0x02");
    EXPECT_EQ(get(oids::alarmStatus), "0x00");
    EXPECT_EQ(get(oids::row(oids::alarmStatesKind, 2)), "\"GPIO\"");
    EXPECT_EQ(get(oids::row(oids::alarmStatesNumber, 1)), "0");
}

TEST_F(InputsAndOutputs, AControlCommandSetsTheRelayUpAndSwitchesIt) {
    const CameraEvents events(camera_);
    set(oids::outputControl, "\x02\x80");
    EXPECT_EQ(relay(2), 1);
    EXPECT_EQ(get(oids::outputStatus), "0x02");
    EXPECT_EQ(get(oids::outputControl), "0x0280");
    set(oids::outputControl, "\x02\x7F");
    EXPECT_EQ(relay(2), 0) << "only bit 7 counts";
    EXPECT_EQ(get(oids::outputControl), "0x027f");
    EXPECT_EQ(relay(1), 0);
    EXPECT_THAT(finishedOperations(events), ElementsAre("set_configuration_send", "set_state_send", "set_state_send"));
    EXPECT_EQ(events.matching({{"operation", "set_configuration_send"}}).at(0).at("arguments"),
              json({1, 0, 1, 0, 1, 1, 1}));
}

TEST_F(InputsAndOutputs, TheTableSwitchesARow) {
    setInteger(relayState(2), 1);
    EXPECT_EQ(relay(2), 1);
    EXPECT_EQ(get(relayState(2)), "1");
    EXPECT_EQ(get(oids::outputControl), "0x0000") << "the control object holds its own command";
    setInteger(relayState(2), 256);
    EXPECT_EQ(relay(2), 0) << "only the low octet reaches the relay";
}

TEST_F(InputsAndOutputs, ACommandThatFailsUndoesAndPreventsNoOtherOfItsRequest) {
    control("fail", "relay", "set_state_send", "1", "--always");
    const Varbind command = octetString(oids::outputControl, "\x01\x80");
    int milliseconds = 0;
    for (const bool failsFirst : {false, true}) {
        const Varbind other = integer(oids::timeoutPan, ++milliseconds);
        const Result result = failsFirst ? manager_.set({command, other}) : manager_.set({other, command});
        EXPECT_EQ(result.error, ErrorStatus::GenErr) << result;
        EXPECT_EQ(result.errorIndex, 0) << "a failed execution names no varbind";
        EXPECT_EQ(get(oids::timeoutPan), std::to_string(milliseconds));
    }
    EXPECT_EQ(relay(1), 0);
}
