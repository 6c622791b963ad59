// SPDX-License-Identifier: Apache-2.0
#include "driving.h"

#include <fmt/format.h>

#include "failure.h"
#include "meaning.h"
#include "objects.h"
#include "requester.h"
#include "writing.h"

namespace ptzctl {

namespace {

constexpr const char *kAll = "all";
constexpr const char *kLook = "`ptzctl status` shows what it has";

/** The axes that a word of the command line means. */
std::vector<const Axis *> axesOf(const std::string &which) {
    if (which != kAll) {
        return {&axisOf(which)};
    }
    std::vector<const Axis *> camera;
    camera.reserve(kCameraAxisCount);
    for (std::size_t i = 0; i < kCameraAxisCount; ++i) {
        camera.push_back(&axes().at(i));
    }
    return camera;
}

/** Writes those of the values whose objects the camera has. @throws Failure when it has none of them */
void writeWhatIsThere(Context &context, const std::vector<Variable> &values) {
    std::vector<std::string> identifiers;
    identifiers.reserve(values.size());
    for (const Variable &value : values) {
        identifiers.push_back(value.identifier);
    }
    const std::vector<Reading> readings = readAll(context.camera, identifiers);
    std::vector<Variable> present;
    std::vector<Reading> before;
    for (std::size_t i = 0; i < values.size(); ++i) {
        if (readings[i].missing) {
            context.report.text += "The camera does not have " + nameOf(values[i].identifier) + ".\n";
        } else {
            present.push_back(values[i]);
            before.push_back(readings[i]);
        }
    }
    if (present.empty()) {
        throw Failure(ExitCode::Refused, "the camera has none of these axes", kLook);
    }
    writeAndShow(context, present, before);
}

void usePreset(Context &context, const char *object, int number) {
    const Reading count = readAll(context.camera, {objectOf("rangeMaximumPreset").identifier}).front();
    // A camera that cannot tell how many it has answers 0, and may have some.
    if (count.ok() && count.value.number > 0 && number > count.value.number) {
        throw Failure(ExitCode::Usage, fmt::format("the camera has presets 1 to {}", count.value.number),
                      "nothing has been sent");
    }
    writeAndShow(context, {integer(objectOf(object).identifier, number)});
}

} // namespace

void drive(Context &context, const Axis &axis, const PositionCommand &command) {
    writeAndShow(context,
                 {octetString(objectOf(axis.positionObject).identifier, encode(command, context.settings.order))});
    if (axis.automatic == 0) {
        return;
    }
    const Reading status = readAll(context.camera, {objectOf("systemLensFeatureStatus").identifier}).front();
    const bool automatic = status.ok() && (firstOctet(status.value) & axis.automatic) != 0;
    context.report.data["automatic"] = automatic;
    if (automatic) {
        context.report.text +=
            fmt::format("The {0} is automatic and may not move; `ptzctl auto {0} off` gives it to you.\n", axis.name);
    }
}

void stop(Context &context, const std::string &which) {
    std::vector<Variable> values;
    for (const Axis *axis : axesOf(which)) {
        values.push_back(octetString(objectOf(axis->positionObject).identifier, encode({}, context.settings.order)));
    }
    writeWhatIsThere(context, values);
}

void setAutomatic(Context &context, unsigned int feature, bool on) {
    const std::string octets = {static_cast<char>(feature), static_cast<char>(on ? kOn : 0)};
    writeAndShow(context, {octetString(objectOf("systemLensFeatureControl").identifier, octets)});
    const Variable status = readOne(context.camera, objectOf("systemLensFeatureStatus").identifier);
    context.report.text += "Automatic now: " + meaningOf(status, context.settings) + "\n";
    context.report.data["systemLensFeatureStatus"] = jsonOf(status, context.settings);
    if (((firstOctet(status) & feature) != 0) != on) {
        throw Failure(ExitCode::Refused, "the camera has taken the command and not carried it out",
                      "its log says why; perhaps it cannot switch this feature");
    }
}

void goToPreset(Context &context, int number) {
    usePreset(context, "presetGotoPosition", number);
}

void storePreset(Context &context, int number) {
    usePreset(context, "presetStorePosition", number);
}

void switchRelay(Context &context, int number, bool on) {
    const std::string first = objectOf("relayStatesTable.3").identifier;
    const std::vector<Reading> relays = readColumn(context.camera, first.substr(0, first.rfind('.')));
    if (!relays.empty() && static_cast<std::size_t>(number) > relays.size()) {
        throw Failure(ExitCode::Usage, fmt::format("the camera has relays 1 to {}", relays.size()),
                      "nothing has been sent");
    }
    const std::string octets = {static_cast<char>(number), static_cast<char>(on ? kOn : 0)};
    writeAndShow(context, {octetString(objectOf("outputControl").identifier, octets)});
    const Variable states = readOne(context.camera, objectOf("outputStatus").identifier);
    context.report.text += "Relays now: " + meaningOf(states, context.settings) + "\n";
    context.report.data["outputStatus"] = jsonOf(states, context.settings);
    const auto bit = static_cast<std::size_t>(number) - 1;
    if (bit < kOutputBits && ((firstOctet(states) >> bit & 1U) != 0) != on) {
        throw Failure(ExitCode::Refused, "the camera has taken the command and not switched the relay",
                      "its log says why");
    }
}

void setTimeout(Context &context, const std::string &which, int milliseconds) {
    std::vector<Variable> values;
    for (const Axis *axis : axesOf(which)) {
        values.push_back(integer(objectOf(axis->timeoutObject).identifier, milliseconds));
    }
    writeWhatIsThere(context, values);
}

void reboot(Context &context) {
    writeAndShow(context, {integer(objectOf("rebootDevice").identifier, 1)});
}

} // namespace ptzctl
