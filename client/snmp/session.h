// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * A session with one agent.
 */
#ifndef CLIENT_SNMP_SESSION_H
#define CLIENT_SNMP_SESSION_H

#include <chrono>
#include <list>
#include <string>
#include <vector>

#include "failure.h"
#include "netsnmp_types.h"
#include "request.h"

namespace snmp {

struct SessionOptions {
    std::string host;                  ///< HOST or HOST:PORT, or another transport address of the SNMP library
    std::chrono::microseconds timeout; ///< time to wait for an answer to each attempt
    std::string passphraseAdvice;      ///< advice of a Failure about passphrases: where the program reads them
};

/** A session with the credentials of startLibrary(). */
class Session : public Requester {
public:
    /** @throws Failure when the session cannot be opened */
    explicit Session(SessionOptions options);

    Response exchange(Operation operation, const std::vector<Varbind> &varbinds, const Patience &patience) override;
    WriteResponse write(const std::vector<Varbind> &read, const std::vector<Varbind> &written) override;

private:
    /** A request on its way. */
    struct Pending {
        int waiting = 1; ///< the first member, since the library clears it after a report that ends the request
        int status = STAT_ERROR;
        bool wasSent = false; ///< false if the discovery of the SNMPv3 engine has failed, which precedes the request
        PduPointer response;
    };

    static int receive(int operation, netsnmp_session *session, int request, netsnmp_pdu *pdu, void *data) noexcept;
    Pending &send(Operation operation, const std::vector<Varbind> &varbinds, const Patience &patience);
    Response await(Pending &pending, Operation operation, const Patience &patience);
    Failure failureOf(Operation operation, const Pending &pending, int attempts) const;

    SessionOptions options_;
    std::list<Pending> pending_; ///< the library refers to these until the session is closed
    SessionPointer session_;
};

} // namespace snmp

#endif
