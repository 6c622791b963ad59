// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Every request for a camera's objects, the calls that it makes, and its answer after a failed call.
 */
#ifndef QUARNSNMP_FAULT_REQUESTS_H
#define QUARNSNMP_FAULT_REQUESTS_H

#include <set>
#include <string>
#include <vector>

#include "manager.h"

namespace faults {

/** An operation of a service, and the traces of its failure. */
struct Call {
    std::string service;
    std::string operation;
    std::string log = {};  ///< text of the log line about the failure; empty for none
    unsigned lostBits = 0; ///< bits that are 0 in the answer then
    bool always = true;    ///< false for a call that depends on the camera's state
};

/** A GET, or a SET of one value. */
struct Request {
    harness::Varbind varbind; ///< a GET has no value
    std::vector<Call> calls = {};
    bool genErr = false;     ///< true if a failed call results in genErr; else the status does not show it
    std::string held = {};   ///< answer of a GET after the SET, as recordedValue() writes it; empty if it varies
    bool onlyFailed = false; ///< true for a command that must not reach the camera
    // As long as nothing fails:
    std::string answer = {};
    harness::ErrorStatus error = harness::ErrorStatus::None;
    std::size_t errorsLogged = 0;

    bool isGet() const;
};

using Services = std::set<std::string>;

/** Returns the services of the core library, in the order of their list. */
std::vector<std::string> allServices();

/** Returns the operations of a service, in the order of their list. */
std::vector<std::string> operationsOf(const std::string &service);

/** Returns a GET of each object of a walk. @param services services of the camera */
std::vector<Request> reads(const std::vector<harness::Varbind> &walk, const Services &services);

/** Returns SETs of each object of a walk: all kinds of commands for a writable one, else an INTEGER. */
std::vector<Request> writes(const std::vector<harness::Varbind> &walk, const Services &services);

/** A service that does not open, or a call that fails, while the module starts. */
struct StartFault {
    std::string service;
    std::string operation;
    std::string log;                  ///< text of the log line about it
    std::vector<std::string> missing; ///< subtrees without objects then
    /** Objects with another value, and the value as recordedValue() writes it. */
    std::vector<std::pair<std::string, std::string>> changed = {};
};

/** Returns the faults that a service can cause at a start. */
std::vector<StartFault> startFaults(const std::string &service);

} // namespace faults

#endif
