// SPDX-License-Identifier: Apache-2.0
#include "camera_model.h"

#include <algorithm>
#include <utility>

namespace camera {

std::string targetId(const std::string &service, std::size_t index) {
    return service + "/" + std::to_string(index + 1);
}

bool isGet(std::string_view operation) {
    return operation.substr(0, 4) == "get_";
}

CameraModel::CameraModel(std::string name, std::string description, Services services, Clock clock)
    : name_(std::move(name)), description_(std::move(description)), services_(std::move(services)),
      clock_(std::move(clock)), events_(clock_) {
    for (const auto &[serviceName, service] : services_) {
        for (std::size_t i = 0; i < service->targetCount(); ++i) {
            targets_.emplace(targetId(serviceName, i), TargetPlace{service.get(), i});
            if (service->hasTimeCourse()) {
                withTimeCourse_.push_back({service.get(), i});
            }
        }
    }
    startTargets();
    schedule();
}

std::vector<std::string> CameraModel::serviceNames() const {
    std::vector<std::string> names;
    for (const auto &entry : services_) {
        names.push_back(entry.first);
    }
    return names;
}

const Service *CameraModel::service(std::string_view name) const {
    const auto found = services_.find(name);
    return found == services_.end() ? nullptr : found->second.get();
}

std::vector<std::string> CameraModel::targetIds(std::string_view service) const {
    std::vector<std::string> ids;
    const Service *found = this->service(service);
    for (std::size_t i = 0; found != nullptr && i < found->targetCount(); ++i) {
        ids.push_back(targetId(found->name(), i));
    }
    return ids;
}

Answer CameraModel::call(std::string_view service, const nlohmann::json &request) {
    if (!request.is_array() || request.size() < kRequestHead || !request[0].is_string() ||
        !(request[1].is_string() || request[1].is_null())) {
        return {wire::kInvalidArgument};
    }
    advance();
    const auto &operation = request[0].get_ref<const std::string &>();
    Answer answer;
    const Service *found = this->service(service);
    const TargetPlace *target = request[1].is_string() ? place(request[1].get_ref<const std::string &>()) : nullptr;
    if (restarting_) {
        answer.status = wire::kServiceDown;
    } else if (found == nullptr || !found->hasOperation(operation)) {
        answer.status = wire::kUnknownOperation;
    } else if (target == nullptr || target->service != found) {
        answer.status = wire::kUnknownTarget;
    } else {
        target->service->advance(*this, target->index);
        inCommand_ = !isGet(operation) && events_.heard();
        remember(*target->service, target->index);
        answer = target->service->call(*this, target->index, operation, request);
        inCommand_ = false;
    }
    tellCommand(service, request, answer.status);
    publishChanges();
    publishReports();
    schedule();
    return answer;
}

void CameraModel::publishCommand(std::string_view service, const nlohmann::json &request, std::int32_t status) {
    advance();
    tellCommand(service, request, status);
}

void CameraModel::tellCommand(std::string_view service, const nlohmann::json &request, std::int32_t status) {
    if (!events_.heard() || isGet(request.at(0).get_ref<const std::string &>())) {
        return;
    }
    nlohmann::json arguments = nlohmann::json::array();
    arguments.insert(arguments.end(), request.begin() + kRequestHead, request.end());
    events_.publishAt(now_, "command",
                      {{"service", service},
                       {"target", request.at(1)},
                       {"operation", request.at(0)},
                       {"arguments", std::move(arguments)},
                       {"status", status}});
}

std::optional<Problem> CameraModel::set(const std::string &target, const std::string &key,
                                        const nlohmann::json &value) {
    const TargetPlace *found = place(target);
    if (found == nullptr) {
        std::vector<std::string> ids;
        for (const auto &entry : targets_) {
            ids.push_back(entry.first);
        }
        return Problem{target, "unknown target; expected one of: " + listed(ids)};
    }
    advance();
    found->service->advance(*this, found->index);
    inCommand_ = events_.heard();
    remember(*found->service, found->index);
    std::optional<Problem> problem = found->service->set(*this, found->index, key, value);
    inCommand_ = false;
    if (problem) {
        problem->path = target + (problem->path.empty() ? "" : " " + problem->path);
    }
    publishChanges();
    publishReports();
    schedule();
    return problem;
}

nlohmann::json CameraModel::state(const std::string &target) {
    const TargetPlace *found = place(target);
    if (found == nullptr) {
        return {};
    }
    advance();
    found->service->advance(*this, found->index);
    return nested(found->service->values(found->index));
}

void CameraModel::keep(const std::string &target) {
    if (const TargetPlace *found = place(target)) {
        found->service->keep(found->index);
    }
}

void CameraModel::restart(double seconds) {
    restartStep_ = now_;
    restartEnd_ = now_ + seconds;
}

void CameraModel::advanceRestart() {
    // Only one step at a time: whoever meets the first one finds the camera away, however short the restart is.
    restarting_ = !restarting_;
    restartStep_ = kNever;
    if (restarting_) {
        restartStep_ = restartEnd_;
        loseWhatARestartLoses();
    }
    if (onRestart_) {
        onRestart_(restarting_);
    }
    if (!restarting_) {
        startTargets();
    }
}

void CameraModel::startTargets() {
    for (const TargetPlace &each : withTimeCourse_) {
        each.service->start(*this, each.index);
    }
    publishReports();
}

void CameraModel::loseWhatARestartLoses() {
    inCommand_ = events_.heard();
    for (const auto &entry : services_) {
        for (std::size_t i = 0; entry.second->hasRestart() && i < entry.second->targetCount(); ++i) {
            entry.second->advance(*this, i);
            remember(*entry.second, i);
            entry.second->restart(*this, i);
        }
    }
    inCommand_ = false;
    publishChanges();
    publishReports();
}

void CameraModel::advance() {
    now_ = clock_();
    if (now_ < nextTime_) {
        return;
    }
    for (const TargetPlace &each : withTimeCourse_) {
        if (each.service->nextTime(each.index) <= now_) {
            each.service->advance(*this, each.index);
        }
    }
    publishReports();
    if (restartStep_ <= now_) {
        advanceRestart();
    }
    schedule();
}

void CameraModel::schedule() {
    double next = restartStep_;
    for (const TargetPlace &each : withTimeCourse_) {
        next = std::min(next, each.service->nextTime(each.index));
    }
    if (next < nextTime_ || next > nextTime_) {
        nextTime_ = next;
        if (onNextTimeChange_) {
            onNextTimeChange_();
        }
    }
}

const CameraModel::TargetPlace *CameraModel::place(const std::string &target) const {
    const auto found = targets_.find(target);
    return found == targets_.end() ? nullptr : &found->second;
}

void CameraModel::report(const std::string &target, double time, const char *kind, nlohmann::json members) {
    if (events_.heard()) {
        members["target"] = target;
        reports_.push_back({time, kind, std::move(members)});
    }
}

void CameraModel::publishReports() {
    std::vector<Report> reports = std::exchange(reports_, {});
    std::stable_sort(reports.begin(), reports.end(),
                     [](const Report &left, const Report &right) { return left.time < right.time; });
    for (Report &report : reports) {
        events_.publishAt(report.time, report.kind, std::move(report.members));
    }
}

void CameraModel::remember(Service &service, std::size_t index) {
    if (inCommand_) {
        snapshots_.push_back({{&service, index}, service.values(index)});
    }
}

void CameraModel::publishChanges() {
    for (const Snapshot &before : std::exchange(snapshots_, {})) {
        const auto &[service, index] = before.place;
        const nlohmann::json now = service->values(index);
        nlohmann::json changed = nlohmann::json::object();
        for (const auto &item : now.items()) {
            if (before.values.at(item.key()) != item.value()) {
                changed[item.key()] = item.value();
            }
        }
        if (!changed.empty()) {
            events_.publishAt(now_, "changed", {{"target", targetId(service->name(), index)}, {"fields", changed}});
        }
    }
}

} // namespace camera
