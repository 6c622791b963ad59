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

/** A passage of a file, and the text in its place. */
struct Replacement {
    std::string passage;
    std::string with;
};

/**
 * The text of a shipped configuration with some passages replaced.
 * @param name  of the file, without its directory
 * @throws std::runtime_error if the file cannot be read, or does not have a passage exactly once
 */
std::string shippedConfiguration(const std::string &name, const std::vector<Replacement> &replacements = {});

} // namespace harness

#endif
