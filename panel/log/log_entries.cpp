// SPDX-License-Identifier: Apache-2.0
#include "log_entries.h"

#include <chrono>

#include "format_value.h"
#include "notification.h"
#include "octet_parts.h"
#include "oid_text.h"
#include "time_text.h"

namespace panel {

using nlohmann::json;
using nlohmann::ordered_json;

namespace {

std::string now() {
    return timeText(std::chrono::system_clock::now());
}

/** Writes a member of an event as a plain word. */
std::string wordOf(const json &event, const char *key) {
    const json value = event.value(key, json());
    if (value.is_null()) {
        return "";
    }
    return value.is_string() ? value.get<std::string>() : value.dump(-1, ' ', false, json::error_handler_t::replace);
}

/** Joins the parts that are not empty with blanks. */
std::string joined(const std::vector<std::string> &parts) {
    std::string text;
    for (const std::string &part : parts) {
        text += part.empty() || text.empty() ? part : " " + part;
    }
    return text;
}

/** Writes the fields of a change, such as "state 1, velocity 0". */
std::string fieldsText(const json &fields) {
    std::string text;
    if (!fields.is_object()) {
        return text;
    }
    for (const auto &item : fields.items()) {
        text += (text.empty() ? "" : ", ") + item.key() + " " + wordOf(fields, item.key().c_str());
    }
    return text;
}

struct EventText {
    const char *event;
    std::string (*text)(const json &event);
};

std::string placeText(const json &event, const char *what) {
    return joined({wordOf(event, "target"), wordOf(event, "axis"), what, wordOf(event, "position")});
}

// clang-format off
const std::vector<EventText> kEventTexts = {
    {"changed",          [](const json &event) { return wordOf(event, "target") + ": " + fieldsText(event.value("fields", json())); }},
    {"command",          [](const json &event) { return joined({wordOf(event, "target"), wordOf(event, "operation"), wordOf(event, "arguments"), "with status", wordOf(event, "status")}); }},
    {"fault",            [](const json &event) { return joined({wordOf(event, "service"), wordOf(event, "operation"), event.contains("status") ? "fails with status" : "", wordOf(event, "status"), event.contains("milliseconds") ? "is late by" : "", wordOf(event, "milliseconds"), event.contains("milliseconds") ? "ms" : ""}); }},
    {"service_down",     [](const json &event) { return wordOf(event, "service") + " is down"; }},
    {"service_up",       [](const json &event) { return wordOf(event, "service") + " is up"; }},
    {"service_not_up",   [](const json &event) { return wordOf(event, "service") + " does not start: " + wordOf(event, "error"); }},
    {"reboot",           [](const json &event) { return "the camera restarts in " + wordOf(event, "seconds") + " s"; }},
    {"presets_not_kept", [](const json &event) { return "the presets cannot be written: " + wordOf(event, "error"); }},
    {"move_started",     [](const json &event) { return joined({placeText(event, "starts at"), event.contains("to") ? "to" : "with velocity", wordOf(event, event.contains("to") ? "to" : "velocity")}); }},
    {"limit_reached",    [](const json &event) { return placeText(event, "reaches its limit at"); }},
    {"move_timed_out",   [](const json &event) { return placeText(event, "times out at"); }},
    {"move_stopped",     [](const json &event) { return placeText(event, "stops at"); }},
    {"focus_started",    [](const json &event) { return placeText(event, "searches from"); }},
    {"focus_settled",    [](const json &event) { return placeText(event, "is sharp at"); }},
};
// clang-format on

} // namespace

ordered_json requestEntry(const WatchReport &report) {
    ordered_json entry = {{"kind", "request"},      {"time", timeText(report.time)}, {"sender", report.sender},
                          {"as", report.principal}, {"version", report.version},     {"operation", report.operation},
                          {"phase", report.phase}};
    entry.update(varbindJson(report.value));
    if (report.isCut) {
        entry["value"] = entry["value"].get<std::string>() + " …";
    }
    entry["parts"] = partsOf(ptz::instanceAt(report.value.oid), report.value);
    entry["outcome"] = report.outcome;
    entry["ok"] = report.outcome == "noError";
    entry["durationUs"] = report.duration.count();
    return entry;
}

ordered_json trapEntry(const snmp::Received &trap) {
    const ptz::Notification notification = ptz::notificationOf(trap.varbinds);
    std::string meaning = notification.name();
    ordered_json values = ordered_json::array();
    for (const ptz::Reading &value : notification.values) {
        ordered_json shown = varbindJson(value.value);
        shown["name"] = value.instance.name;
        shown["meaning"] = ptz::formatValue(value.instance, value.value, ptz::ByteOrder::LowFirst);
        const std::string text = shown["meaning"].get<std::string>();
        meaning += notification.isOwn(value) ? " is " + text : ", " + value.instance.name + " is " + text;
        values.push_back(shown);
    }
    if (notification.known != nullptr) {
        meaning += std::string(": ") + notification.known->reason;
    }
    return {{"kind", "trap"},
            {"time", now()},
            {"sender", trap.from},
            {"name", notification.name()},
            {"oid", snmp::withoutDot(notification.oid)},
            {"meaning", meaning},
            {"values", values},
            {"ok", true}};
}

ordered_json eventEntry(const json &event) {
    const std::string name = wordOf(event, "event");
    std::string meaning = event.dump(-1, ' ', false, json::error_handler_t::replace);
    for (const EventText &known : kEventTexts) {
        if (name == known.event) {
            meaning = known.text(event);
        }
    }
    const bool isTrouble = name == "service_down" || name == "service_not_up" || name == "fault" ||
                           name == "presets_not_kept" || (name == "command" && event.value("status", json(0)) != 0);
    return {{"kind", "event"}, {"time", now()}, {"name", name}, {"meaning", meaning}, {"event", ordered_json(event)},
            {"ok", !isTrouble}};
}

ordered_json noticeEntry(const std::string &text, bool ok) {
    return {{"kind", "notice"}, {"time", now()}, {"meaning", text}, {"ok", ok}};
}

} // namespace panel
