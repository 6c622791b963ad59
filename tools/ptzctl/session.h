// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * A session with one camera.
 */
#ifndef PTZCTL_SESSION_H
#define PTZCTL_SESSION_H

#include <chrono>
#include <string>

#include "failure.h"
#include "requester.h"

namespace ptzctl {

/**
 * A session in the SNMP library, with the credentials that startLibrary() has set. A request that only reads is sent
 * once more when no answer comes. One that writes is sent once: a step that arrives twice moves twice.
 */
class Session : public Requester {
public:
    /**
     * @param host     HOST or HOST:PORT, or what else the SNMP library takes as a transport address
     * @param timeout  how long to wait for an answer each time
     * @throws Failure when the session cannot be opened
     */
    Session(std::string host, std::chrono::microseconds timeout);
    ~Session() override;

    Reply exchange(Request request, const std::vector<Variable> &variables) override;

private:
    Failure noAnswer(Request request) const;

    std::string host_;
    void *session_;
};

} // namespace ptzctl

#endif
