// SPDX-License-Identifier: Apache-2.0
// A SET that the module refuses: the manager gets the error status, the log its line, and nothing changes in the module
// and in the camera.
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
