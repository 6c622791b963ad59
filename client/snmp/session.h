// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * A session with one agent.
 */
#ifndef CLIENT_SNMP_SESSION_H
#define CLIENT_SNMP_SESSION_H

#include <chrono>
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

/**
 * A session with the credentials of startLibrary(). A request that reads is sent twice before it fails. A request that
 * writes is sent once, because a step that arrives twice moves twice.
 */
class Session : public Requester {
public:
    /** @throws Failure when the session cannot be opened */
    explicit Session(SessionOptions options);

    Response exchange(Operation operation, const std::vector<Varbind> &varbinds) override;

private:
    Failure failureOf(Operation operation, int status) const;

    SessionOptions options_;
    SessionPointer session_;
};

} // namespace snmp

#endif
