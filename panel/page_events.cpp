// SPDX-License-Identifier: Apache-2.0
#include "page_events.h"

#include <chrono>
#include <vector>

#include "command_text.h"
#include "shell_word.h"
#include "time_text.h"

namespace panel {

using nlohmann::json;
using nlohmann::ordered_json;

namespace {

std::string eventLines(const std::string &event, const std::string &data, std::uint64_t id) {
    return (id != 0 ? "id: " + std::to_string(id) + "\n" : "") + "event: " + event + "\ndata: " + data + "\n\n";
}

} // namespace

SharedText eventText(const std::string &event, const std::string &data, std::uint64_t id) {
    return shared(eventLines(event, data, id));
}

SharedText logText(const EventLog &log, std::uint64_t lastId) {
    constexpr std::size_t kLongest = std::size_t{4} * 1024 * 1024;
    std::size_t size = 0;
    for (const EventLog::Entry &entry : log.entries()) {
        size += entry.json->size();
    }
    std::string text;
    // An ID from an earlier run of the panel is greater than any of this one.
    const bool isKnown = !log.entries().empty() && lastId <= log.entries().back().id;
    for (const EventLog::Entry &entry : log.entries()) {
        // The newest entries that fit.
        const bool fits = size <= kLongest;
        size -= entry.json->size();
        if (fits && (!isKnown || entry.id > lastId)) {
            text += eventLines("log", *entry.json, entry.id);
        }
    }
    return shared(text);
}

std::string statusText(const CameraReport &report) {
    switch (report.status) {
    case CameraStatus::Up:
        return "it answers";
    case CameraStatus::Restarting:
        return "it restarts";
    case CameraStatus::Gone:
        return report.message;
    case CameraStatus::Unknown:
        break;
    }
    return "not asked yet";
}

ordered_json agentJson(const AgentReport &report) {
    ordered_json age;
    if (report.answered != std::chrono::steady_clock::time_point()) {
        age = std::chrono::duration_cast<std::chrono::milliseconds>(std::chrono::steady_clock::now() - report.answered)
                  .count();
    }
    return {{"status", report.status},   {"since", timeText(report.since)}, {"ageMs", age},
            {"message", report.message}, {"queue", report.queue},           {"busyMs", report.busy.count()}};
}

ordered_json scenarioJson(const ScenarioProgress &progress) {
    return {{"status", progress.status}, {"name", progress.name},       {"speed", progress.speed},
            {"at", progress.at},         {"seconds", progress.seconds}, {"step", progress.step},
            {"steps", progress.steps},   {"message", progress.message}};
}

double percentOf(const DriveState &drive) {
    constexpr double kAll = 100.0;
    const auto range = static_cast<double>(drive.maximum - drive.minimum);
    return range <= 0.0 ? 0.0 : static_cast<double>(drive.position - drive.minimum) / range * kAll;
}

std::string controlArguments(const json &command) {
    static const std::vector<const char *> order = {"command",   "target", "field",  "service",
                                                    "operation", "value",  "status", "milliseconds"};
    std::string line;
    for (const char *const key : order) {
        if (command.contains(key)) {
            const json &value = command.at(key);
            const bool isWord = value.is_string() && std::string(key) != "value";
            line += (line.empty() ? "" : " ") + shellWord(isWord ? value.get<std::string>() : camera::printable(value));
        }
    }
    if (command.value("times", json()) == "always") {
        line += " --always";
    } else if (command.contains("times")) {
        line += " --times " + camera::printable(command.at("times"));
    }
    return line;
}

} // namespace panel
