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

void writePreset(Context &context, const char *oid, int number) {
    if (context.settings.readsBefore) {
        const Reading count = ptz::readQuickly(context.camera, {ptz::instanceAt(oids::rangeMaximumPreset)}).front();
        // A camera that cannot tell the number of its presets answers 0, and may have some.
        if (count.ok() && count.value.number > 0 && number > count.value.number) {
            throw Failure(Cause::Usage, fmt::format("the camera has presets 1 to {}", count.value.number),
                          kNothingSent);
        }
    }
    writeAndShow(context, {numberFor(oid, number)});
}

/** Checks that a camera with a table of relays has a row for one. @throws Failure without the row */
void requireRelay(Context &context, int number) {
    // The agent answers this column without the camera.
    const auto row = [](int index) {
        return ptz::instanceAt(oids::row(oids::relayStatesNumber, static_cast<unsigned int>(index)));
    };
    const std::vector<Reading> rows = ptz::readQuickly(context.camera, {row(1), row(number)});
    if (rows[0].ok() && rows[1].missing) {
        throw Failure(Cause::Usage, fmt::format("the camera has no relay {}", number), kNothingSent);
    }
}

/** Reads an object after a command and reports it. */
snmp::Varbind readBack(Context &context, const char *oid, const char *label) {
    try {
        const Reading reading = ptz::require(context.camera, ptz::instanceAt(oid));
        context.report.text += label + readingText(reading, context.settings) + "\n";
        context.report.data[reading.instance.name] = readingJson(reading, context.settings);
        return reading.value;
    } catch (const Failure &failure) {
        throw silentAfterCommand(failure);
    }
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
    if (command.mode == ptz::Mode::Stop) {
        stop(context, {&axis});
        return;
    }
    writeAndShow(context, {octetsFor(axis.positionOid, ptz::encode(command, context.settings.order))});
    if (axis.automatic == 0) {
        return;
    }
    const Reading status = ptz::readQuickly(context.camera, {ptz::instanceAt(oids::systemLensFeatureStatus)}).front();
    const bool automatic = status.ok() && (ptz::firstOctet(status.value) & axis.automatic) != 0;
    context.report.data["automatic"] = automatic;
    if (automatic) {
        context.report.text += fmt::format(
            "The {0} is automatic and may not move; `ptzctl auto {0} off` switches it to manual.\n", axis.name);
    }
}

void stop(Context &context, const AxisList &axes) {
    constexpr int kAttempts = 4;
    std::vector<Assignment> assignments;
    for (const ptz::Axis *axis : axes) {
        assignments.push_back(octetsFor(axis->positionOid, ptz::encode({}, context.settings.order)));
    }
    // Nothing precedes a stop, and a stop that arrives twice does no harm.
    writePresent(context, assignments, {false, kAttempts});
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
    if (context.settings.readsBefore) {
        requireRelay(context, number);
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
    writePresent(context, assignments, {context.settings.readsBefore, 1});
}

void reboot(Context &context) {
    // A camera that restarts does not answer any more.
    writeAndShowResponse(context, numberFor(oids::rebootDevice, 1));
}

} // namespace ptzctl
