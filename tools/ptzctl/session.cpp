// SPDX-License-Identifier: Apache-2.0
#include "session.h"

#include <utility>

#include <fmt/format.h>

#include "native.h"

namespace ptzctl {

namespace {

constexpr const char *kPassphrases =
    "passphrases come from PTZCTL_AUTH_PASSPHRASE and PTZCTL_PRIVACY_PASSPHRASE, or from "
    "defAuthPassphrase and defPrivPassphrase in snmp.conf; 8 characters at least";

int libraryRequest(Request request) {
    switch (request) {
    case Request::Get:
        return SNMP_MSG_GET;
    case Request::GetNext:
        return SNMP_MSG_GETNEXT;
    case Request::Set:
        break;
    }
    return SNMP_MSG_SET;
}

/** Whether an error of the library means that the camera's agent has not let the request in. */
bool isReport(int error) {
    switch (error) {
    case SNMPERR_UNKNOWN_USER_NAME:
    case SNMPERR_UNKNOWN_ENG_ID:
    case SNMPERR_UNSUPPORTED_SEC_LEVEL:
    case SNMPERR_AUTHENTICATION_FAILURE:
    case SNMPERR_NOT_IN_TIME_WINDOW:
    case SNMPERR_DECRYPTION_ERR:
        return true;
    default:
        return false;
    }
}

/** Whether the library itself could not protect a message, or could not read one that is protected. */
bool isSecurity(int error) {
    return error <= SNMPERR_USM_GENERICERROR && error >= SNMPERR_USM_DECRYPTIONERROR;
}

bool isTimeout(int error) {
    return error == SNMPERR_TIMEOUT;
}

} // namespace

Session::Session(std::string host, std::chrono::microseconds timeout) : host_(std::move(host)), session_(nullptr) {
    netsnmp_session wanted;
    snmp_sess_init(&wanted);
    wanted.peername = host_.data();
    wanted.version = netsnmp_ds_get_int(NETSNMP_DS_LIBRARY_ID, NETSNMP_DS_LIB_SNMPVERSION);
    wanted.timeout = static_cast<long>(timeout.count());
    wanted.retries = 1;
    session_ = snmp_sess_open(&wanted);
    if (session_ == nullptr) {
        if (isTimeout(snmp_errno)) {
            throw noAnswer(Request::Get);
        }
        if (snmp_errno == SNMPERR_GENERR) {
            throw Failure(ExitCode::Usage, libraryError(nullptr), kPassphrases);
        }
        throw Failure(ExitCode::NoAnswer, "no session: " + libraryError(nullptr), "check the name of the host");
    }
}

Session::~Session() {
    if (session_ != nullptr) {
        snmp_sess_close(session_);
    }
}

Failure Session::noAnswer(Request request) const {
    if (request == Request::Set) {
        return {ExitCode::NoAnswer, "no answer to a command",
                "it may have been carried out; look with `ptzctl status`"};
    }
    return {ExitCode::NoAnswer, "no answer",
            "check address and port, and the community or user with its passphrases: an agent does not answer those it "
            "does not know"};
}

Reply Session::exchange(Request request, const std::vector<Variable> &variables) {
    PduPointer pdu(snmp_pdu_create(libraryRequest(request)), snmp_free_pdu);
    if (!pdu) {
        throw Failure(ExitCode::BadAnswer, "no memory for a request");
    }
    for (const Variable &variable : variables) {
        append(pdu.get(), variable);
    }
    netsnmp_session *const opened = snmp_sess_session(session_);
    opened->retries = request == Request::Set ? 0 : 1;
    netsnmp_pdu *raw = nullptr;
    const int status = snmp_sess_synch_response(session_, pdu.release(), &raw);
    const PduPointer answer(raw, snmp_free_pdu);
    const int error = opened->s_snmp_errno;
    // An SNMPv3 agent that does not tell its engine identifier is an error and no time-out to the library.
    if (status == STAT_TIMEOUT || (status == STAT_ERROR && isTimeout(error))) {
        throw noAnswer(request);
    }
    if (status == STAT_ERROR && isReport(error)) {
        throw Failure(ExitCode::NoAnswer, "the agent does not let the request in: " + libraryError(session_),
                      "check user, level, protocols and passphrases");
    }
    if (status == STAT_ERROR && isSecurity(error)) {
        throw Failure(ExitCode::NoAnswer, "no message can be signed or encrypted: " + libraryError(session_),
                      kPassphrases);
    }
    if (status != STAT_SUCCESS || !answer) {
        throw Failure(ExitCode::BadAnswer, "the request failed: " + libraryError(session_));
    }
    if (answer->command != SNMP_MSG_RESPONSE) {
        throw Failure(ExitCode::BadAnswer, fmt::format("an answer of the kind {:02X} came", answer->command));
    }
    return {answer->errstat, answer->errindex, variablesOf(*answer)};
}

} // namespace ptzctl
