// SPDX-License-Identifier: Apache-2.0
#include "session.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <utility>

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/select.h>
#include <sys/socket.h>

#include "netsnmp_convert.h"
#include "octets_text.h"
#include "transport_tap.h"

namespace snmp {

namespace {

int commandOf(Operation operation) {
    switch (operation) {
    case Operation::Get:
        return SNMP_MSG_GET;
    case Operation::GetNext:
        return SNMP_MSG_GETNEXT;
    case Operation::Set:
        break;
    }
    return SNMP_MSG_SET;
}

/** Tests whether the library failed to protect a message, or to read a protected one. */
bool isSecurity(int error) {
    return error <= SNMPERR_USM_GENERICERROR && error >= SNMPERR_USM_DECRYPTIONERROR;
}

Failure noAnswer() {
    return {Cause::NoAnswer, "no answer",
            "check address and port, and the community or user with its passphrases: an agent ignores unknown ones"};
}

/** Makes the failure of a write. @param attempts number of times that it was sent */
Failure noAnswerToCommand(int attempts) {
    if (attempts == 0) {
        return {Cause::NoAnswer, "no answer; the command was not sent", noAnswer().advice()};
    }
    const std::string times = attempts > 1 ? " " + std::to_string(attempts) + " times" : "";
    return {Cause::NoAnswer, "no answer; the command was sent" + times,
            "the camera may have carried it out, or a busy agent may do it later; read its state before the next "
            "attempt"};
}

/** Descriptors to wait for. */
class Descriptors {
public:
    Descriptors() {
        netsnmp_large_fd_set_init(&set, FD_SETSIZE);
    }
    ~Descriptors() {
        netsnmp_large_fd_set_cleanup(&set);
    }
    Descriptors(const Descriptors &) = delete;
    Descriptors &operator=(const Descriptors &) = delete;

    netsnmp_large_fd_set set{};
};

/**
 * Waits for a message or a time-out of a session, and passes it to the session's callbacks.
 * @param longest  upper limit of the wait; 0 for none
 */
void serve(void *session, const timeval &longest) {
    Descriptors descriptors;
    timeval timeout{};
    int limit = 0;
    int block = 1;
    {
        const std::lock_guard<std::mutex> lock(libraryMutex());
        snmp_sess_select_info2(session, &limit, &descriptors.set, &timeout, &block);
    }
    if (longest.tv_usec != 0 && (block != 0 || timeout.tv_sec > 0 || timeout.tv_usec > longest.tv_usec)) {
        timeout = longest;
        block = 0;
    }
    const int count =
        netsnmp_large_fd_set_select(limit, &descriptors.set, nullptr, nullptr, block != 0 ? nullptr : &timeout);
    if (count < 0 && errno != EINTR) {
        throw Failure(Cause::BadResponse, "cannot wait for an answer");
    }
    const std::lock_guard<std::mutex> lock(libraryMutex());
    if (count > 0) {
        snmp_sess_read2(session, &descriptors.set);
    }
    // Also after a message: an agent that sends without a pause must not put off the time-out.
    snmp_sess_timeout(session);
}

/** Returns what shows that a message is no answer to a request of the session, or null. */
const char *deviationOf(const netsnmp_pdu &pdu, const netsnmp_session &session) {
    if (pdu.version != session.version) {
        return "the answer has another version of SNMP";
    }
    const bool hasCommunity = session.version != SNMP_VERSION_3;
    const bool isSame =
        pdu.community_len == session.community_len &&
        (pdu.community_len == 0 || std::memcmp(pdu.community, session.community, pdu.community_len) == 0);
    return hasCommunity && !isSame ? "the answer has another community" : nullptr;
}

/** Converts a message. @throws Failure for one that is not a response */
Response responseOf(const netsnmp_pdu &pdu) {
    if (pdu.command != SNMP_MSG_RESPONSE) {
        const std::string kind(1, static_cast<char>(pdu.command));
        throw Failure(Cause::BadResponse, "the answer is a message of type " + hexText(kind));
    }
    return {pdu.errstat, pdu.errindex, varbindsOf(pdu)};
}

PduPointer newRequest(int command) {
    const std::lock_guard<std::mutex> lock(libraryMutex());
    PduPointer request(snmp_pdu_create(command));
    if (!request) {
        throw Failure(Cause::BadResponse, "no memory for a request");
    }
    return request;
}

SessionPointer open(SessionOptions &options) {
    const std::lock_guard<std::mutex> lock(libraryMutex());
    netsnmp_session wanted;
    snmp_sess_init(&wanted);
    wanted.peername = options.host.data();
    wanted.version = netsnmp_ds_get_int(NETSNMP_DS_LIBRARY_ID, NETSNMP_DS_LIB_SNMPVERSION);
    if (!options.community.empty()) {
        wanted.version = SNMP_VERSION_2c;
        wanted.community = reinterpret_cast<u_char *>(options.community.data());
        wanted.community_len = options.community.size();
    }
    SessionPointer session(snmp_sess_open(&wanted));
    if (session) {
        return session;
    }
    if (snmp_errno == SNMPERR_TIMEOUT) {
        throw noAnswer();
    }
    if (snmp_errno == SNMPERR_GENERR) {
        throw Failure(Cause::Usage, libraryError(nullptr), options.passphraseAdvice);
    }
    throw Failure(Cause::NoAnswer, "no session: " + libraryError(nullptr), "check the host name");
}

} // namespace

Session::Session(SessionOptions options) : options_(std::move(options)), session_(open(options_)) {
    if (options_.tap) {
        tapping_ = tapTransport(*snmp_sess_transport(session_.get()), options_.tap);
    }
}

Session::~Session() {
    const std::lock_guard<std::mutex> lock(libraryMutex());
    session_.reset();
}

std::uint16_t Session::localPort() const {
    const netsnmp_transport *const transport = snmp_sess_transport(session_.get());
    sockaddr_in address{};
    socklen_t size = sizeof address;
    if (transport == nullptr || getsockname(transport->sock, reinterpret_cast<sockaddr *>(&address), &size) != 0 ||
        address.sin_family != AF_INET) {
        return 0;
    }
    return ntohs(address.sin_port);
}

Failure Session::failureOf(Operation operation, const Pending &pending, int attempts) const {
    if (pending.deviation != nullptr) {
        return {Cause::BadResponse, pending.deviation,
                "it was discarded; check for a device between here and the camera"};
    }
    const int error = snmp_sess_session(session_.get())->s_snmp_errno;
    if (pending.status == STAT_TIMEOUT || error == SNMPERR_TIMEOUT) {
        return operation != Operation::Set ? noAnswer() : noAnswerToCommand(pending.wasSent ? attempts : 0);
    }
    const std::string reason = libraryError(session_.get());
    if (isReport(error)) {
        return {Cause::NoAnswer, "the agent rejects the credentials: " + reason,
                "check user, level, protocols and passphrases"};
    }
    if (isSecurity(error)) {
        return {Cause::NoAnswer, "the message cannot be signed or encrypted: " + reason, options_.passphraseAdvice};
    }
    return {Cause::BadResponse, "the request failed: " + reason};
}

int Session::receive(int operation, netsnmp_session *session, int /*request*/, netsnmp_pdu *pdu, void *data) noexcept {
    auto &pending = *static_cast<Pending *>(data);
    if (operation == NETSNMP_CALLBACK_OP_CONNECT || operation == NETSNMP_CALLBACK_OP_RESEND) {
        return 1;
    }
    pending.waiting = 0;
    pending.status = STAT_ERROR;
    if (operation == NETSNMP_CALLBACK_OP_TIMED_OUT) {
        pending.status = STAT_TIMEOUT;
    }
    if (operation != NETSNMP_CALLBACK_OP_RECEIVED_MESSAGE) {
        return 1; // the session has the reason
    }
    pending.deviation = deviationOf(*pdu, *session);
    if (pending.deviation != nullptr) {
        return 1;
    }
    if (pdu->command == SNMP_MSG_REPORT && pdu->version == SNMP_VERSION_3) {
        session->s_snmp_errno = snmpv3_get_report_type(pdu);
        // The library repeats the request with the right time, and clears `waiting` if it does not.
        pending.waiting = session->s_snmp_errno == SNMPERR_NOT_IN_TIME_WINDOW ? 1 : 0;
    } else {
        pending.response.reset(snmp_clone_pdu(pdu));
        pending.status = STAT_SUCCESS;
    }
    return 1;
}

Session::Pending &Session::send(Operation operation, const std::vector<Varbind> &varbinds, const Patience &patience) {
    return send(newRequest(commandOf(operation)), operation, varbinds, patience);
}

Session::Pending &Session::send(PduPointer request, Operation operation, const std::vector<Varbind> &varbinds,
                                const Patience &patience) {
    const std::lock_guard<std::mutex> lock(libraryMutex());
    for (const Varbind &varbind : varbinds) {
        append(*request, varbind);
    }
    const bool isLimited = patience.longestTimeout.count() > 0;
    const auto timeout = isLimited ? std::min(patience.longestTimeout, options_.timeout) : options_.timeout;
    netsnmp_session &settings = *snmp_sess_session(session_.get());
    settings.s_snmp_errno = SNMPERR_SUCCESS;
    settings.timeout = static_cast<long>(timeout.count());
    // The discovery of an SNMPv3 engine takes place in here. It can be repeated even if the request must not be.
    settings.retries = isLimited ? 0 : std::max(patience.attempts, kReadPatience.attempts) - 1;
    Pending &pending = pending_.emplace_back();
    if (snmp_sess_async_send(session_.get(), request.get(), receive, &pending) == 0) {
        throw failureOf(operation, pending, patience.attempts);
    }
    static_cast<void>(request.release()); // owned by the library now
    pending.wasSent = true;
    settings.retries = patience.attempts - 1;
    return pending;
}

Response Session::await(Pending &pending, Operation operation, const Patience &patience) {
    constexpr timeval kCancelPeriod = {0, 50000};
    while (pending.waiting != 0) {
        if (options_.isCancelled && options_.isCancelled()) {
            throw noAnswer();
        }
        serve(session_.get(), options_.isCancelled ? kCancelPeriod : timeval{});
    }
    if (!pending.response) {
        const std::lock_guard<std::mutex> lock(libraryMutex());
        throw failureOf(operation, pending, patience.attempts);
    }
    return responseOf(*pending.response);
}

Response Session::exchange(Operation operation, const std::vector<Varbind> &varbinds, const Patience &patience) {
    return await(send(operation, varbinds, patience), operation, patience);
}

Response Session::bulk(const Bulk &bulk, const std::vector<Varbind> &varbinds, const Patience &patience) {
    PduPointer request = newRequest(SNMP_MSG_GETBULK);
    request->non_repeaters = bulk.nonRepeaters;
    request->max_repetitions = bulk.maxRepetitions;
    return await(send(std::move(request), Operation::GetNext, varbinds, patience), Operation::GetNext, patience);
}

WriteResponse Session::write(const std::vector<Varbind> &read, const std::vector<Varbind> &written) {
    const Pending *early = nullptr;
    if (!read.empty()) {
        try {
            early = &send(Operation::Get, read, kWritePatience);
        } catch (const Failure &) {
            early = nullptr; // the SET may still get through
        }
    }
    WriteResponse result;
    result.written = exchange(Operation::Set, written, kWritePatience);
    if (early != nullptr && early->response && early->response->command == SNMP_MSG_RESPONSE) {
        result.before = responseOf(*early->response);
    }
    return result;
}

} // namespace snmp
