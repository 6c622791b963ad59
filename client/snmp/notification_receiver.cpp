// SPDX-License-Identifier: Apache-2.0
#include "notification_receiver.h"

#include <cstdlib>
#include <utility>

#include <sys/select.h>

#include "failure.h"
#include "netsnmp_convert.h"

namespace snmp {

namespace {

SecurityLevel levelOf(const netsnmp_pdu &pdu) {
    return pdu.version == SNMP_VERSION_3 ? static_cast<SecurityLevel>(pdu.securityLevel) : SecurityLevel::NoAuthNoPriv;
}

void answerInform(netsnmp_session *session, netsnmp_pdu *pdu) {
    PduPointer answer(snmp_clone_pdu(pdu));
    if (answer) {
        answer->command = SNMP_MSG_RESPONSE;
        answer->errstat = 0;
        answer->errindex = 0;
        if (snmp_send(session, answer.get()) != 0) {
            static_cast<void>(answer.release()); // owned by the library now
        }
    }
}

} // namespace

NotificationReceiver::NotificationReceiver(const char *program, const std::string &address, Handler handler)
    : handler_(std::move(handler)), transport_(netsnmp_transport_open_server(program, address.c_str())) {
    if (transport_ == nullptr) {
        throw Failure(Cause::BadResponse, "cannot listen at " + address,
                      "check for another receiver, and for a port that needs privileges");
    }
    netsnmp_session wanted;
    snmp_sess_init(&wanted);
    wanted.peername = nullptr;
    wanted.version = SNMP_DEFAULT_VERSION;
    wanted.community_len = SNMP_DEFAULT_COMMUNITY_LEN;
    wanted.callback = receive;
    wanted.callback_magic = this;
    wanted.authenticator = nullptr;
    wanted.isAuthoritative = SNMP_SESS_UNKNOWNAUTH;
    session_.reset(snmp_add(&wanted, transport_, nullptr, nullptr)); // frees the transport when it fails
    if (!session_) {
        throw Failure(Cause::BadResponse, "cannot receive at " + address + ": " + libraryError(nullptr));
    }
}

std::string NotificationReceiver::senderOf(const netsnmp_pdu &pdu) const {
    char *const text = transport_->f_fmtaddr != nullptr
                           ? transport_->f_fmtaddr(transport_, pdu.transport_data, pdu.transport_data_length)
                           : nullptr;
    const std::string address = text != nullptr ? text : "unknown";
    std::free(text);
    // The text has both addresses of the path, each in brackets. The sender's comes first.
    const std::size_t start = address.find('[');
    const std::size_t end = address.find(']', start);
    return end == std::string::npos ? address : address.substr(start + 1, end - start - 1);
}

int NotificationReceiver::receive(int operation, netsnmp_session *session, int /*request*/, netsnmp_pdu *pdu,
                                  void *data) noexcept {
    if (operation != NETSNMP_CALLBACK_OP_RECEIVED_MESSAGE ||
        (pdu->command != SNMP_MSG_TRAP2 && pdu->command != SNMP_MSG_INFORM)) {
        return 1;
    }
    auto &receiver = *static_cast<NotificationReceiver *>(data);
    // No exception may pass through the library, which is written in C.
    try {
        const bool isTaken = receiver.handler_({receiver.senderOf(*pdu), levelOf(*pdu), varbindsOf(*pdu)});
        if (isTaken && pdu->command == SNMP_MSG_INFORM) {
            answerInform(session, pdu);
        }
    } catch (...) {
        receiver.thrown_ = std::current_exception();
    }
    return 1;
}

bool NotificationReceiver::wait(int wakeUp) {
    fd_set readable;
    FD_ZERO(&readable);
    FD_SET(wakeUp, &readable);
    int limit = wakeUp + 1;
    timeval timeout{};
    int block = 1;
    {
        const std::lock_guard<std::mutex> lock(libraryMutex());
        snmp_select_info(&limit, &readable, &timeout, &block);
    }
    const int count = select(limit, &readable, nullptr, nullptr, block != 0 ? nullptr : &timeout);
    const std::lock_guard<std::mutex> lock(libraryMutex());
    if (count <= 0) {
        snmp_timeout();
        return true;
    }
    if (FD_ISSET(wakeUp, &readable)) {
        return false;
    }
    snmp_read(&readable);
    if (thrown_) {
        std::rethrow_exception(std::exchange(thrown_, nullptr));
    }
    return true;
}

} // namespace snmp
