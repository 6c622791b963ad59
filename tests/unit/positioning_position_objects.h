// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * The three position objects as a table, and a fixture for tests of all of them.
 */
#ifndef QUARNSNMP_POSITIONING_POSITION_OBJECTS_H
#define QUARNSNMP_POSITIONING_POSITION_OBJECTS_H

#include <ostream>
#include <string>

#include "position_command.h"
#include "position_objects.h"
#include "positioning_test.h"

struct PositionObject {
    positioning::Axis axis;
    const char *word;
    std::string name; ///< of the handler
    Netsnmp_Node_Handler *handler;
    const char *instance;
    PositionOctets *last;
    PositionOctets *pending;
    std::string atStart; ///< octets of the fixture's position
};

inline void PrintTo(const PositionObject &object, std::ostream *stream) {
    *stream << object.name;
}

inline std::vector<PositionObject> positionObjects() {
    using namespace positioning;
    return {{kPanAxis, "pan", "handle_positionPan", handle_positionPan, oids::positionPan, &gLastPanPosition,
             &gNewPanPosition, octets({0x28, 0x23, 0, 0})},
            {kTiltAxis, "tilt", "handle_positionTilt", handle_positionTilt, oids::positionTilt, &gLastTiltPosition,
             &gNewTiltPosition, octets({0xB8, 0x88, 0, 0})},
            {kZoomAxis, "zoom", "handle_positionZoomLens", handle_positionZoomLens, oids::positionZoomLens,
             &gLastZoomPosition, &gNewZoomPosition, octets({0x72, 0x4F, 0, 0})}};
}

class PositionObjectTest : public PositioningTest, public testing::WithParamInterface<PositionObject> {
protected:
    void SetUp() override {
        PositioningTest::SetUp();
        connect();
    }

    static bool isZoom() {
        return GetParam().axis == positioning::kZoomAxis;
    }

    static scripted::LogLine enter() {
        return logs::debug(GetParam().name + ": Enter.");
    }

    static scripted::LogLine done() {
        return logs::debug(GetParam().name + ": Done.");
    }

    static std::string last() {
        return {GetParam().last->begin(), GetParam().last->end()};
    }

    static std::string pending() {
        return {GetParam().pending->begin(), GetParam().pending->end()};
    }

    /** One phase on the handler itself, with the record of this phase only. */
    static requests::Answer phase(int mode, const std::string &value) {
        core().clearRecord();
        return DirtyRequest(GetParam().instance, requests::NewValue::text(value)).run(GetParam().handler, mode);
    }

    /** The same without a value. */
    static requests::Answer phase(int mode) {
        core().clearRecord();
        return requests::Request(GetParam().instance).run(GetParam().handler, mode);
    }
};

#endif
