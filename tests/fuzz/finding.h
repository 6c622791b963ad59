// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * How a fuzzer reports what no sanitizer sees.
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
