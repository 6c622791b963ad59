// SPDX-License-Identifier: Apache-2.0
#include <fmt/format.h>

#include "expected.h"
#include "families.h"

namespace ptzctl::check {

namespace {

/** A rule about all responses. */
struct ResponseRecord {
    const char *name;
    Violation violation;
    const char *expectation;
    const char *source;
};

const std::vector<ResponseRecord> &records() {
    static const std::vector<ResponseRecord> all = {
        {"response-arrives", Violation::NoResponse, "each request gets a response", "RFC 3416, 4.2"},
        {"response-format", Violation::Malformed, "each message can be read", "RFC 3417, 8"},
        {"response-id", Violation::WrongId, "each response has the request ID of a request", "RFC 3416, 4.1"},
        {"response-single", Violation::Repeated, "each request gets one response", "RFC 3416, 4.2"},
        {"response-kind", Violation::WrongKind, "the answer to a request is a Response-PDU", "RFC 3416, 4.2.4"},
        {"response-count", Violation::WrongCount, "a response has as many varbinds as its request asks for",
         "RFC 3416, 4.2"},
        {"response-oids", Violation::WrongOid, "a response has the OIDs of its request", "RFC 3416, 4.2"},
        {"response-values", Violation::WrongValue, "each varbind of a response has a value or an exception of its kind",
         "RFC 3416, 4.2"},
        {"error-status", Violation::WrongStatus, "an error status is one of SNMPv2", "RFC 3416, 3"},
        {"error-index", Violation::WrongIndex, "an error index names a varbind of the request", "RFC 3416, 4.2"},
    };
    return all;
}

/** Makes sure that there are responses to judge, also if no other rule runs. */
void readObjects(Context &context) {
    try {
        for (const Expected &expected : expectedObjects()) {
            try {
                context.value(expected.instance);
            } catch (const Undecided &) {
                continue; // judged below
            }
        }
    } catch (const Ended &) {
        return; // the responses so far are judged
    }
}

Finding judgeResponses(Context &context, Violation violation) {
    readObjects(context);
    context.takeEvidence(); // that of the failures is enough
    std::vector<Detail> details;
    for (const Exchange &exchange : context.exchanges()) {
        for (const Problem &problem : exchange.problems) {
            if (problem.violation == violation) {
                details.push_back({describe(exchange.request), Result::Fail, problem.text});
                context.addEvidence(exchange);
                break;
            }
        }
    }
    if (details.empty()) {
        return {Result::Pass, fmt::format("{} requests", context.exchanges().size()), {}};
    }
    return summarize(std::move(details));
}

} // namespace

std::vector<Rule> responseRules() {
    std::vector<Rule> list;
    for (const ResponseRecord &record : records()) {
        list.push_back({record.name, Level::Reads, "all requests", record.expectation, record.source,
                        [&record](Context &context) { return judgeResponses(context, record.violation); }, true});
    }
    return list;
}

} // namespace ptzctl::check
