// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Faults: failures and delays that were ordered for operations.
 */
#ifndef QUARNSNMP_CAMERA_FAULTS_H
#define QUARNSNMP_CAMERA_FAULTS_H

#include <chrono>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include <nlohmann/json.hpp>

namespace camera {

/** Stands for all operations of a service. */
inline constexpr const char *kEveryOperation = "*";

/** How often a fault strikes; nothing is always. */
using Times = std::optional<std::uint32_t>;

/**
 * Orders of one kind, each a number (a status, or milliseconds) for an operation of a service. An order for an
 * operation by name goes before one for every operation, and a new order takes the place of an old one for the same
 * operation.
 */
class FaultOrders {
public:
    void set(const std::string &service, const std::string &operation, std::int64_t value, Times times);

    /** Takes what the next call of an operation meets, which counts as one time. */
    std::optional<std::int64_t> take(const std::string &service, const std::string &operation);

    /** Removes orders: of every service, of one service, or the one for exactly one operation. */
    void clear(const std::optional<std::string> &service, const std::optional<std::string> &operation);

    /** The orders as objects with "service", "operation", `valueKey` and "times". */
    nlohmann::json list(const char *valueKey) const;

private:
    struct Order {
        std::int64_t value;
        Times left;
    };
    using Key = std::pair<std::string, std::string>;

    std::map<Key, Order> orders_;
};

/** All faults of a camera. */
class Faults {
public:
    /** What a call meets. */
    struct Effect {
        std::optional<std::int32_t> status; ///< the call fails with this status and is not executed
        std::chrono::milliseconds delay{0}; ///< the answer is held back for so long
    };

    FaultOrders &failures() {
        return failures_;
    }
    FaultOrders &delays() {
        return delays_;
    }

    /** Takes what the next call of an operation meets. */
    Effect take(const std::string &service, const std::string &operation);

private:
    FaultOrders failures_;
    FaultOrders delays_;
};

} // namespace camera

#endif
