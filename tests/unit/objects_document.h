// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Reads the users' reference of objects, for tests that compare it.
 */
#ifndef QUARNSNMP_OBJECTS_DOCUMENT_H
#define QUARNSNMP_OBJECTS_DOCUMENT_H

#include <ostream>
#include <string>
#include <vector>

namespace objects_document {

/** A row of the reference. */
struct ObjectRow {
    std::string name;
    std::string oid; ///< of the instance; of the first row for a column of a table
    std::string access;
    std::string syntax;
    std::string getCalls;
    std::string setCalls;
};

bool operator==(const ObjectRow &left, const ObjectRow &right);

/** Prints a row, for the test framework. */
void PrintTo(const ObjectRow &row, std::ostream *stream);

/**
 * The rows of the sections whose heading has, or has not, a word. The test fails when the document cannot be read or a
 * row is not complete.
 */
std::vector<ObjectRow> objects(const std::string &word, bool wanted);

/** A row of the table of traps. */
struct TrapRow {
    std::string name;
    std::string oid;
};

/** The traps. The test fails when the document cannot be read. */
std::vector<TrapRow> traps();

} // namespace objects_document

#endif
