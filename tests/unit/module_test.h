// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Fixture of the unit tests: the module's code in an agent library without a network, on a scripted core library.
 */
#ifndef QUARNSNMP_MODULE_TEST_H
#define QUARNSNMP_MODULE_TEST_H

#include <map>
#include <ostream>
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "agent_requests.h"
#include "core_utils.h"
#include "feature_modules.h"
#include "object_oids.h"
#include "scripted_core.h"

extern "C" {
int init_quarnsnmp(void);
int deinit_quarnsnmp(void);
}

// The vocabulary of the unit tests.
using namespace std::string_literals;
using requests::Answer;
using requests::get;
using requests::NewValue;
using requests::Request;
using scripted::LogLine;
using testing::AnyOf;
using testing::Contains;
using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::IsEmpty;
using testing::Not;
using testing::SizeIs;
using Calls = std::vector<std::string>;

/** An object of objects.def. */
struct ListedObject {
    const char *oid;      ///< of the registration
    const char *instance; ///< null for a table
    bool isReadOnly;
    unsigned char type; ///< of the answer to a GET
};

/** Returns all scalars and tables by their names. */
const std::map<std::string, ListedObject> &listedObjects();

/** Returns an object of the list. @throws std::out_of_range for a name that is not in objects.def */
const ListedObject &listedObject(const std::string &name);

/** A row of a table of tests, which are named after it. */
struct Row {
    std::string name;
};

inline std::ostream &operator<<(std::ostream &stream, const Row &row) {
    return stream << row.name;
}

/** Makes a row of its name and its other members. */
template <typename Table, typename... Members>
Table row(const std::string &name, Members... members) {
    return {{name}, members...};
}

/** Name of the test of a row. */
template <typename Parameter>
std::string nameOf(const testing::TestParamInfo<Parameter> &row) {
    return row.param.name;
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
