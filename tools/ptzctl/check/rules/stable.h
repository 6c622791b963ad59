// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Objects whose values do not change by themselves.
 */
#ifndef PTZCTL_CHECK_STABLE_H
#define PTZCTL_CHECK_STABLE_H

#include <string>

#include "check/context.h"

namespace ptzctl::check {

/** Tests whether an instance has a value that stays the same while nobody writes it. */
bool isStable(const std::string &oid);

/**
 * Tests whether GETs answer another value than the first one, so that a difference says nothing about the request.
 * @throws Undecided, Ended
 */
bool changesByItself(Context &context, const std::string &oid);

} // namespace ptzctl::check

#endif
