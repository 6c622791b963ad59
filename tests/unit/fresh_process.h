// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Checks of the state of a module that was just loaded. Earlier tests of the same process would change it. The
 * suites of such tests have "FreshTest" in their names.
 */
#ifndef QUARNSNMP_FRESH_PROCESS_H
#define QUARNSNMP_FRESH_PROCESS_H

#include <cstdlib>
#include <iostream>

#include <gtest/gtest.h>

/** Ends the process with status 0, or with status 1 and the failures on standard error. */
[[noreturn]] inline void endWithResult() {
    const testing::TestResult &result = *testing::UnitTest::GetInstance()->current_test_info()->result();
    for (int i = 0; i < result.total_part_count(); ++i) {
        const testing::TestPartResult &part = result.GetTestPartResult(i);
        std::cerr << part.file_name() << ":" << part.line_number() << ": " << part.message() << std::endl;
    }
    // Without destructors: what the process has open at this point is not the test's subject.
    std::_Exit(result.Passed() ? 0 : 1);
}

/** Has the next death test start the program anew. An emulated program cannot; its fresh tests are run one by one. */
inline void runDeathTestAnew() {
#ifdef QUARNSNMP_TESTS_ARE_EMULATED
    testing::FLAGS_gtest_death_test_style = "fast";
#else
    testing::FLAGS_gtest_death_test_style = "threadsafe";
#endif
}

/** Runs checks in a new process, after the fixture's SetUp(); their failures fail the test. Once in a test only. */
inline void expectInFreshProcess(void (*checks)()) {
    runDeathTestAnew();
    EXPECT_EXIT(
        {
            checks();
            endWithResult();
        },
        testing::ExitedWithCode(0), "");
}

#endif
