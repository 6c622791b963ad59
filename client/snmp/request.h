// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Requests and responses.
 */
#ifndef CLIENT_SNMP_REQUEST_H
#define CLIENT_SNMP_REQUEST_H

#include <vector>

#include "varbind.h"

namespace snmp {

enum class Operation { Get, GetNext, Set };

/** A response as received; its varbinds may differ from those of the request. */
struct Response {
    long error = 0;      ///< error status of the protocol, 0 for none
    long errorIndex = 0; ///< the varbind with the error, from 1; 0 for none
    std::vector<Varbind> varbinds;
};

/** An agent that answers requests. Tests have their own. */
class Requester {
public:
    Requester() = default;
    Requester(const Requester &) = delete;
    Requester &operator=(const Requester &) = delete;
    virtual ~Requester() = default;

    /** Sends a request and waits for the response. @throws Failure without a response */
    virtual Response exchange(Operation operation, const std::vector<Varbind> &varbinds) = 0;
};

} // namespace snmp

#endif
