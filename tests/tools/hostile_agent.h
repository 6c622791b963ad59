// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * An agent on loopback that answers any octets.
 */
#ifndef QUARNSNMP_HOSTILE_AGENT_H
#define QUARNSNMP_HOSTILE_AGENT_H

#include <atomic>
#include <functional>
#include <string>
#include <thread>
#include <vector>

#include <netinet/in.h>

#include "message.h"

namespace hostile {

/** Makes the messages that answer a request. They are sent one after the other. */
using Script = std::function<std::vector<std::string>(const wrong::Request &request)>;

/** Whether the messages are sent once or until the agent ends. */
enum class Manner { Once, Flood };

/** A UDP server with a thread of its own. */
class Agent {
public:
    /** Listens at a free port of 127.0.0.1. @throws std::system_error */
    explicit Agent(Script script, Manner manner = Manner::Once);
    ~Agent();
    Agent(const Agent &) = delete;
    Agent &operator=(const Agent &) = delete;

    /** Address as HOST:PORT. */
    std::string host() const;

    /** Number of requests so far. */
    int requests() const {
        return requests_;
    }

private:
    void serve();
    void answer(const wrong::Request &request, const sockaddr_in &from);

    Script script_;
    Manner manner_;
    int socket_;
    std::atomic<bool> ends_ = false;
    std::atomic<int> requests_ = 0;
    std::thread thread_;
};

} // namespace hostile

#endif
