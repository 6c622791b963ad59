/**
 * @file
 * What the module costs its agent: size of the file, memory, time to load and to unload, each a median of interleaved
 * rounds with a real agent and the simulated dome camera.
 */
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <filesystem>
#include <stdexcept>
#include <vector>

#include "agent.h"
#include "camera.h"
#include "process.h"
#include "process_information.h"
#include "settings.h"

namespace {

using namespace harness;

constexpr int kAgents = 9;
constexpr int kLoads = 101;

constexpr const char *kModelName = ".1.3.6.1.4.1.99999.1.1.2.0.0";
constexpr const char *kModuleStatus = ".1.3.6.1.4.1.2021.13.14.2.1.5.1";
constexpr std::int64_t kLoad = 4;
constexpr std::int64_t kUnload = 5;

double median(std::vector<double> values) {
    const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
    std::nth_element(values.begin(), middle, values.end());
    return *middle;
}

double strippedKibibytes() {
    const TemporaryDirectory directory;
    const std::string stripped = directory.file("module.so");
    if (!runCommand({"strip", "-o", stripped, modulePath()}).status.clean()) {
        throw std::runtime_error("strip failed");
    }
    return static_cast<double>(std::filesystem::file_size(stripped)) / 1024;
}

double memoryKibibytes(const AgentOptions &options) {
    const Agent agent(options);
    Manager(agent.peer()).get(kModelName);
    return static_cast<double>(residentKilobytes(agent.pid()));
}

double setStatus(Manager &manager, std::int64_t status) {
    const auto start = std::chrono::steady_clock::now();
    if (!manager.set(kModuleStatus, Type::Integer, status).ok()) {
        throw std::runtime_error("the agent does not load or unload the module");
    }
    return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start).count();
}

} // namespace

int main() {
    try {
        const Camera camera("dome");
        const AgentOptions with = withModule(camera.directory());
        AgentOptions without = with;
        without.module.clear();

        std::vector<double> memoryWith;
        std::vector<double> memoryWithout;
        for (int i = 0; i < kAgents; ++i) {
            memoryWithout.push_back(memoryKibibytes(without));
            memoryWith.push_back(memoryKibibytes(with));
        }

        AgentOptions table = with;
        table.showModules = true;
        const Agent agent(table);
        Manager manager(agent.peer());
        std::vector<double> loads;
        std::vector<double> unloads;
        for (int i = 0; i < kLoads; ++i) {
            unloads.push_back(setStatus(manager, kUnload));
            loads.push_back(setStatus(manager, kLoad));
            if (!manager.get(kModelName).ok()) {
                throw std::runtime_error("the agent does not answer");
            }
        }

        std::printf("module, stripped               %8.1f KiB\n", strippedKibibytes());
        std::printf("agent without the module       %8.0f KiB resident\n", median(memoryWithout));
        std::printf("agent with the module          %8.0f KiB resident\n", median(memoryWith));
        std::printf("loading adds                   %8.0f KiB resident\n", median(memoryWith) - median(memoryWithout));
        std::printf("time to load, all services up  %8.2f ms\n", median(loads));
        std::printf("time to unload                 %8.2f ms\n", median(unloads));
        return 0;
    } catch (const std::exception &error) {
        std::fprintf(stderr, "bench-agent: %s\n", error.what());
        return 1;
    }
}
