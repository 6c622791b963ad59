// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Makes each request of the budget twice, the first time to warm up, and lets callgrind write a profile of the second.
 * Started under callgrind by callgrind_profile.cpp, which says what is collected.
 */
#include <cstdio>
#include <exception>
#include <stdexcept>
#include <string>
#include <vector>

#include <valgrind/callgrind.h>

#include "agent_requests.h"
#include "subjects.h"

extern "C" {
int init_quarnsnmp(void);
int deinit_quarnsnmp(void);
}

namespace {

using budget::Subject;

const std::vector<int> kGetModes = {MODE_GET};
const std::vector<int> kSetModes = {MODE_SET_RESERVE1, MODE_SET_RESERVE2, MODE_SET_ACTION, MODE_SET_COMMIT};

requests::NewValue valueOf(const Subject &subject) {
    if (subject.limit == budget::kGet) {
        return {ASN_NULL, ""};
    }
    return subject.isText ? requests::NewValue::text(subject.octets) : requests::NewValue::integer(subject.number);
}

/** Makes a request as the agent does, except for its helpers. @throws std::runtime_error when it is refused */
void make(const Subject &subject) {
    requests::Request request(subject.oid, valueOf(subject));
    for (const int mode : subject.limit == budget::kGet ? kGetModes : kSetModes) {
        const requests::Answer answer = request.runOwnHandler(mode);
        if (answer.returned != SNMP_ERR_NOERROR || answer.requestError != SNMP_ERR_NOERROR || answer.type == ASN_NULL) {
            throw std::runtime_error(std::string(subject.name) + " is refused");
        }
    }
}

} // namespace

int main() {
    try {
        requests::startAgentLibrary();
        if (init_quarnsnmp() != 0) {
            throw std::runtime_error("the module does not start");
        }
        for (const Subject &subject : budget::kSubjects) {
            const std::string name(subject.name);
            make(subject);
            CALLGRIND_ZERO_STATS;
            make(subject);
            CALLGRIND_DUMP_STATS_AT(name.c_str());
        }
        deinit_quarnsnmp();
        return 0;
    } catch (const std::exception &error) {
        std::fprintf(stderr, "budget-requests: %s\n", error.what());
        return 1;
    }
}
