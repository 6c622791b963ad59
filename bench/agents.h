// SPDX-License-Identifier: Apache-2.0
/** @file Agents for measurements, tied to their processor. */
#ifndef QUARNSNMP_BENCH_AGENTS_H
#define QUARNSNMP_BENCH_AGENTS_H

#include <memory>
#include <string>

#include "agent.h"
#include "camera.h"

namespace bench {

/** Options of an agent with the module, which logs as it does on a camera. @param cameraDirectory of its camera */
harness::AgentOptions agentOptions(const std::string &cameraDirectory);

/** Starts an agent on the processor of agents. */
std::unique_ptr<harness::Agent> startAgent(const harness::AgentOptions &options);

/** A camera with an agent that has the module for it. */
struct CameraAgent {
    explicit CameraAgent(const std::string &cameraName);

    support::Camera camera;
    std::unique_ptr<harness::Agent> agent;
};

} // namespace bench

#endif
