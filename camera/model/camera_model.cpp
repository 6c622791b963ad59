// SPDX-License-Identifier: Apache-2.0
#include "camera_model.h"

#include <algorithm>
#include <utility>

namespace camera {

bool isGet(std::string_view operation) {
    return operation.substr(0, 4) == "get_";
}

CameraModel::CameraModel(std::string name, std::string description, Services services, Clock clock)
    : name_(std::move(name)), description_(std::move(description)), services_(std::move(services)),
      clock_(std::move(clock)), events_(clock_), changes_(events_) {
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

std::unique_ptr<CameraModel> CameraModel::copy() {
    advance();
    Services services;
    for (const auto &[name, service] : services_) {
        services.emplace(name, service->copy());
    }
    return std::make_unique<CameraModel>(name_, description_, std::move(services), [now = now_] { return now; });
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
    if (isRestarting()) {
        answer.status = wire::kServiceDown;
    } else if (found == nullptr || !found->hasOperation(operation)) {
        answer.status = wire::kUnknownOperation;
    } else if (target == nullptr || target->service != found) {
        answer.status = wire::kUnknownTarget;
    } else {
        target->service->advance(*this, target->index);
        const ChangeLog::Recording recording(changes_, !isGet(operation));
        changes_.remember(*target->service, target->index);
        answer = target->service->call(*this, target->index, operation, request);
    }
    publishCommandEvent(service, request, answer.status);
    finishChange();
    return answer;
}

void CameraModel::publishCommand(std::string_view service, const nlohmann::json &request, std::int32_t status) {
    advance();
    publishCommandEvent(service, request, status);
}

void CameraModel::publishCommandEvent(std::string_view service, const nlohmann::json &request, std::int32_t status) {
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
    std::optional<Problem> problem;
    {
        const ChangeLog::Recording recording(changes_);
        changes_.remember(*found->service, found->index);
        problem = found->service->set(*this, found->index, key, value);
    }
    if (problem) {
        problem->path = target + (problem->path.empty() ? "" : " " + problem->path);
    }
    finishChange();
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
    restart_.order(now_, seconds);
}

void CameraModel::advanceRestart() {
    // Takes only one step: even after the shortest restart, the next caller finds the camera away.
    restart_.takeStep();
    if (isRestarting()) {
        resetVolatileState();
    }
    if (onRestart_) {
        onRestart_(isRestarting());
    }
    if (!isRestarting()) {
        startTargets();
    }
}

void CameraModel::startTargets() {
    for (const TargetPlace &each : withTimeCourse_) {
        each.service->start(*this, each.index);
    }
    changes_.publish(now_);
}

void CameraModel::resetVolatileState() {
    {
        const ChangeLog::Recording recording(changes_);
        for (const auto &entry : services_) {
            for (std::size_t i = 0; entry.second->hasRestart() && i < entry.second->targetCount(); ++i) {
                entry.second->advance(*this, i);
                changes_.remember(*entry.second, i);
                entry.second->restart(*this, i);
            }
        }
    }
    changes_.publish(now_);
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
    changes_.publish(now_);
    if (restart_.nextTime() <= now_) {
        advanceRestart();
    }
    schedule();
}

void CameraModel::finishChange() {
    changes_.publish(now_);
    schedule();
}

void CameraModel::schedule() {
    double next = restart_.nextTime();
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

} // namespace camera
