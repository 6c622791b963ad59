// SPDX-License-Identifier: Apache-2.0
#include "showing.h"

#include <utility>

#include <fmt/format.h>

#include "failure.h"
#include "meaning.h"
#include "objects.h"

namespace ptzctl {

namespace {

/** An object within a line, with what stands around its meaning. */
struct Part {
    const char *before;
    const char *object;
    const char *after = "";
};

/** A line of a screen: a label, and the meanings of objects. */
struct Line {
    const char *label;
    std::vector<Part> parts;
};

/** The inputs or relays of a camera: a column with one row for each, or else an object with a bit for each. */
struct Switches {
    const char *label;
    const char *column;
    const char *bits;
};

constexpr Switches kInputs = {"Inputs", "alarmStatesTable.3", "inputStatus"};
constexpr Switches kRelays = {"Relays", "relayStatesTable.3", "outputStatus"};

const std::vector<Line> &statusLines() {
    static const std::vector<Line> lines = {
        {"Camera",
         {{"", "modelName"}, {"serial ", "serialNumber"}, {"firmware ", "fwVersion"}, {"hardware ", "hwVersion"}}},
        {"Pan", {{"", "positionPan"}}},
        {"Tilt", {{"", "positionTilt"}}},
        {"Zoom", {{"", "positionZoomLens"}}},
        {"Focus", {{"", "positionFocusLens"}}},
        {"Iris", {{"", "positionIrisLens"}}},
        {"Automatic", {{"", "systemLensFeatureStatus"}}},
        {"Presets",
         {{"last recalled ", "presetGotoPosition"},
          {"last stored ", "presetStorePosition"},
          {"", "rangeMaximumPreset", " in all"}}},
        {"Temperature", {{"", "temperature"}}},
        {"Power", {{"state ", "power"}}},
        {"Voltage", {{"state ", "voltage"}}},
    };
    return lines;
}

const std::vector<Line> &limitLines() {
    static const std::vector<Line> lines = {
        {"Pan",
         {{"left ", "rangePanLeftLimit"},
          {"right ", "rangePanRightLimit"},
          {"home ", "rangePanHomePosition"},
          {"steps of ", "rangeMinimumPanStepAngle"}}},
        {"Tilt",
         {{"up ", "rangeTiltUpLimit"}, {"down ", "rangeTiltDownLimit"}, {"steps of ", "rangeMinimumTiltStepAngle"}}},
        {"North", {{"offset ", "rangeTrueNorthOffset"}}},
        {"Zoom", {{"limit ", "rangeZoomLimit"}}},
        {"Focus", {{"limit ", "rangeFocusLimit"}}},
        {"Iris", {{"limit ", "rangeIrisLimit"}}},
        {"Presets", {{"", "rangeMaximumPreset"}}},
    };
    return lines;
}

const std::vector<Line> &timeoutLines() {
    static const std::vector<Line> lines = {
        {"Pan", {{"", "timeoutPan"}}},     {"Tilt", {{"", "timeoutTilt"}}}, {"Zoom", {{"", "timeoutZoom"}}},
        {"Focus", {{"", "timeoutFocus"}}}, {"Iris", {{"", "timeoutIris"}}},
    };
    return lines;
}

using Rows = std::vector<std::vector<std::string>>;

/** Reads the objects of lines; a line none of whose objects the camera has is left out. */
void addLines(Context &context, const std::vector<Line> &lines, Rows &rows) {
    std::vector<std::string> identifiers;
    for (const Line &line : lines) {
        for (const Part &part : line.parts) {
            identifiers.emplace_back(objectOf(part.object).identifier);
        }
    }
    const std::vector<Reading> readings = readAll(context.camera, identifiers);
    std::size_t next = 0;
    for (const Line &line : lines) {
        std::string text;
        for (const Part &part : line.parts) {
            const Reading &reading = readings[next++];
            if (!reading.missing) {
                text += (text.empty() ? "" : ", ") + (part.before + meaningOf(reading, context.settings)) + part.after;
                context.report.data[part.object] = jsonOf(reading, context.settings);
            }
        }
        if (!text.empty()) {
            rows.push_back({context.settings.style.heading(line.label), text});
        }
    }
}

/** The states of inputs or relays, by the column or, where the camera has none, by the bits. */
std::vector<Reading> switchesOf(Context &context, const Switches &switches) {
    const std::string identifier = objectOf(switches.column).identifier;
    std::vector<Reading> rows = readColumn(context.camera, identifier.substr(0, identifier.rfind('.')));
    if (!rows.empty()) {
        return rows;
    }
    Reading bits = readAll(context.camera, {objectOf(switches.bits).identifier}).front();
    return bits.missing ? std::vector<Reading>() : std::vector<Reading>{std::move(bits)};
}

std::string switchText(const Reading &reading, std::size_t number, const Settings &settings) {
    const std::string meaning = meaningOf(reading, settings);
    const bool isBits = reading.value.type == Type::Octets;
    const std::string text = isBits ? meaning : fmt::format("{} {}", number, meaning);
    return reading.ok() && reading.value.number != 0 ? settings.style.active(text) : text;
}

void addSwitches(Context &context, const Switches &switches, Rows &rows) {
    std::string text;
    std::size_t number = 0;
    for (const Reading &reading : switchesOf(context, switches)) {
        text += (text.empty() ? "" : ", ") + switchText(reading, ++number, context.settings);
        context.report.data[nameOf(reading.value.identifier)] = jsonOf(reading, context.settings);
    }
    if (!text.empty()) {
        rows.push_back({context.settings.style.heading(switches.label), text});
    }
}

void show(Context &context, const Rows &rows, const char *what) {
    if (rows.empty()) {
        throw Failure(ExitCode::Refused, std::string("the camera has none of the objects of ") + what,
                      "`ptzctl status` shows what it has");
    }
    context.report.text += alignedRows(rows);
}

} // namespace

void showStatus(Context &context) {
    Rows rows;
    addLines(context, statusLines(), rows);
    addSwitches(context, kInputs, rows);
    addSwitches(context, kRelays, rows);
    show(context, rows, "a camera");
}

void showInputs(Context &context) {
    Rows rows;
    addSwitches(context, kInputs, rows);
    show(context, rows, "alarm inputs");
}

void showLimits(Context &context) {
    Rows rows;
    addLines(context, limitLines(), rows);
    show(context, rows, "limits");
}

void showTimeouts(Context &context) {
    Rows rows;
    addLines(context, timeoutLines(), rows);
    show(context, rows, "time-outs");
}

void showObjects(Context &context, const std::vector<std::string> &names) {
    std::vector<std::string> identifiers;
    identifiers.reserve(names.size());
    for (const std::string &name : names) {
        identifiers.push_back(identifierOf(name));
    }
    const std::vector<Reading> readings = readAll(context.camera, identifiers);
    Rows rows;
    std::string unreadable;
    for (std::size_t i = 0; i < names.size(); ++i) {
        const std::string name = nameOf(identifiers[i]);
        rows.push_back({name, meaningOf(readings[i], context.settings)});
        context.report.data[name] = jsonOf(readings[i], context.settings);
        if (!readings[i].ok()) {
            unreadable += (unreadable.empty() ? "" : ", ") + name;
        }
    }
    context.report.text += alignedRows(rows);
    if (!unreadable.empty()) {
        throw Failure(ExitCode::Refused, "cannot be read: " + unreadable);
    }
}

} // namespace ptzctl
