// SPDX-License-Identifier: Apache-2.0
#include "observer.h"

#include <algorithm>
#include <chrono>
#include <exception>
#include <vector>

#include "agent_names.h"
#include "observation.h"
#include "watch_socket.h"

namespace watch {

namespace {

using std::chrono::steady_clock;
using std::chrono::system_clock;

/** One object of a call of the handlers. They may put another varbind in its place: see below. */
struct Call {
    const netsnmp_request_info *request;
    const netsnmp_variable_list *varbind;
};

/** A SET of one object between its first and its last phase. */
struct PendingSet {
    const netsnmp_agent_session *session;
    int index; ///< of the varbind in the message
    Observation observation;
};

// Only the agent's own thread calls handlers, and it serves one SET at a time.
std::vector<PendingSet> gPendingSets;
constexpr std::size_t kMaxPendingSets = 2048;

/** How the handlers were called, and what they returned. */
struct CallOutcome {
    const netsnmp_agent_session *session;
    int mode;
    system_clock::time_point start;
    steady_clock::duration duration;
    int status;
};

long errorOf(const Call &call, const CallOutcome &outcome) {
    return call.request->status != SNMP_ERR_NOERROR ? call.request->status : outcome.status;
}

Observation start(const Call &call, const CallOutcome &outcome) {
    Observation observation;
    observation.time = outcome.start;
    observation.operation = operationName(outcome.mode);
    setValue(observation, *call.varbind);
    if (outcome.session != nullptr && outcome.session->pdu != nullptr) {
        observation.operation = operationName(outcome.session->pdu->command);
        setSender(observation, *outcome.session->pdu);
    }
    return observation;
}

void report(Observation &observation, const CallOutcome &outcome, const std::string &result) {
    observation.phase = phaseName(outcome.mode);
    observation.outcome = result;
    send(observation);
}

void observeRead(const Call &call, const CallOutcome &outcome) {
    const u_char type = call.varbind->type;
    const long error = errorOf(call, outcome);
    // Without an answer the agent asks the next registration.
    if (error == SNMP_ERR_NOERROR && (type == ASN_NULL || type == ASN_PRIV_RETRY)) {
        return;
    }
    Observation observation = start(call, outcome);
    observation.duration = outcome.duration;
    const bool isMissing = type == SNMP_NOSUCHOBJECT || type == SNMP_NOSUCHINSTANCE;
    report(observation, outcome, error == SNMP_ERR_NOERROR && isMissing ? observation.type : errorName(error));
}

void observeSet(const Call &call, const CallOutcome &outcome) {
    const auto matches = [&](const PendingSet &set) {
        return set.session == outcome.session && set.index == call.request->index;
    };
    if (outcome.mode == MODE_SET_RESERVE1) {
        // A SET that the agent abandoned may be left from a former message.
        gPendingSets.erase(std::remove_if(gPendingSets.begin(), gPendingSets.end(), matches), gPendingSets.end());
        if (gPendingSets.size() >= kMaxPendingSets) {
            gPendingSets.clear();
        }
        gPendingSets.push_back({outcome.session, call.request->index, start(call, outcome)});
    }
    const auto pending = std::find_if(gPendingSets.begin(), gPendingSets.end(), matches);
    if (pending == gPendingSets.end()) {
        return; // reported with its error before
    }
    pending->observation.duration += outcome.duration;
    const long error = errorOf(call, outcome);
    const bool isUndone = outcome.mode == MODE_SET_FREE || outcome.mode == MODE_SET_UNDO;
    if (error == SNMP_ERR_NOERROR && outcome.mode != MODE_SET_COMMIT && !isUndone) {
        return;
    }
    report(pending->observation, outcome, isUndone ? "undone" : errorName(error));
    gPendingSets.erase(pending);
}

std::vector<Call> callsOf(const netsnmp_request_info *requests) {
    std::vector<Call> calls;
    for (const netsnmp_request_info *request = requests; request != nullptr; request = request->next) {
        calls.push_back({request, request->requestvb});
    }
    return calls;
}

/** Observes requests that have been served. Failures, such as a lack of memory, cost the report and nothing else. */
void observeCalls(const std::vector<Call> &calls, const CallOutcome &outcome) noexcept {
    try {
        for (const Call &call : calls) {
            if (call.varbind == nullptr) {
                continue;
            }
            if (MODE_IS_SET(outcome.mode)) {
                observeSet(call, outcome);
            } else {
                observeRead(call, outcome);
            }
        }
    } catch (const std::exception &) { // NOLINT(bugprone-empty-catch)
    }
}

} // namespace

int observe(netsnmp_mib_handler *handler, netsnmp_handler_registration *registration,
            netsnmp_agent_request_info *information, netsnmp_request_info *requests) {
    std::vector<Call> calls;
    try {
        // Before the call: a GETBULK puts the next varbind in the place of an answered one.
        calls = callsOf(requests);
    } catch (const std::exception &) {
        calls.clear();
    }
    const int mode = information->mode;
    const auto start = system_clock::now();
    const auto begin = steady_clock::now();
    const int status = netsnmp_call_next_handler(handler, registration, information, requests);
    const auto duration = steady_clock::now() - begin;
    observeCalls(calls, {information->asp, mode, start, duration, status});
    return status;
}

void forgetSets() noexcept {
    gPendingSets = {};
}

} // namespace watch
