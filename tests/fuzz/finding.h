// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Report of a finding that no sanitizer detects.
 */
#ifndef QUARNSNMP_FUZZ_FINDING_H
#define QUARNSNMP_FUZZ_FINDING_H

#include <cstdio>
#include <cstdlib>
#include <string>

namespace fuzz {

/** Ends the fuzzer, which keeps the present input. */
[[noreturn]] inline void reportFinding(const std::string &text) {
    std::fprintf(stderr, "%s\n", text.c_str());
    std::abort();
}

} // namespace fuzz

#endif
