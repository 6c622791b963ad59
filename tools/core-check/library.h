// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * A core library that is loaded at run time, and its use as the module uses it.
 */
#ifndef QUARNSNMP_CORE_CHECK_LIBRARY_H
#define QUARNSNMP_CORE_CHECK_LIBRARY_H

#include <stdexcept>
#include <string>
#include <vector>

#include "interface.h"

namespace core_check {

/** A check that has failed; what() says why. */
class Failure : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/**
 * The library. Loading and the calls may do anything: hang, crash, or end the process. Functions that call a missing
 * symbol throw Failure.
 */
class Library {
public:
    Library() = default;
    /** Leaves the library loaded; the process that made the checks ends. */
    ~Library() = default;
    Library(const Library &) = delete;
    Library &operator=(const Library &) = delete;

    /** Loads the library. @throws Failure with the loader's message */
    void load(const std::string &file);

    /** Unloads the library. @return false if it stays mapped @throws Failure */
    bool unload(const std::string &file);

    /** Returns the SONAME; empty without one. */
    std::string soname() const;

    /** Returns the address of a symbol; null without one. */
    void *find(const char *symbol) const;

    // Start and end, each call on its own; they throw Failure with the status.
    void init() const;
    void openLog();
    void openIpc();
    void closeIpc();
    void closeLog();
    void deinit() const;

    /** Makes all calls of the start, or of the end. */
    void start();
    void stop();

    /** Writes a line with the name SNMP. */
    void log(int level, const std::string &text) const;

    /** Returns the text of a status. @throws Failure if it is null */
    std::string textOf(zorva_core_status status) const;

    /** Finds the targets of a service. @throws Failure if the query fails */
    std::vector<std::string> targetsOf(const Service &service) const;

    void *open(const Service &service) const;
    void close(const Service &service, void *cookie) const;

    /** Makes a request that only reads. @return the outputs as a text */
    std::string read(const Request &request, void *cookie, const std::string &target) const;

private:
    template <typename Function>
    Function *get(const char *symbol) const;

    /** Throws Failure for a status other than 0. */
    void require(zorva_core_status status) const;

    void *handle_ = nullptr;
    void *log_ = nullptr;
    void *ipc_ = nullptr;
};

} // namespace core_check

#endif
