// SPDX-License-Identifier: Apache-2.0
#include "change_log.h"

#include <algorithm>
#include <utility>

namespace camera {

std::string targetId(const std::string &service, std::size_t index) {
    return service + "/" + std::to_string(index + 1);
}

ChangeLog::Recording::Recording(ChangeLog &log, bool enabled) : log_(log) {
    log_.recording_ = enabled && log_.events_.heard();
}

ChangeLog::Recording::~Recording() {
    log_.recording_ = false;
}

void ChangeLog::remember(const Service &service, std::size_t index) {
    if (recording_) {
        snapshots_.push_back({&service, index, service.values(index)});
    }
}

void ChangeLog::report(const std::string &target, double time, const char *kind, nlohmann::json members) {
    if (events_.heard()) {
        members["target"] = target;
        reports_.push_back({time, kind, std::move(members)});
    }
}

void ChangeLog::publish(double now) {
    publishChanges(now);
    publishReports();
}

void ChangeLog::publishChanges(double now) {
    for (const Snapshot &before : std::exchange(snapshots_, {})) {
        const nlohmann::json after = before.service->values(before.index);
        nlohmann::json changed = nlohmann::json::object();
        for (const auto &item : after.items()) {
            if (before.values.at(item.key()) != item.value()) {
                changed[item.key()] = item.value();
            }
        }
        if (!changed.empty()) {
            const std::string target = targetId(before.service->name(), before.index);
            events_.publishAt(now, "changed", {{"target", target}, {"fields", std::move(changed)}});
        }
    }
}

void ChangeLog::publishReports() {
    std::vector<Report> reports = std::exchange(reports_, {});
    std::stable_sort(reports.begin(), reports.end(),
                     [](const Report &left, const Report &right) { return left.time < right.time; });
    for (Report &report : reports) {
        events_.publishAt(report.time, report.kind, std::move(report.members));
    }
}

} // namespace camera
