// SPDX-License-Identifier: Apache-2.0
#include "session.h"

#include <utility>

#include "netsnmp_convert.h"
#include "octets_text.h"

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

Failure noAnswer(Operation operation) {
    if (operation == Operation::Set) {
        return {Cause::NoAnswer, "no answer to a command",
                "the camera may have carried it out; read its state before the next attempt"};
    }
    return {Cause::NoAnswer, "no answer",
            "check address and port, and the community or user with its passphrases: an agent ignores unknown ones"};
}

SessionPointer open(SessionOptions &options) {
    netsnmp_session wanted;
    snmp_sess_init(&wanted);
    wanted.peername = options.host.data();
    wanted.version = netsnmp_ds_get_int(NETSNMP_DS_LIBRARY_ID, NETSNMP_DS_LIB_SNMPVERSION);
    wanted.timeout = static_cast<long>(options.timeout.count());
    wanted.retries = 1;
    SessionPointer session(snmp_sess_open(&wanted));
    if (session) {
        return session;
    }
    if (snmp_errno == SNMPERR_TIMEOUT) {
        throw noAnswer(Operation::Get);
    }
    if (snmp_errno == SNMPERR_GENERR) {
        throw Failure(Cause::Usage, libraryError(nullptr), options.passphraseAdvice);
    }
    throw Failure(Cause::NoAnswer, "no session: " + libraryError(nullptr), "check the host name");
}

} // namespace

Session::Session(SessionOptions options) : options_(std::move(options)), session_(open(options_)) {}

Failure Session::failureOf(Operation operation, int status) const {
    const int error = snmp_sess_session(session_.get())->s_snmp_errno;
    // The library reports a missing answer to the discovery of an SNMPv3 engine as an error.
    if (status == STAT_TIMEOUT || (status == STAT_ERROR && error == SNMPERR_TIMEOUT)) {
        return noAnswer(operation);
    }
    const std::string reason = libraryError(session_.get());
    if (status == STAT_ERROR && isReport(error)) {
        return {Cause::NoAnswer, "the agent rejects the credentials: " + reason,
                "check user, level, protocols and passphrases"};
    }
    if (status == STAT_ERROR && isSecurity(error)) {
        return {Cause::NoAnswer, "the message cannot be signed or encrypted: " + reason, options_.passphraseAdvice};
    }
    return {Cause::BadResponse, "the request failed: " + reason};
}

Response Session::exchange(Operation operation, const std::vector<Varbind> &varbinds) {
    PduPointer request(snmp_pdu_create(commandOf(operation)));
    if (!request) {
        throw Failure(Cause::BadResponse, "no memory for a request");
    }
    for (const Varbind &varbind : varbinds) {
        append(*request, varbind);
    }
    snmp_sess_session(session_.get())->retries = operation == Operation::Set ? 0 : 1;
    netsnmp_pdu *received = nullptr;
    const int status = snmp_sess_synch_response(session_.get(), request.release(), &received);
    const PduPointer response(received);
    if (status != STAT_SUCCESS || !response) {
        throw failureOf(operation, status);
    }
    if (response->command != SNMP_MSG_RESPONSE) {
        const std::string kind(1, static_cast<char>(response->command));
        throw Failure(Cause::BadResponse, "the answer is a message of type " + hexText(kind));
    }
    return {response->errstat, response->errindex, varbindsOf(*response)};
}

} // namespace snmp
