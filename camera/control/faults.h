// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Configured faults: failures and delays of operations.
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

/** Operation name that stands for all operations of a service. */
inline constexpr const char *kEveryOperation = "*";

/** Number of calls that a fault affects; nothing for all calls. */
using Times = std::optional<std::uint32_t>;

/**
 * Faults of one kind. Each has a value, a status or milliseconds, and applies to an operation of a service. A fault of
 * a named operation takes precedence over a fault of all operations. A new fault replaces the previous one of the same
 * operation.
 */
class FaultTable {
public:
    /** Adds or replaces the fault of an operation. */
    void set(const std::string &service, const std::string &operation, std::int64_t value, Times times);

    /** Returns the value for a call of an operation and counts the call; nothing without a fault. */
    std::optional<std::int64_t> take(const std::string &service, const std::string &operation);

    /** Removes faults: all, those of one service, or exactly the one of an operation. */
    void clear(const std::optional<std::string> &service, const std::optional<std::string> &operation);

    /** Returns the faults as JSON objects with "service", "operation", `valueKey` and "times". */
    nlohmann::json list(const char *valueKey) const;

private:
    struct Fault {
        std::int64_t value;
        Times left;
    };
    using Key = std::pair<std::string, std::string>;

    std::map<Key, Fault> faults_;
};

/** All faults of a camera. */
class Faults {
public:
    /** Effect of the faults on one call. */
    struct Effect {
        std::optional<std::int32_t> status; ///< status of the failure; the call is not executed
        std::chrono::milliseconds delay{0}; ///< delay of the answer
    };

    FaultTable &failures() {
        return failures_;
    }
    FaultTable &delays() {
        return delays_;
    }

    /** Returns the effect on a call of an operation and counts the call. */
    Effect take(const std::string &service, const std::string &operation);

private:
    FaultTable failures_;
    FaultTable delays_;
};

} // namespace camera

#endif
