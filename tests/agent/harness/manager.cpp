// SPDX-License-Identifier: Apache-2.0
#include "manager.h"

#include <algorithm>
#include <iterator>
#include <limits>
#include <memory>
#include <mutex>
#include <stdexcept>

#include "netsnmp_convert.h"
#include "netsnmp_types.h"

namespace harness {

namespace {

void *open(const std::string &peer, const std::string &community, CommunityVersion version) {
    // Without init_snmp(), which would read the user's and the machine's configuration.
    static std::mutex mutex;
    const std::lock_guard<std::mutex> lock(mutex);
    netsnmp_session wanted;
    snmp_sess_init(&wanted);
    std::string peername = "udp:" + peer;
    std::string name = community;
    wanted.version = version == CommunityVersion::V1 ? SNMP_VERSION_1 : SNMP_VERSION_2c;
    wanted.peername = peername.data();
    wanted.community = reinterpret_cast<u_char *>(name.data());
    wanted.community_len = name.size();
    wanted.retries = 0;
    void *session = snmp_sess_open(&wanted);
    if (session == nullptr) {
        throw std::runtime_error("cannot open a session with " + peer + ": " + snmp::libraryError(nullptr));
    }
    return session;
}

/**
 * Describes a report: the agent has rejected the security of the request.
 * @return empty if the session's last error is not a report
 */
std::string reportOf(void *session) {
    return snmp::isReport(snmp_sess_session(session)->s_snmp_errno) ? snmp::libraryError(session) : "";
}

std::vector<Varbind> namesOnly(const std::vector<std::string> &oids) {
    std::vector<Varbind> result;
    std::transform(oids.begin(), oids.end(), std::back_inserter(result), snmp::nameOnly);
    return result;
}

} // namespace

bool Result::ok() const {
    return answered && error == ErrorStatus::None;
}

const Varbind &Result::single() const {
    if (varbinds.size() != 1) {
        throw std::runtime_error("an answer with one varbind was expected, not " +
                                 (answered ? std::to_string(varbinds.size()) : "none at all"));
    }
    return varbinds.front();
}

std::ostream &operator<<(std::ostream &stream, ErrorStatus status) {
    return stream << snmp_errstring(static_cast<int>(status)) << " (" << static_cast<long>(status) << ")";
}

std::ostream &operator<<(std::ostream &stream, const Result &result) {
    if (!result.answered) {
        return stream << "no answer" << (result.report.empty() ? "" : ": " + result.report);
    }
    stream << result.error << " at " << result.errorIndex;
    for (const Varbind &varbind : result.varbinds) {
        stream << "\n  " << varbind;
    }
    return stream;
}

Manager::Manager(const std::string &peer, const std::string &community, CommunityVersion version)
    : session_(open(peer, community, version)) {
    setTimeout(patient(std::chrono::seconds(5)));
}

Manager::Manager(const std::string &peer, const User &user, std::chrono::microseconds timeout)
    : session_(openSecureSession(peer, user, timeout)) {
    if (session_ == nullptr) {
        throw std::runtime_error("cannot open a session with " + peer + ": " + snmp::libraryError(nullptr));
    }
}

Manager::~Manager() {
    if (snmp_sess_session(session_)->version == SNMP_VERSION_3) {
        closeSecureSession(session_);
    } else {
        snmp_sess_close(session_);
    }
}

void Manager::setTimeout(std::chrono::microseconds timeout) {
    snmp_sess_session(session_)->timeout = static_cast<long>(timeout.count());
}

Result Manager::request(int command, const std::vector<Varbind> &varbinds, long nonRepeaters, long maxRepetitions) {
    snmp::PduPointer pdu(snmp_pdu_create(command));
    if (!pdu) {
        throw std::runtime_error("no memory for a request");
    }
    if (command == SNMP_MSG_GETBULK) {
        pdu->non_repeaters = nonRepeaters;
        pdu->max_repetitions = maxRepetitions;
    }
    for (const Varbind &varbind : varbinds) {
        snmp::append(*pdu, varbind);
    }
    netsnmp_pdu *raw = nullptr;
    const int status = snmp_sess_synch_response(session_, pdu.release(), &raw);
    const snmp::PduPointer answer(raw);
    Result result;
    if (status == STAT_TIMEOUT) {
        return result;
    }
    if (status == STAT_ERROR) {
        // The library reports a missing answer about the engine ID as an error, not as a time-out.
        if (snmp_sess_session(session_)->s_snmp_errno == SNMPERR_TIMEOUT) {
            return result;
        }
        result.report = reportOf(session_);
        if (!result.report.empty()) {
            return result;
        }
    }
    if (status != STAT_SUCCESS || !answer) {
        throw std::runtime_error("request failed: " + snmp::libraryError(session_));
    }
    result.answered = true;
    result.error = static_cast<ErrorStatus>(answer->errstat);
    result.errorIndex = answer->errindex;
    result.varbinds = snmp::varbindsOf(*answer);
    return result;
}

Result Manager::getAll(const std::vector<std::string> &oids) {
    return request(SNMP_MSG_GET, namesOnly(oids), 0, 0);
}

Result Manager::getNextAll(const std::vector<std::string> &oids) {
    return request(SNMP_MSG_GETNEXT, namesOnly(oids), 0, 0);
}

Result Manager::getBulk(long nonRepeaters, long maxRepetitions, const std::vector<std::string> &oids) {
    return request(SNMP_MSG_GETBULK, namesOnly(oids), nonRepeaters, maxRepetitions);
}

Result Manager::set(const std::vector<Varbind> &values) {
    return request(SNMP_MSG_SET, values, 0, 0);
}

Result Manager::set(const std::string &oid, Type type, std::int64_t value) {
    return set({Varbind{oid, type, value, ""}});
}

std::vector<Varbind> Manager::walk(const std::string &root) {
    return collect(root, 0);
}

std::vector<Varbind> Manager::bulkWalk(const std::string &root, long repetitions) {
    return collect(root, repetitions);
}

std::vector<Varbind> Manager::collect(const std::string &root, long repetitions) {
    std::vector<Varbind> found;
    std::string last = root;
    while (true) {
        const Result result = repetitions > 0 ? getBulk(0, repetitions, {last}) : getNextAll({last});
        if (!result.ok() || result.varbinds.empty()) {
            throw std::runtime_error("the walk stops behind " + last + (result.answered ? ": error" : ": no answer"));
        }
        for (const Varbind &varbind : result.varbinds) {
            if (varbind.type == Type::EndOfMibView || !isBelow(varbind.oid, root)) {
                return found;
            }
            if (!comesBefore(last, varbind.oid)) {
                throw std::runtime_error("the walk goes backwards from " + last + " to " + varbind.oid);
            }
            last = varbind.oid;
            found.push_back(varbind);
        }
    }
}

} // namespace harness
