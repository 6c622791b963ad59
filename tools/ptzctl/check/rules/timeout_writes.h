// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * SETs of time-outs.
 */
#ifndef PTZCTL_CHECK_TIMEOUT_WRITES_H
#define PTZCTL_CHECK_TIMEOUT_WRITES_H

#include <cstdint>
#include <string>
#include <vector>

#include "check/context.h"
#include "check/rule.h"

namespace ptzctl::check {

/** A time-out and its present value. */
struct Setting {
    std::string name;
    snmp::Varbind before;
};

/** Returns the time-outs that the camera has as INTEGER, with their present values. @throws Undecided, Ended */
std::vector<Setting> timeoutSettings(Context &context);

/** Observation about a time-out that refuses each SET. */
inline constexpr const char *kNoSetting = "genErr: the object has no setting behind it";

/** Tests for the answer of a time-out that is writable by its definition, but has no setting behind it. */
bool lacksSetting(const Setting &setting, long error);

/**
 * Returns a valid time-out other than the present one. For a negative one, which cameras of a known dialect cut to 16
 * bits, it is the same time.
 */
std::int64_t otherTimeout(std::int64_t present);

/** Judges SETs of time-outs out of range. */
std::vector<Detail> judgeTimeoutsOutOfRange(Context &context);

} // namespace ptzctl::check

#endif
