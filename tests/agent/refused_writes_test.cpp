// SPDX-License-Identifier: Apache-2.0
// SETs without effect. One that the module refuses: the manager gets the error status, the log its line, and nothing
// changes in the module and in the camera. One that it accepts although the camera does not obey: only the log may
// tell.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "camera_agent.h"
#include "object_oids.h"
#include "position_commands.h"

namespace {

using namespace harness;
using namespace position_commands;
using namespace std::string_literals;
using testing::IsEmpty;

/** A SET, and the outcome of it. */
struct Refused {
    std::vector<Varbind> values;
    ErrorStatus error;
    long index;           ///< number of the refused varbind
    std::string log = {}; ///< text of the log line; empty for none
};

std::vector<Refused> refusedOnes() {
    const Varbind tilt = octetString(oids::positionTilt, absolute(50, 100));
    return {
        {{integer(oids::rangeTrueNorthOffset, 1)},
         ErrorStatus::WrongValue,
         1,
         "true north offset(1) can only be 0 or 65535"},
        {{integer(oids::timeoutFocus, 0)}, ErrorStatus::GenErr, 1},
        {{octetString(oids::positionFocusLens, command(0, 5))},
         ErrorStatus::WrongValue,
         1,
         "handle_positionFocusLens: stop movement speed not zero(5)"},
        {{octetString(oids::positionIrisLens, "\x02\x00\x00"s)},
         ErrorStatus::WrongValue,
         1,
         "handle_positionIrisLens: iris position not 4-bytes, val_len=3"},
        {{octetString(oids::systemLensFeatureControl, "\x40"s)},
         ErrorStatus::WrongValue,
         1,
         "handle_systemLensFeatureControl1: iris position not 2-bytes, val_len=1"},
        {{integer(oids::presetStorePosition, 2147483647)},
         ErrorStatus::WrongValue,
         1,
         "handle_presetStorePosition: preset number (2147483647) outside range 0-255"},
        {{octetString(oids::row(oids::relayStatesState, 2), "1")},
         ErrorStatus::WrongType,
         1,
         "handle_relayStates: MODE_SET_RESERVE1 fail"},
        {{octetString(oids::rebootDevice, "1")}, ErrorStatus::WrongType, 1},
        {{integer(oids::temperature, 1)}, ErrorStatus::NotWritable, 1},
        {{integer(oids::row(oids::alarmStatesState, 1), 1)}, ErrorStatus::NotWritable, 1},
        // The other varbind of two must not move anything either.
        {{tilt, octetString(oids::positionPan, absolute(50, 36000))}, ErrorStatus::WrongValue, 2},
        {{octetString(oids::positionPan, command(4)), tilt}, ErrorStatus::WrongValue, 1},
        {{tilt, integer(oids::positionPan, 1)}, ErrorStatus::WrongType, 2},
        {{tilt, integer(oids::timeoutPan, 65536)}, ErrorStatus::WrongValue, 2},
        {{tilt, integer(oids::rangePanLeftLimit, 1)}, ErrorStatus::NotWritable, 2},
        {{tilt, integer(oids::row(oids::relayStatesState, 3), 1)}, ErrorStatus::NoCreation, 2},
    };
}

class RefusedWrites : public CameraAgent {
protected:
    RefusedWrites() : CameraAgent("dome") {}
};

/** A SET that is answered as if it had succeeded. */
struct Accepted {
    Varbind value;
    std::string log = {};  ///< text of the log line; empty for none
    std::string down = {}; ///< service that is down meanwhile; empty for none
};

/** The rows of "Accepted without effect" in the guide to connecting a central system. */
std::vector<Accepted> acceptedOnes() {
    const std::string failed = "Failed zorva api call: zorva_api_";
    const std::string unreached = failed + "positioning_clear_velocity_limits_send(";
    return {
        {integer(oids::presetGotoPosition, 9)},
        {octetString(oids::outputControl, "\x09\x80"s)},
        {octetString(oids::positionTilt, absolute(127, 4500)),
         failed + "positioning_move_to_position_with_speed_percentage_send("},
        {octetString(oids::positionFocusLens, absolute(64, 30000))},
        {octetString(oids::positionIrisLens, continuous(64))},
        {octetString(oids::positionPan, absolute(127, 9000)), unreached, "positioning"},
        {integer(oids::timeoutPan, 500), failed + "positioning_set_velocity_command_timeout_send(", "positioning"},
        {integer(oids::presetStorePosition, 3), failed + "presets_tours_", "presets_tours"},
        {integer(oids::rangeTrueNorthOffset, 0)},
        {octetString(oids::systemLensEquipped, "\xC0"s)},
        {integer(oids::rebootDevice, 2)},
    };
}

/** What a SET can change in the camera, without the limits of velocities, which the module sets with each move. */
nlohmann::json effects(const Camera &camera) {
    nlohmann::json targets;
    for (const char *target : {"positioning/1", "relay/1", "relay/2", "presets_tours/1", "lens_focus/1", "iris/1"}) {
        targets[target] = targetState(camera, target);
    }
    for (const char *axis : {"pan", "tilt", "zoom"}) {
        targets["positioning/1"][axis].erase("softSpeed");
    }
    return targets;
}

} // namespace

TEST_F(RefusedWrites, ChangeNothing) {
    const std::vector<Varbind> before = walk();
    const CameraEvents events(camera_);
    for (const Refused &each : refusedOnes()) {
        const Result result = manager_.set(each.values);
        EXPECT_EQ(result.error, each.error) << testing::PrintToString(each.values);
        EXPECT_EQ(result.errorIndex, each.index) << testing::PrintToString(each.values);
        EXPECT_TRUE(each.log.empty() || logged(each.log) == 1U) << each.log;
    }
    EXPECT_EQ(walk(), before);
    EXPECT_THAT(finishedOperations(events), IsEmpty());
}

TEST_F(RefusedWrites, MayBeAcceptedWithoutEffect) {
    const nlohmann::json before = effects(camera_);
    const CameraEvents events(camera_);
    for (const Accepted &each : acceptedOnes()) {
        if (!each.down.empty()) {
            control("down", each.down);
        }
        const Result result = manager_.set({each.value});
        EXPECT_TRUE(result.ok()) << testing::PrintToString(each.value) << ": " << result;
        EXPECT_TRUE(each.log.empty() || logged(each.log) == 1U) << each.log;
        EXPECT_EQ(effects(camera_), before) << testing::PrintToString(each.value);
        if (!each.down.empty()) {
            control("up", each.down);
        }
    }
    finishedOperations(events);
    EXPECT_THAT(events.matching({{"event", "move_started"}}), IsEmpty());
    EXPECT_THAT(events.matching({{"event", "reboot"}}), IsEmpty());
}
