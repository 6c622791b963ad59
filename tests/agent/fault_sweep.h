// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Sending every request of a camera while its services fail, and judging the answers.
 */
#ifndef QUARNSNMP_FAULT_SWEEP_H
#define QUARNSNMP_FAULT_SWEEP_H

#include <chrono>
#include <vector>

#include "camera_agent.h"
#include "fault_requests.h"

namespace faults {

/** The time after which the library gives up a call. */
inline constexpr std::chrono::milliseconds kCallLimit{2000};

/** What is wrong with a camera. */
struct Fault {
    Services services = {};               ///< whose calls are struck
    std::string operation = {};           ///< of these; empty for all of them
    bool fails = true;                    ///< false when the calls succeed, only late
    std::chrono::milliseconds perCall{0}; ///< that a struck call takes at most
    std::chrono::milliseconds atLeast{0}; ///< that a request with a struck call takes

    /** Those of a request's calls that it strikes. */
    std::vector<Call> struck(const std::vector<Call> &calls) const;
};

/** A camera with an agent, all requests that its objects take, and how they are answered while nothing fails. */
class FaultSweep : public harness::CameraAgent {
protected:
    explicit FaultSweep(const std::string &camera, const harness::AgentOptions &agent = {});

    const Services &services() const;

    /** Everything that the module shows. */
    std::vector<harness::Varbind> walk();

    /** Reads all and writes all under a fault, and judges every answer. */
    void sweep(const Fault &fault);

    /** Reads all and writes all without a fault: the camera is in the state in which sweep() wants it. */
    void recover();

    /** Sends a request under a fault, and judges its answer, its time and what is logged. */
    void send(const Request &request, const Fault &fault);

    /** Orders something of all operations of a service, or of one, until it is cleared. @param how a command's end */
    void order(const char *command, const std::string &service, const std::string &operation, const std::string &how);

    /** Lets relays be as before their first use: one that is not set up is asked for more. */
    void forgetRelaySetUp() const;

    std::vector<Request> reads_;
    std::vector<Request> writes_;

private:
    void learn();
    void learn(Request &request);
    harness::Result ask(const Request &request);
    void expectAnswer(const Request &request, const std::vector<Call> &failed, const harness::Result &result);
    void expectLog(const Request &request, const std::vector<Call> &failed, std::size_t start) const;
    std::size_t errorsLogged(std::size_t start) const;

    Services services_;
};

/** A camera of the project's that has a service. */
std::string cameraWith(const std::string &service);

} // namespace faults

#endif
