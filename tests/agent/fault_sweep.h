// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Sending every request of a camera while its services fail, and judging the answers.
 */
#ifndef QUARNSNMP_FAULT_SWEEP_H
#define QUARNSNMP_FAULT_SWEEP_H

#include <chrono>
#include <map>
#include <vector>

#include "camera_agent.h"
#include "fault_requests.h"

namespace faults {

/** Time limit of the library for one call. */
inline constexpr std::chrono::milliseconds kCallLimit{2000};

/** A fault of a camera. */
struct Fault {
    Services services = {};               ///< services with the faulty calls
    std::string operation = {};           ///< the faulty operation; empty for all
    bool fails = true;                    ///< false if the calls succeed late
    std::chrono::milliseconds perCall{0}; ///< longest time of a faulty call
    std::chrono::milliseconds atLeast{0}; ///< shortest time of a request with a faulty call

    /** Returns the faulty ones among the calls of a request. */
    std::vector<Call> struck(const std::vector<Call> &calls) const;
};

/** A camera with an agent, all requests for its objects, and their answers without faults. */
class FaultSweep : public harness::CameraAgent {
protected:
    explicit FaultSweep(const std::string &camera, const harness::AgentOptions &agent = {});

    const Services &services() const;

    /** Reads and writes all objects under a fault, and checks every answer. */
    void sweep(const Fault &fault);

    /** Reads and writes all objects without a fault, which leaves the camera in the state that sweep() expects. */
    void recover();

    /**
     * Sends a request under a fault, and checks its answer, its duration and its log lines. After a read of a service
     * that hangs, further reads of it must fail at once for ten seconds.
     */
    void send(const Request &request, const Fault &fault);

    /** Gives a service a fault until it is cleared. @param how last arguments of the control command */
    void order(const char *command, const std::string &service, const std::string &operation, const std::string &how);

    /** Resets the relays to the state before their first use, in which a switch makes more calls. */
    void forgetRelaySetUp() const;

    std::vector<Request> reads_;
    std::vector<Request> writes_;

private:
    void learn();
    void learn(Request &request);
    harness::Result ask(const Request &request);
    void expectDuration(const Request &request, const Fault &fault, std::chrono::milliseconds duration);
    void awaitEndOfHolds();
    void expectAnswer(const Request &request, const std::vector<Call> &failed, const harness::Result &result);
    void expectLog(const Request &request, const std::vector<Call> &failed, std::size_t start) const;
    std::size_t errorsLogged(std::size_t start) const;

    Services services_;
    std::map<std::string, std::chrono::steady_clock::time_point> heldSince_; ///< by service
};

/** Returns the name of a camera that has a service. */
std::string cameraWith(const std::string &service);

} // namespace faults

#endif
