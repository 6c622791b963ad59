// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * The objects of a camera as the public definitions have them.
 */
#ifndef PTZCTL_CHECK_EXPECTED_H
#define PTZCTL_CHECK_EXPECTED_H

#include <cstdint>
#include <string>
#include <vector>

#include "check/context.h"
#include "varbind.h"

namespace ptzctl::check {

/** Objects that share rules. */
enum class Group { Module, Limit, Timeout, Preset, Position, Lens, Io, Identity, Health };

/** Explains a value of a known dialect. @return null for any other value */
using Dialect = const char *(*)(const snmp::Varbind &value);

/** A scalar, or the only row of the module table. */
struct Expected {
    const char *name;
    Group group;
    const char *set; ///< objects that a camera has together, such as those of an axis
    std::string oid; ///< of the object, without the instance
    std::string instance;
    std::string dialectInstance; ///< where cameras of a known dialect have it; empty without one
    snmp::Type type;
    std::int64_t lowest; ///< of a number, or of the count of octets
    std::int64_t highest;
    Dialect typeDialect;  ///< may be null
    Dialect valueDialect; ///< may be null; of the length of octets or of the range of a number
    bool writable;
};

/** Returns the expected objects in the order of their OIDs, vendor objects last. */
const std::vector<Expected> &expectedObjects();

/** Finds an expected object by its name, which must exist. */
const Expected &expectedNamed(const std::string &name);

/** Where a camera has an object. */
struct Located {
    enum class State { Absent, AtInstance, AtDialect, Elsewhere, Unreadable };
    State state = State::Absent;
    std::string oid; ///< of the instance; empty if absent
    Value value;

    /** Tests for a value to judge. */
    bool readable() const {
        return state == State::AtInstance || state == State::AtDialect;
    }
};

/** Looks for an object. Asks the camera once in a check. @throws Undecided, Ended */
Located locate(Context &context, const Expected &expected);

/** Returns the numeric value of an INTEGER object, or nothing. @throws Undecided, Ended */
std::optional<std::int64_t> numberOf(Context &context, const std::string &name);

/** Returns the octets of an OCTET STRING object, or nothing. @throws Undecided, Ended */
std::optional<std::string> octetsOf(Context &context, const std::string &name);

} // namespace ptzctl::check

#endif
