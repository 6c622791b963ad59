// SPDX-License-Identifier: Apache-2.0
#include "faults.h"

namespace camera {

void FaultTable::set(const std::string &service, const std::string &operation, std::int64_t value, Times times) {
    faults_[{service, operation}] = {value, times};
}

std::optional<std::int64_t> FaultTable::take(const std::string &service, const std::string &operation) {
    if (faults_.empty()) {
        return std::nullopt;
    }
    auto found = faults_.find({service, operation});
    if (found == faults_.end()) {
        found = faults_.find({service, kEveryOperation});
    }
    if (found == faults_.end()) {
        return std::nullopt;
    }
    Fault &fault = found->second;
    const std::int64_t value = fault.value;
    if (fault.left && --*fault.left == 0) {
        faults_.erase(found);
    }
    return value;
}

void FaultTable::clear(const std::optional<std::string> &service, const std::optional<std::string> &operation) {
    for (auto entry = faults_.begin(); entry != faults_.end();) {
        const auto &[ofService, ofOperation] = entry->first;
        const bool matches = (!service || *service == ofService) && (!operation || *operation == ofOperation);
        entry = matches ? faults_.erase(entry) : std::next(entry);
    }
}

nlohmann::json FaultTable::list(const char *valueKey) const {
    nlohmann::json list = nlohmann::json::array();
    for (const auto &[key, fault] : faults_) {
        nlohmann::json object = {{"service", key.first}, {"operation", key.second}, {valueKey, fault.value}};
        object["times"] = fault.left ? nlohmann::json(*fault.left) : nlohmann::json("always");
        list.push_back(std::move(object));
    }
    return list;
}

Faults::Effect Faults::take(const std::string &service, const std::string &operation) {
    Effect effect;
    if (const std::optional<std::int64_t> status = failures_.take(service, operation)) {
        effect.status = static_cast<std::int32_t>(*status);
    }
    if (const std::optional<std::int64_t> delay = delays_.take(service, operation)) {
        effect.delay = std::chrono::milliseconds(*delay);
    }
    return effect;
}

} // namespace camera
