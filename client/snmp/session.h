// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * A session with one agent.
 */
#ifndef CLIENT_SNMP_SESSION_H
#define CLIENT_SNMP_SESSION_H

#include <chrono>
#include <cstdint>
#include <functional>
#include <list>
#include <string>
#include <vector>

#include "failure.h"
#include "netsnmp_types.h"
#include "request.h"

namespace snmp {

enum class Direction { Sent, Received };

/** Takes a message as octets, before the library reads it or after the library has sent it. Throws nothing. */
using Tap = std::function<void(Direction direction, const std::string &octets)>;

/** Numbers of a GETBULK. */
struct Bulk {
    int nonRepeaters;   ///< number of names of which one successor is read
    int maxRepetitions; ///< number of successors of each other name
};

struct SessionOptions {
    std::string host;                  ///< HOST or HOST:PORT, or another transport address of the SNMP library
    std::chrono::microseconds timeout; ///< time to wait for an answer to each attempt
    std::string passphraseAdvice;      ///< advice of a Failure about passphrases: where the program reads them
    std::string community = {};        ///< of an SNMPv2c session of its own; empty for the credentials of the process
    std::function<bool()> isCancelled = {}; ///< may be empty; asked while waiting, and true ends the wait
    Tap tap = {};                           ///< may be empty; called with each message of the session
};

/** A session with the credentials of startLibrary(). */
class Session : public Requester {
public:
    /** @throws Failure when the session cannot be opened */
    explicit Session(SessionOptions options);
    ~Session() override;

    Response exchange(Operation operation, const std::vector<Varbind> &varbinds, const Patience &patience) override;
    WriteResponse write(const std::vector<Varbind> &read, const std::vector<Varbind> &written) override;

    /** Sends a GETBULK and waits for the response. @throws Failure as exchange() */
    Response bulk(const Bulk &bulk, const std::vector<Varbind> &varbinds, const Patience &patience);

    /** Returns the local port of the session, from which the agent gets its requests; 0 without one. */
    std::uint16_t localPort() const;

private:
    /** A request on its way. */
    struct Pending {
        int waiting = 1; ///< the first member, since the library clears it after a report that ends the request
        int status = STAT_ERROR;
        bool wasSent = false; ///< false if the discovery of the SNMPv3 engine has failed, which precedes the request
        const char *deviation = nullptr; ///< what shows that the answer is not one to the request
        PduPointer response;
    };

    static int receive(int operation, netsnmp_session *session, int request, netsnmp_pdu *pdu, void *data) noexcept;
    Pending &send(Operation operation, const std::vector<Varbind> &varbinds, const Patience &patience);
    Pending &send(PduPointer request, Operation operation, const std::vector<Varbind> &varbinds,
                  const Patience &patience);
    Response await(Pending &pending, Operation operation, const Patience &patience);
    Failure failureOf(Operation operation, const Pending &pending, int attempts) const;

    SessionOptions options_;
    std::shared_ptr<void> tapping_; ///< until the session is closed
    std::list<Pending> pending_;    ///< the library refers to these until the session is closed
    SessionPointer session_;
};

} // namespace snmp

#endif
