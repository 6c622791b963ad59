// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * The requests that have a budget of instructions.
 */
#ifndef QUARNSNMP_BUDGET_SUBJECTS_H
#define QUARNSNMP_BUDGET_SUBJECTS_H

#include <array>
#include <cstdint>
#include <ostream>
#include <string_view>

namespace budget {

/**
 * Budget of a request in instructions: those of the module's own code, with the core library's answers and log calls,
 * without the agent's library. A GET takes some 40000 instructions of the agent.
 */
inline constexpr std::uint64_t kGet = 400;
inline constexpr std::uint64_t kSet = 2000;

/** A request for one object. */
struct Subject {
    std::string_view name;
    std::string_view oid;    ///< with the instance
    bool isText;             ///< of the value of a SET: an OCTET STRING, else an INTEGER
    std::string_view octets; ///< value of a SET
    long number;             ///< value of a SET
    std::uint64_t limit;     ///< kGet or kSet, which also says what it is
};

/** Prints a subject, for the test framework. */
inline std::ostream &operator<<(std::ostream &stream, const Subject &subject) {
    return stream << subject.name;
}

constexpr Subject get(std::string_view name, std::string_view oid) {
    return {name, oid, false, "", 0, kGet};
}

constexpr Subject setNumber(std::string_view name, std::string_view oid, long number) {
    return {name, oid, false, "", number, kSet};
}

constexpr Subject setText(std::string_view name, std::string_view oid, std::string_view octets) {
    return {name, oid, true, octets, 0, kSet};
}

// clang-format off
inline constexpr std::array kSubjects = {
    // Held by the module, one for each way to hold something.
    get("GET moduleType",             "1.3.6.1.4.1.1206.4.2.6.1.3.1.6.0"),
    get("GET modelName",              "1.3.6.1.4.1.99999.1.1.2.0.0"),
    get("GET positionPan",            "1.3.6.1.4.1.1206.4.2.7.4.1.0"),
    get("GET timeoutPan",             "1.3.6.1.4.1.1206.4.2.7.2.1.0"),
    get("GET rangeTrueNorthOffset",   "1.3.6.1.4.1.1206.4.2.7.1.5.0"),
    get("GET positionFocusLens",      "1.3.6.1.4.1.1206.4.2.7.4.4.0"),
    get("GET systemLensEquipped",     "1.3.6.1.4.1.1206.4.2.7.5.6.0"),
    get("GET presetGotoPosition",     "1.3.6.1.4.1.1206.4.2.7.3.1.0"),
    get("GET alarmStatus",            "1.3.6.1.4.1.1206.4.2.7.6.1.0.0"),
    get("GET outputControl",          "1.3.6.1.4.1.1206.4.2.7.8.2.0"),
    // One service call.
    get("GET temperature",            "1.3.6.1.4.1.99999.1.1.7.0.0"),
    get("GET rangePanLeftLimit",      "1.3.6.1.4.1.1206.4.2.7.1.2.0"),
    get("GET rangeMaximumPreset",     "1.3.6.1.4.1.1206.4.2.7.1.1.0"),
    setNumber("SET rangeTrueNorthOffset", "1.3.6.1.4.1.1206.4.2.7.1.5.0", 65535),
    setText("SET systemLensEquipped", "1.3.6.1.4.1.1206.4.2.7.5.6.0", "\xC0"),
    setNumber("SET timeoutPan",       "1.3.6.1.4.1.1206.4.2.7.2.1.0", 5000),
    setText("SET positionPan, absolute", "1.3.6.1.4.1.1206.4.2.7.4.1.0", "\x02\x7F\x50\x46"),
    setText("SET positionTilt, delta", "1.3.6.1.4.1.1206.4.2.7.4.2.0", "\x01\x40\x32\x01"),
    setText("SET positionZoomLens, continuous", "1.3.6.1.4.1.1206.4.2.7.4.3.0", "\x03\x40\x01\x01"),
    setText("SET positionFocusLens, absolute", "1.3.6.1.4.1.1206.4.2.7.4.4.0", "\x02\x7F\x50\x46"),
    setNumber("SET presetGotoPosition", "1.3.6.1.4.1.1206.4.2.7.3.1.0", 1),
    setText("SET outputControl",      "1.3.6.1.4.1.1206.4.2.7.8.2.0", "\x01\x80"),
};
// clang-format on

} // namespace budget

#endif
