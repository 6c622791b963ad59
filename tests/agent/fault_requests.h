// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Every request that a camera's objects take, with the calls that it makes and what a failed one does to its answer.
 */
#ifndef QUARNSNMP_FAULT_REQUESTS_H
#define QUARNSNMP_FAULT_REQUESTS_H

#include <set>
#include <string>
#include <vector>

#include "manager.h"

namespace faults {

/** An operation of a service, and what a failure of it leaves behind. */
struct Call {
    std::string service;
    std::string operation;
    std::string log = {};  ///< text of the log line that tells of the failure; empty when there is none
    unsigned lostBits = 0; ///< bits of the value read that are 0 then
    bool always = true;    ///< false for a call that the request makes in some states of the camera only
};

/** A GET, or a SET of one value. */
struct Request {
    harness::Varbind varbind; ///< a GET has no value
    std::vector<Call> calls = {};
    bool genErr = false;   ///< what a failed call is answered with; otherwise it does not show in the status
    std::string held = {}; ///< what a GET answers after the SET, as recordedValue() writes it; empty when that depends
    bool onlyFailed = false; ///< a command that must not get through to the camera
    // As long as nothing fails:
    std::string answer = {};
    harness::ErrorStatus error = harness::ErrorStatus::None;
    std::size_t errorsLogged = 0;

    bool isGet() const;
};

using Services = std::set<std::string>;

/** The services of the core library, in the order of their list. */
std::vector<std::string> allServices();

/** The operations of a service, in the order of their list. */
std::vector<std::string> operationsOf(const std::string &service);

/** GETs of everything that a camera with these services shows in a walk. */
std::vector<Request> reads(const std::vector<harness::Varbind> &walk, const Services &services);

/** SETs of everything that it shows. What can be written gets all kinds of commands, the rest an INTEGER. */
std::vector<Request> writes(const std::vector<harness::Varbind> &walk, const Services &services);

/** A service that does not open, or a call that fails, while the module starts. */
struct StartFault {
    std::string service;
    std::string operation;
    std::string log;                  ///< text of the log line that tells of it
    std::vector<std::string> missing; ///< subtrees without objects then
    /** Objects with another value, and the value as recordedValue() writes it. */
    std::vector<std::pair<std::string, std::string>> changed = {};
};

/** What can fail at a start with a service. */
std::vector<StartFault> startFaults(const std::string &service);

} // namespace faults

#endif
