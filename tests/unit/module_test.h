// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Fixture of the unit tests: the module's code in an agent library without a network, on a scripted core library.
 */
#ifndef QUARNSNMP_MODULE_TEST_H
#define QUARNSNMP_MODULE_TEST_H

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "agent_requests.h"
#include "core_utils.h"
#include "feature_modules.h"
#include "scripted_core.h"

extern "C" {
int init_quarnsnmp(void);
int deinit_quarnsnmp(void);
}

/** Fails the test at its end when the script left a call open, unless the test takes problems() back. */
class ModuleTest : public testing::Test {
protected:
    ModuleTest();
    ~ModuleTest() override;

    /** Opens the core library as init_quarnsnmp() does, and forgets the calls that it took. */
    static void openCore();

    /** Makes every row of the feature table a feature that does not come up; the table is restored at the end. */
    static void emptyFeatureTable();

    static scripted::Core &core();

    static void SetUpTestSuite();
};

#endif
