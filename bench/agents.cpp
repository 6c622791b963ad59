// SPDX-License-Identifier: Apache-2.0
#include "agents.h"

#include "processors.h"

namespace bench {

harness::AgentOptions agentOptions(const std::string &cameraDirectory) {
    harness::AgentOptions options = harness::withModule(cameraDirectory);
    options.environment["QUARNSNMP_LOG_LEVEL"] = "info";
    return options;
}

std::unique_ptr<harness::Agent> startAgent(const harness::AgentOptions &options) {
    auto agent = std::make_unique<harness::Agent>(options);
    pinToProcessor(agent->pid(), kAgentProcessor);
    return agent;
}

CameraAgent::CameraAgent(const std::string &cameraName)
    : camera(cameraName), agent(startAgent(agentOptions(camera.directory()))) {
    pinToProcessor(camera.pid(), kAgentProcessor);
}

} // namespace bench
