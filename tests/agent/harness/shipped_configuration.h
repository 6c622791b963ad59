// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * The agent configurations that the project ships, made fit for a test.
 */
#ifndef QUARNSNMP_HARNESS_SHIPPED_CONFIGURATION_H
#define QUARNSNMP_HARNESS_SHIPPED_CONFIGURATION_H

#include <string>
#include <vector>

namespace harness {

/** A passage of a file and what a test has in its place. */
struct Replacement {
    std::string passage;
    std::string with;
};

/**
 * The text of a shipped configuration with some passages replaced.
 * @param name  of the file, without its directory
 * @throws std::runtime_error when the file cannot be read, or a passage is not there exactly once: a test that goes on
 * would judge another text than the one it means
 */
std::string shippedConfiguration(const std::string &name, const std::vector<Replacement> &replacements = {});

} // namespace harness

#endif
