// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Comparison of an agent's objects with a recorded walk.
 */
#ifndef QUARNSNMP_HARNESS_GOLDEN_WALK_H
#define QUARNSNMP_HARNESS_GOLDEN_WALK_H

#include <string>

#include <gtest/gtest.h>

#include "manager.h"

namespace harness {

/**
 * Walks a subtree and compares it with the file NAME.walk in the directory of recorded walks. A line is
 * `oid type value`; the value `*` stands for any value, for objects that change by themselves. Also checks that every
 * line is greater than the one before, answers a GET with its type and recorded value, and follows the one before it
 * with GETNEXT (the walk itself uses GETBULK).
 *
 * When the environment's QUARNSNMP_UPDATE_GOLDEN is 1, the file is written anew instead of compared; a `*` stays one.
 * Use it as EXPECT_TRUE(matchesGoldenWalk(...)).
 *
 * @return success, or failure with the lines that are missing (-) and those that are too many (+)
 */
testing::AssertionResult matchesGoldenWalk(Manager &manager, const std::string &root, const std::string &name);

/** As matchesGoldenWalk(), with any file. */
testing::AssertionResult matchesWalkFile(Manager &manager, const std::string &root, const std::string &path,
                                         bool update);

} // namespace harness

#endif
