// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Requests and responses.
 */
#ifndef CLIENT_SNMP_REQUEST_H
#define CLIENT_SNMP_REQUEST_H

#include <chrono>
#include <optional>
#include <vector>

#include "varbind.h"

namespace snmp {

enum class Operation { Get, GetNext, Set };

/** Limits of a request without an answer. */
struct Patience {
    int attempts = 1;                              ///< number of times that the request is sent
    std::chrono::microseconds longestTimeout = {}; ///< upper limit of the session's time-out; 0 for none
};

/** A request that reads and has the session's own time-out is sent twice. */
inline constexpr Patience kReadPatience = {2, {}};

/** A request that writes is sent once, because a step that arrives twice moves twice. */
inline constexpr Patience kWritePatience = {1, {}};

/** A response as received; its varbinds may differ from those of the request. */
struct Response {
    long error = 0;      ///< error status of the protocol, 0 for none
    long errorIndex = 0; ///< the varbind with the error, from 1; 0 for none
    std::vector<Varbind> varbinds;
};

/** Responses to a request that writes, and to another one that reads before. */
struct WriteResponse {
    std::optional<Response> before; ///< nothing if it did not arrive before the other one
    Response written;
};

/** An agent that answers requests. Tests have their own. */
class Requester {
public:
    Requester() = default;
    Requester(const Requester &) = delete;
    Requester &operator=(const Requester &) = delete;
    virtual ~Requester() = default;

    /** Sends a request and waits for the response. @throws Failure without a response */
    virtual Response exchange(Operation operation, const std::vector<Varbind> &varbinds, const Patience &patience) = 0;

    /**
     * Sends a GET and right behind it a SET, each once, and waits for the response to the SET. Neither a late nor a
     * missing response to the GET delays the SET.
     * @param read  varbinds of the GET; empty to send the SET alone
     * @throws Failure without a response to the SET
     */
    virtual WriteResponse write(const std::vector<Varbind> &read, const std::vector<Varbind> &written) = 0;
};

} // namespace snmp

#endif
