// SPDX-License-Identifier: Apache-2.0
// A SET that the module refuses: the manager gets the error status, the log its line, and nothing changes in the module
// and in the camera.
#include <algorithm>
#include <tuple>

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
    Varbind value;
    ErrorStatus error;
    std::string log = {}; ///< text of the log line; empty for none
};

std::vector<Refused> lensCommands(const char *oid, const std::string &handler, const std::string &drive) {
    return {
        {octetString(oid, command(0, 5)), ErrorStatus::WrongValue, handler + ": stop movement speed not zero(5)"},
        {octetString(oid, command(4)), ErrorStatus::WrongValue, handler + ": unknown " + drive + " mode (4)"},
        {octetString(oid, "\x02\x00\x00"s), ErrorStatus::WrongValue,
         handler + ": " + drive + " position not 4-bytes, val_len=3"},
        {octetString(oid, command(2) + "\x00"s), ErrorStatus::WrongValue},
        {integer(oid, 2), ErrorStatus::WrongType},
    };
}

std::vector<Refused> ofTheDome() {
    return {
        {integer(oids::rangeTrueNorthOffset, 1), ErrorStatus::WrongValue,
         "true north offset(1) can only be 0 or 65535"},
        {{oids::rangeTrueNorthOffset, Type::Gauge32, 0, ""}, ErrorStatus::WrongType},
        {integer(oids::timeoutPan, 65536), ErrorStatus::WrongValue},
        {integer(oids::timeoutFocus, 0), ErrorStatus::GenErr},
        {integer(oids::timeoutIris, 0), ErrorStatus::GenErr},
        {octetString(oids::positionPan, command(4)), ErrorStatus::WrongValue},
        {octetString(oids::positionTilt, absolute(50, 36000)), ErrorStatus::WrongValue},
        {octetString(oids::positionZoomLens, command(0, 1)), ErrorStatus::WrongValue},
        {integer(oids::presetGotoPosition, 256), ErrorStatus::WrongValue,
         "handle_presetGotoPosition: preset number (256) outside range 0-255"},
        {integer(oids::presetStorePosition, 2147483647), ErrorStatus::WrongValue,
         "handle_presetStorePosition: preset number (2147483647) outside range 0-255"},
        {octetString(oids::presetGotoPosition, "\x07"), ErrorStatus::WrongType},
        {octetString(oids::systemLensFeatureControl, "\x40\x01"s), ErrorStatus::WrongValue},
        {octetString(oids::systemLensFeatureControl, "\x41\x80"s), ErrorStatus::WrongValue},
        {octetString(oids::systemLensFeatureControl, "\x40"s), ErrorStatus::WrongValue,
         "handle_systemLensFeatureControl1: iris position not 2-bytes, val_len=1"},
        {octetString(oids::systemLensEquipped, "\x41"s), ErrorStatus::WrongValue},
        {octetString(oids::systemLensEquipped, "\x40\x40"s), ErrorStatus::WrongValue,
         "handle_systemLensEquipped1: systemLensEquipped not 1-bytes, val_len=2"},
        {octetString(oids::row(oids::relayStatesState, 2), "1"), ErrorStatus::WrongType,
         "handle_relayStates: MODE_SET_RESERVE1 fail"},
        {octetString(oids::rebootDevice, "1"), ErrorStatus::WrongType},
    };
}

/** OIDs of the objects that can only be read, instances of the first row for those of tables. */
std::vector<std::string> readOnlyObjects() {
    std::vector<std::string> result;
    const auto add = [&result](const std::string &oid, const std::string &access) {
        if (access == "readOnly") {
            result.push_back(oid);
        }
    };
#define CAMERA_SCALAR(symbol, name, numbers, access, syntax) add(oids::name, #access);
#define CAMERA_COLUMN(table, number, name, numbers, access, syntax) add(oids::row(oids::name, 1), #access);
#include "objects.def"
    return result;
}

class RefusedWrites : public CameraAgent, public testing::WithParamInterface<const char *> {
protected:
    RefusedWrites() : CameraAgent(GetParam()) {}

    static std::vector<Refused> writes() {
        if (GetParam() == "stepper"s) {
            std::vector<Refused> all =
                lensCommands(oids::positionFocusLens, "handle_positionFocusStepperLens", "focus");
            for (const Refused &each :
                 lensCommands(oids::positionZoomLens, "handle_zoomStepperPositionZoomLens", "zoom")) {
                all.push_back(each);
            }
            all.push_back({integer(oids::timeoutZoom, 0), ErrorStatus::GenErr});
            return all;
        }
        std::vector<Refused> all = ofTheDome();
        for (const auto &[oid, handler, drive] :
             {std::tuple{oids::positionFocusLens, "handle_positionFocusLens", "focus"},
              std::tuple{oids::positionIrisLens, "handle_positionIrisLens", "iris"}}) {
            for (const Refused &each : lensCommands(oid, handler, drive)) {
                all.push_back(each);
            }
        }
        return all;
    }

    std::vector<Varbind> shown() {
        std::vector<Varbind> all = manager_.bulkWalk(oids::kNtcipSubtree);
        for (const Varbind &varbind : manager_.bulkWalk(oids::kVendorSubtree)) {
            all.push_back(varbind);
        }
        return all;
    }
};

} // namespace

TEST_P(RefusedWrites, ChangeNothing) {
    const std::vector<Varbind> before = shown();
    const CameraEvents events(camera_);
    for (const Refused &each : writes()) {
        const Result result = manager_.set({each.value});
        EXPECT_EQ(result.error, each.error) << each.value;
        // The constant time-outs fail as a whole.
        EXPECT_EQ(result.errorIndex, each.error == ErrorStatus::GenErr ? 0 : 1) << each.value;
        EXPECT_TRUE(each.log.empty() || logged(each.log) == 1U) << each.log;
    }
    EXPECT_EQ(shown(), before);
    EXPECT_THAT(finishedOperations(events), IsEmpty());
}

TEST_P(RefusedWrites, AreAllThoseOfReadOnlyObjects) {
    std::size_t served = 0;
    const std::vector<Varbind> before = shown();
    for (const std::string &oid : readOnlyObjects()) {
        const auto object =
            std::find_if(before.begin(), before.end(), [&oid](const Varbind &each) { return each.oid == oid; });
        if (object != before.end()) {
            ++served;
            const Result result = manager_.set({integer(oid, 1)});
            EXPECT_EQ(result.error, ErrorStatus::NotWritable) << *object;
            EXPECT_EQ(result.errorIndex, 1) << *object;
        }
    }
    EXPECT_GT(served, 0U);
    EXPECT_EQ(shown(), before);
}

INSTANTIATE_TEST_SUITE_P(Cameras, RefusedWrites, testing::Values("dome", "stepper"),
                         [](const auto &camera) { return std::string(camera.param); });
