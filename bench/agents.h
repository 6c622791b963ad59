// SPDX-License-Identifier: Apache-2.0
/** @file Agents under measurement, pinned to their processor. */
#ifndef QUARNSNMP_BENCH_AGENTS_H
#define QUARNSNMP_BENCH_AGENTS_H

#include <memory>
#include <string>

#include "agent.h"
#include "camera.h"

namespace bench {

/** Returns options of an agent with the module and the log level of a camera. @param cameraDirectory of its sockets */
harness::AgentOptions agentOptions(const std::string &cameraDirectory);

/** Starts an agent on the processor reserved for agents. */
std::unique_ptr<harness::Agent> startAgent(const harness::AgentOptions &options);

/** A camera, and an agent whose module is connected to it. */
struct CameraAgent {
    explicit CameraAgent(const std::string &cameraName);

    support::Camera camera;
    std::unique_ptr<harness::Agent> agent;
};

} // namespace bench

#endif
