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

/** Names of these modules, which are the names of their files. */
std::vector<std::string> shippedModules();

/** An object or the value of a notification. */
struct Object {
    std::string module;
    std::string name;
    std::string oid;        ///< with a leading dot, without the instance
    std::string access;     ///< its MAX-ACCESS
    std::string type;       ///< type of its values on the wire: INTEGER, Gauge32 or OCTET STRING
    std::string convention; ///< its textual convention; empty without one
    std::vector<std::pair<std::int64_t, std::int64_t>> ranges; ///< of its numbers, or of its sizes
    std::string table;                                         ///< name of its table; empty for a scalar

    /** Tests whether a number or a size lies in one of the ranges. Without ranges, any does. */
    bool admits(std::int64_t number) const;
};

/** A notification with its values. */
struct Notification {
    std::string name;
    std::string oid;
    std::vector<Object> objects;
};

/** Prints name, OID and syntax. */
std::ostream &operator<<(std::ostream &stream, const Object &object);

/** Modules in the SNMP library. Only one instance can exist at a time, because the library has one tree. */
class LoadedModules {
public:
    /** Loads modules and their imports. */
    explicit LoadedModules(const std::vector<std::string> &modules);
    ~LoadedModules();
    LoadedModules(const LoadedModules &) = delete;
    LoadedModules &operator=(const LoadedModules &) = delete;

    /** Complaints of the library, at its highest level of warnings. */
    const std::vector<std::string> &complaints() const;

    /** Returns all accessible objects, without tables and rows. */
    std::vector<Object> objects() const;

    std::vector<Notification> notifications() const;

    /** Returns the OIDs of all names that a module defines. */
    std::vector<std::string> oidsOf(const std::string &module) const;

private:
    std::vector<std::string> complaints_;
};

} // namespace mibs

#endif
