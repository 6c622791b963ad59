// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * All service calls as objects, for tests of each call.
 */
#ifndef QUARNSNMP_STANDIN_SERVICE_TRIALS_H
#define QUARNSNMP_STANDIN_SERVICE_TRIALS_H

#include <functional>
#include <memory>
#include <optional>
#include <ostream>
#include <string>
#include <vector>

#include <nlohmann/json.hpp>

#include "standin_test.h"
#include "zorva-core.h"

/** One service call with arguments to send and results to expect. */
class Trial {
public:
    virtual ~Trial() = default;
    /** The values of the inputs, in order. */
    virtual nlohmann::json arguments() const = 0;
    /** The values that the outputs shall get, in order. */
    virtual nlohmann::json results() const = 0;
    /** Per output, values that do not fit it. */
    virtual std::vector<std::vector<nlohmann::json>> badResponses() const = 0;
    /** Calls the function. @param nullOutput index of an output to pass as null */
    virtual zorva_core_status run(void *cookie, const char *target, std::optional<std::size_t> nullOutput = {}) = 0;
    /** Returns the present values of the outputs; "untouched" for an output that was not written. */
    virtual nlohmann::json outputs() const = 0;
};

/** A row of the list of service calls. */
struct ServiceCall {
    std::string service;
    std::string operation;
    OpenFunction initiatorInit;
    /** Makes a trial; the values of the arguments and results differ from round to round. */
    std::function<std::unique_ptr<Trial>(unsigned round)> trial;
};

/** Rounds after which every argument and result has had all of its values. */
inline constexpr unsigned kTrialRounds = 5;

/** The list, in the order of service_calls.def. */
const std::vector<ServiceCall> &serviceCalls();

/** Names a call in the output of a test. */
std::ostream &operator<<(std::ostream &stream, const ServiceCall &call);

#endif
