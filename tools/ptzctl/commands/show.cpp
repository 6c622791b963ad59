// SPDX-License-Identifier: Apache-2.0
#include "show.h"

#include <utility>

#include <fmt/format.h>

#include "camera_requests.h"
#include "failure.h"
#include "object_oids.h"
#include "switches.h"
#include "value_text.h"

namespace ptzctl {

namespace {

using ptz::Reading;
using snmp::Cause;
using snmp::Failure;

/** An object in a line, with the text around its value. */
struct Part {
    const char *before;
    const char *oid;
    const char *after = "";
};

/** A line: a label, and the values of objects. */
struct Line {
    const char *label;
    std::vector<Part> parts;
};

const std::vector<Line> &statusLines() {
    static const std::vector<Line> lines = {
        {"Camera",
         {{"", oids::modelName},
          {"serial ", oids::serialNumber},
          {"firmware ", oids::fwVersion},
          {"hardware ", oids::hwVersion}}},
        {"Pan", {{"", oids::positionPan}}},
        {"Tilt", {{"", oids::positionTilt}}},
        {"Zoom", {{"", oids::positionZoomLens}}},
        {"Focus", {{"", oids::positionFocusLens}}},
        {"Iris", {{"", oids::positionIrisLens}}},
        {"Automatic", {{"", oids::systemLensFeatureStatus}}},
        {"Presets",
         {{"last recalled ", oids::presetGotoPosition},
          {"last stored ", oids::presetStorePosition},
          {"", oids::rangeMaximumPreset, " in all"}}},
        {"Temperature", {{"", oids::temperature}}},
        {"Power", {{"state ", oids::power}}},
        {"Voltage", {{"state ", oids::voltage}}},
    };
    return lines;
}

const std::vector<Line> &limitLines() {
    static const std::vector<Line> lines = {
        {"Pan",
         {{"left ", oids::rangePanLeftLimit},
          {"right ", oids::rangePanRightLimit},
          {"home ", oids::rangePanHomePosition},
          {"steps of ", oids::rangeMinimumPanStepAngle}}},
        {"Tilt",
         {{"up ", oids::rangeTiltUpLimit},
          {"down ", oids::rangeTiltDownLimit},
          {"steps of ", oids::rangeMinimumTiltStepAngle}}},
        {"North", {{"offset ", oids::rangeTrueNorthOffset}}},
        {"Zoom", {{"limit ", oids::rangeZoomLimit}}},
        {"Focus", {{"limit ", oids::rangeFocusLimit}}},
        {"Iris", {{"limit ", oids::rangeIrisLimit}}},
        {"Presets", {{"", oids::rangeMaximumPreset}}},
    };
    return lines;
}

const std::vector<Line> &timeoutLines() {
    static const std::vector<Line> lines = {
        {"Pan", {{"", oids::timeoutPan}}},     {"Tilt", {{"", oids::timeoutTilt}}}, {"Zoom", {{"", oids::timeoutZoom}}},
        {"Focus", {{"", oids::timeoutFocus}}}, {"Iris", {{"", oids::timeoutIris}}},
    };
    return lines;
}

using Rows = std::vector<std::vector<std::string>>;

/** Reads the objects of lines. Omits lines whose objects are all missing. */
void addLines(Context &context, const std::vector<Line> &lines, Rows &rows) {
    std::vector<ptz::Instance> instances;
    for (const Line &line : lines) {
        for (const Part &part : line.parts) {
            instances.push_back(ptz::instanceAt(part.oid));
        }
    }
    const std::vector<Reading> readings = ptz::readAll(context.camera, instances);
    auto reading = readings.begin();
    for (const Line &line : lines) {
        std::string text;
        for (const Part &part : line.parts) {
            if (!reading->missing) {
                text +=
                    (text.empty() ? "" : ", ") + (part.before + readingText(*reading, context.settings)) + part.after;
                context.report.data[reading->instance.name] = readingJson(*reading, context.settings);
            }
            ++reading;
        }
        if (!text.empty()) {
            rows.push_back({context.settings.style.heading(line.label), text});
        }
    }
}

std::string switchText(const Reading &reading, std::size_t number, const Settings &settings) {
    const std::string state = readingText(reading, settings);
    const bool isBits = reading.value.type == snmp::Type::Octets;
    const std::string text = isBits ? state : fmt::format("{} {}", number, state);
    return reading.ok() && reading.value.number != 0 ? settings.style.active(text) : text;
}

void addSwitches(Context &context, const Switches &switches, Rows &rows) {
    std::string text;
    std::size_t number = 0;
    for (const Reading &reading : readSwitches(context.camera, switches)) {
        text += (text.empty() ? "" : ", ") + switchText(reading, ++number, context.settings);
        context.report.data[reading.instance.name] = readingJson(reading, context.settings);
    }
    if (!text.empty()) {
        rows.push_back({context.settings.style.heading(switches.label), text});
    }
}

void show(Context &context, const Rows &rows, const char *subject) {
    if (rows.empty()) {
        throw Failure(Cause::Refused, std::string("the camera has no objects for ") + subject,
                      "`ptzctl status` shows the objects it has");
    }
    context.report.text += alignedRows(rows);
}

} // namespace

void showStatus(Context &context) {
    Rows rows;
    addLines(context, statusLines(), rows);
    addSwitches(context, kInputs, rows);
    addSwitches(context, kRelays, rows);
    show(context, rows, "its status");
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

void showObjects(Context &context, const std::vector<ptz::Instance> &instances) {
    Rows rows;
    std::string unreadable;
    for (const Reading &reading : ptz::readAll(context.camera, instances)) {
        const std::string &name = reading.instance.name;
        rows.push_back({name, readingText(reading, context.settings)});
        context.report.data[name] = readingJson(reading, context.settings);
        if (!reading.ok()) {
            unreadable += (unreadable.empty() ? "" : ", ") + name;
        }
    }
    context.report.text += alignedRows(rows);
    if (!unreadable.empty()) {
        throw Failure(Cause::Refused, "cannot be read: " + unreadable);
    }
}

} // namespace ptzctl
