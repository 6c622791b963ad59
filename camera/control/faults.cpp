// SPDX-License-Identifier: Apache-2.0
#include "faults.h"

namespace camera {

void FaultOrders::set(const std::string &service, const std::string &operation, std::int64_t value, Times times) {
    orders_[{service, operation}] = {value, times};
}

std::optional<std::int64_t> FaultOrders::take(const std::string &service, const std::string &operation) {
    if (orders_.empty()) {
        return std::nullopt;
    }
    auto found = orders_.find({service, operation});
    if (found == orders_.end()) {
        found = orders_.find({service, kEveryOperation});
    }
    if (found == orders_.end()) {
        return std::nullopt;
    }
    Order &order = found->second;
    const std::int64_t value = order.value;
    if (order.left && --*order.left == 0) {
        orders_.erase(found);
    }
    return value;
}

void FaultOrders::clear(const std::optional<std::string> &service, const std::optional<std::string> &operation) {
    for (auto entry = orders_.begin(); entry != orders_.end();) {
        const auto &[ofService, ofOperation] = entry->first;
        const bool meant = (!service || *service == ofService) && (!operation || *operation == ofOperation);
        entry = meant ? orders_.erase(entry) : std::next(entry);
    }
}

nlohmann::json FaultOrders::list(const char *valueKey) const {
    nlohmann::json orders = nlohmann::json::array();
    for (const auto &[key, order] : orders_) {
        nlohmann::json object = {{"service", key.first}, {"operation", key.second}, {valueKey, order.value}};
        object["times"] = order.left ? nlohmann::json(*order.left) : nlohmann::json("always");
        orders.push_back(std::move(object));
    }
    return orders;
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
