// SPDX-License-Identifier: Apache-2.0
#include "move.h"

#include <fmt/format.h>

#include "camera_requests.h"
#include "failure.h"
#include "format_value.h"
#include "object_oids.h"
#include "set.h"
#include "value_text.h"

namespace ptzctl {

namespace {

using ptz::Assignment;
using ptz::Reading;
using snmp::Cause;
using snmp::Failure;

constexpr const char *kNothingSent = "nothing was sent";

Assignment octetsFor(const char *oid, const std::string &octets) {
    return ptz::assignOctets(ptz::instanceAt(oid), octets);
}

Assignment numberFor(const char *oid, int number) {
    return ptz::assignNumber(ptz::instanceAt(oid), number);
}

/** Octets of a command that switches one of several things. */
std::string switchOctets(unsigned int which, bool on) {
    return {static_cast<char>(which), static_cast<char>(on ? ptz::kOn : 0)};
}

/** Writes the objects that the camera has. @throws Failure when it has none of them */
void writePresent(Context &context, const std::vector<Assignment> &assignments) {
    const std::vector<Reading> readings = ptz::readAll(context.camera, instancesOf(assignments));
    std::vector<Assignment> present;
    std::vector<Reading> before;
    for (std::size_t i = 0; i < assignments.size(); ++i) {
        if (readings[i].missing) {
            context.report.text += "The camera does not have " + assignments[i].instance.name + ".\n";
        } else {
            present.push_back(assignments[i]);
            before.push_back(readings[i]);
        }
    }
    if (present.empty()) {
        throw Failure(Cause::Refused, "the camera has none of these axes", "`ptzctl status` lists the axes it has");
    }
    writeAndShow(context, present, before);
}

void writePreset(Context &context, const char *oid, int number) {
    const Reading count = ptz::read(context.camera, ptz::instanceAt(oids::rangeMaximumPreset));
    // A camera that cannot tell the number of its presets answers 0, and may have some.
    if (count.ok() && count.value.number > 0 && number > count.value.number) {
        throw Failure(Cause::Usage, fmt::format("the camera has presets 1 to {}", count.value.number), kNothingSent);
    }
    writeAndShow(context, {numberFor(oid, number)});
}

/** Reads an object after a command and reports it. */
snmp::Varbind readBack(Context &context, const char *oid, const char *label) {
    const Reading reading = ptz::require(context.camera, ptz::instanceAt(oid));
    context.report.text += label + readingText(reading, context.settings) + "\n";
    context.report.data[reading.instance.name] = readingJson(reading, context.settings);
    return reading.value;
}

} // namespace

AxisList axesNamed(const std::string &which) {
    if (which != "all") {
        return {&ptz::axisNamed(which)};
    }
    AxisList list;
    list.reserve(ptz::kCameraAxisCount);
    for (std::size_t i = 0; i < ptz::kCameraAxisCount; ++i) {
        list.push_back(&ptz::axes().at(i));
    }
    return list;
}

void move(Context &context, const ptz::Axis &axis, const ptz::PositionCommand &command) {
    writeAndShow(context, {octetsFor(axis.positionOid, ptz::encode(command, context.settings.order))});
    if (axis.automatic == 0) {
        return;
    }
    const Reading status = ptz::read(context.camera, ptz::instanceAt(oids::systemLensFeatureStatus));
    const bool automatic = status.ok() && (ptz::firstOctet(status.value) & axis.automatic) != 0;
    context.report.data["automatic"] = automatic;
    if (automatic) {
        context.report.text += fmt::format(
            "The {0} is automatic and may not move; `ptzctl auto {0} off` switches it to manual.\n", axis.name);
    }
}

void stop(Context &context, const AxisList &axes) {
    std::vector<Assignment> assignments;
    for (const ptz::Axis *axis : axes) {
        assignments.push_back(octetsFor(axis->positionOid, ptz::encode({}, context.settings.order)));
    }
    writePresent(context, assignments);
}

void setAutomatic(Context &context, unsigned int feature, bool on) {
    writeAndShow(context, {octetsFor(oids::systemLensFeatureControl, switchOctets(feature, on))});
    const snmp::Varbind status = readBack(context, oids::systemLensFeatureStatus, "Automatic now: ");
    if (((ptz::firstOctet(status) & feature) != 0) != on) {
        throw Failure(Cause::Refused, "the camera accepted the command but did not carry it out",
                      "its log has the reason; it may not be able to switch this feature");
    }
}

void goToPreset(Context &context, int number) {
    writePreset(context, oids::presetGotoPosition, number);
}

void storePreset(Context &context, int number) {
    writePreset(context, oids::presetStorePosition, number);
}

void switchRelay(Context &context, int number, bool on) {
    const std::vector<Reading> relays = ptz::readColumn(context.camera, oids::relayStatesState);
    if (!relays.empty() && static_cast<std::size_t>(number) > relays.size()) {
        throw Failure(Cause::Usage, fmt::format("the camera has relays 1 to {}", relays.size()), kNothingSent);
    }
    writeAndShow(context, {octetsFor(oids::outputControl, switchOctets(static_cast<unsigned int>(number), on))});
    const snmp::Varbind states = readBack(context, oids::outputStatus, "Relays now: ");
    const auto bit = static_cast<std::size_t>(number) - 1;
    if (bit < ptz::kOutputBits && ((ptz::firstOctet(states) >> bit & 1U) != 0) != on) {
        throw Failure(Cause::Refused, "the camera accepted the command but did not switch the relay",
                      "its log has the reason");
    }
}

void setTimeout(Context &context, const AxisList &axes, int milliseconds) {
    std::vector<Assignment> assignments;
    for (const ptz::Axis *axis : axes) {
        assignments.push_back(numberFor(axis->timeoutOid, milliseconds));
    }
    writePresent(context, assignments);
}

void reboot(Context &context) {
    writeAndShow(context, {numberFor(oids::rebootDevice, 1)});
}

} // namespace ptzctl
