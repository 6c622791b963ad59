// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * MIB modules as the SNMP library reads them.
 */
#ifndef QUARNSNMP_MIB_MODULES_H
#define QUARNSNMP_MIB_MODULES_H

#include <cstdint>
#include <ostream>
#include <string>
#include <utility>
#include <vector>

namespace mibs {

/** Directory of the modules that the project ships. */
std::string directory();

/** Names of these modules, which are those of their files. */
std::vector<std::string> shippedModules();

/** Something that can be read, written or notified. */
struct Object {
    std::string module;
    std::string name;
    std::string oid;        ///< with a leading dot, without the instance
    std::string access;     ///< its MAX-ACCESS
    std::string type;       ///< type of its values on the wire: INTEGER, Gauge32 or OCTET STRING
    std::string convention; ///< its textual convention; empty without one
    std::vector<std::pair<std::int64_t, std::int64_t>> ranges; ///< of its numbers, or of its sizes
    std::string table;                                         ///< of which it is a column; empty for a scalar

    /** Whether a value, or a size, lies in a range; every one does when there are no ranges. */
    bool admits(std::int64_t number) const;
};

/** A notification and what it carries. */
struct Notification {
    std::string name;
    std::string oid;
    std::vector<Object> objects;
};

/** Lets the test framework print them. */
std::ostream &operator<<(std::ostream &stream, const Object &object);

/** The library with some modules. There is one at a time, because the library has one tree. */
class LoadedModules {
public:
    /** Reads modules, and those that they import. */
    explicit LoadedModules(const std::vector<std::string> &modules);
    ~LoadedModules();
    LoadedModules(const LoadedModules &) = delete;
    LoadedModules &operator=(const LoadedModules &) = delete;

    /** What the library had to say against them; it is asked to say all it can. */
    const std::vector<std::string> &complaints() const;

    /** All objects with a value; tables, rows and what is not accessible are left out. */
    std::vector<Object> objects() const;

    std::vector<Notification> notifications() const;

    /** OIDs of all names that a module defines. */
    std::vector<std::string> oidsOf(const std::string &module) const;

private:
    std::vector<std::string> complaints_;
};

} // namespace mibs

#endif
