// SPDX-License-Identifier: Apache-2.0
#include <chrono>
#include <filesystem>
#include <stdexcept>

#include "agents.h"
#include "object_oids.h"
#include "process_information.h"
#include "settings.h"
#include "suites.h"
#include "table.h"

namespace bench {

namespace {

using harness::Agent;
using harness::AgentOptions;
using harness::Manager;

/** Status column of the agent's table of loadable modules, in the module's row. */
constexpr const char *kModuleStatus = ".1.3.6.1.4.1.2021.13.14.2.1.5.1";
constexpr std::int64_t kLoad = 4;
constexpr std::int64_t kUnload = 5;

double strippedKibibytes() {
    const support::TemporaryDirectory directory;
    const std::string stripped = directory.file("module.so");
    if (!support::runCommand({"strip", "-o", stripped, harness::modulePath()}).status.clean()) {
        throw std::runtime_error("strip failed");
    }
    return static_cast<double>(std::filesystem::file_size(stripped)) / 1024;
}

double residentKibibytes(const AgentOptions &options) {
    const Agent agent(options);
    Manager(agent.peer()).get(oids::modelName);
    return static_cast<double>(support::residentKilobytes(agent.pid()));
}

void measureMemory(const AgentOptions &options, const Effort &effort) {
    AgentOptions without = options;
    without.module.clear();
    std::vector<double> added;
    for (int round = 0; round < effort.rounds; ++round) {
        const double before = residentKibibytes(without);
        added.push_back(residentKibibytes(options) - before);
    }
    printRounds("memory added to the agent, with the module's libraries", added, "KiB", 0);
}

double setStatus(Manager &manager, std::int64_t status) {
    const auto start = std::chrono::steady_clock::now();
    if (!manager.set(kModuleStatus, harness::Type::Integer, status).ok()) {
        throw std::runtime_error("the agent does not load or unload the module");
    }
    return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start).count();
}

void measureLoading(AgentOptions options, const Effort &effort) {
    options.showModules = true;
    const Agent agent(options);
    Manager manager(agent.peer());
    std::vector<double> loads;
    std::vector<double> unloads;
    for (int i = 0; i < effort.loads; ++i) {
        unloads.push_back(setStatus(manager, kUnload));
        loads.push_back(setStatus(manager, kLoad));
        if (!manager.get(oids::modelName).ok()) {
            throw std::runtime_error("the agent does not respond");
        }
    }
    printRounds("time to load with all services up", loads, "ms", 2);
    printRounds("time to unload", unloads, "ms", 2);
}

} // namespace

void measureFootprint(const Effort &effort) {
    const support::Camera camera("dome");
    const AgentOptions options = agentOptions(camera.directory());
    printHeading("Cost of an idle module");
    printValue("size of the module, stripped", strippedKibibytes(), "KiB", 0);
    measureMemory(options, effort);
    measureLoading(options, effort);
}

} // namespace bench
