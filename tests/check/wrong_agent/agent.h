// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * An SNMPv2c agent on loopback for tests of testers. It serves a healthy camera, and on request it is wrong in one way.
 */
#ifndef QUARNSNMP_CHECK_AGENT_H
#define QUARNSNMP_CHECK_AGENT_H

#include <cstdint>
#include <functional>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "message.h"
#include "model.h"

namespace wrong {

inline constexpr const char *kReadCommunity = "public";
inline constexpr const char *kWriteCommunity = "private";

/** How the agent treats requests. Faults change it. */
struct Behaviour {
    bool readersWrite = false;                                              ///< the community for reading may write
    std::function<bool(const snmp::Varbind &)> appliesAnyway;               ///< varbinds that a refused SET applies
    std::function<void(const std::string &after, snmp::Varbind &)> follows; ///< changes the successor of an OID
    std::function<bool(const Request &)> drops;                             ///< requests without a response
    std::function<void(const Request &, Reply &)> distort;                  ///< changes a right response
    std::function<void(const Request &, std::string &octets)> mangle;       ///< changes a message
    std::function<int(const Request &)> copies;                             ///< number of times that a response is sent
};

class Agent {
public:
    /**
     * Starts to listen at a UDP port of 127.0.0.1.
     * @param fault  name of a fault, see faults(); empty for a healthy agent
     * @param port   0 for a free one
     * @throws std::invalid_argument for an unknown fault
     * @throws std::system_error
     */
    explicit Agent(const Dialect &dialect = {}, const std::string &fault = "", std::uint16_t port = 0);
    ~Agent();
    Agent(const Agent &) = delete;
    Agent &operator=(const Agent &) = delete;

    /** Address as HOST:PORT. */
    std::string host() const;

    /** Calls a function with the model while no request is answered. */
    template <typename Function>
    auto look(Function function) {
        const std::lock_guard<std::mutex> lock(mutex_);
        return function(model_);
    }

    /** Loses the responses while an axis moves, or no longer: requests are carried out. */
    void loseWhileMoving(bool loses);

    /** Returns all requests so far. */
    std::vector<Request> requests();

private:
    void serve();
    bool isLost(const Request &request);
    void answer(const Request &request, Reply &reply);
    void get(const Request &request, Reply &reply);
    snmp::Varbind next(const std::string &oid);
    void bulk(const Request &request, Reply &reply);
    void set(const Request &request, Reply &reply);
    long check(const snmp::Varbind &varbind);

    std::mutex mutex_;
    Model model_;
    Behaviour behaviour_;
    std::vector<Request> requests_;
    bool losesWhileMoving_ = false;
    int socket_;
    int ending_;
    std::thread thread_;
};

} // namespace wrong

#endif
