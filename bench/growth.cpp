// SPDX-License-Identifier: Apache-2.0
#include <array>
#include <cstddef>
#include <memory>

#include <unistd.h>

#include "agents.h"
#include "load_generator.h"
#include "object_oids.h"
#include "process_information.h"
#include "processors.h"
#include "statistics.h"
#include "suites.h"
#include "table.h"

namespace bench {

namespace {

constexpr std::size_t kWindow = 16;

/** Returns the agents' processor time per request under constant load, in microseconds. */
double timePerRequest(const std::vector<const harness::Agent *> &agents, const Message &message, const Effort &effort) {
    std::vector<std::uint16_t> ports;
    double before = 0;
    for (const harness::Agent *agent : agents) {
        ports.push_back(agent->port());
        before += processorTime(agent->pid());
    }
    const Outcome outcome = LoadGenerator(ports).run(message, kWindow, effort.slice);
    double after = 0;
    for (const harness::Agent *agent : agents) {
        after += processorTime(agent->pid());
    }
    return (after - before) / static_cast<double>(outcome.microseconds.size());
}

/** Formats a number with its noun, such as "8 rows". */
std::string counted(std::size_t number, const std::string &noun) {
    return std::to_string(number) + " " + noun + (number == 1 ? "" : "s");
}

/** One size of a growing quantity, with a value for each round. */
struct Size {
    std::string what;
    std::vector<double> rounds = {};
};

/** Measures all sizes in each round and compares them with the first one. @param measure  called with an index */
template <typename Measure>
void measureSizes(std::vector<Size> sizes, const Effort &effort, const char *unit, const Measure &measure) {
    for (int round = 0; round < effort.rounds; ++round) {
        for (std::size_t i = 0; i < sizes.size(); ++i) {
            sizes[i].rounds.push_back(measure(i));
        }
    }
    for (const Size &size : sizes) {
        printRounds(size.what, size.rounds, unit, 1, ratios(size.rounds, sizes.front().rounds));
    }
}

/**
 * Starts an agent with the silent core library. That library can have more targets than a camera process, and leaves
 * only the time of agent and module.
 */
std::unique_ptr<harness::Agent> startAgentWithTargets(std::size_t targets) {
    harness::AgentOptions options = agentOptions("");
    options.environment["LD_LIBRARY_PATH"] = BENCH_SILENT_DIRECTORY;
    options.configuration = {"maxGetbulkResponses " + std::to_string(targets)}; // the default is 100
    options.environment["QUARNSNMP_SILENT_TARGETS"] = std::to_string(targets);
    return startAgent(options);
}

void measureRows(const Effort &effort) {
    constexpr std::array<std::size_t, 4> kRows = {1, 8, 64, 256};
    std::vector<std::unique_ptr<harness::Agent>> agents;
    std::vector<Size> lastAlarm;
    std::vector<Size> lastRelay;
    std::vector<Size> whole;
    std::vector<Size> memory;
    for (const std::size_t rows : kRows) {
        agents.push_back(startAgentWithTargets(rows));
        const std::string text = counted(rows, "row") + ": ";
        lastAlarm.push_back({text + "GET of the last alarm input's state"});
        lastRelay.push_back({text + "GET of the last relay's state"});
        whole.push_back({text + "GETBULK of a state column, per row"});
        memory.push_back({text + "memory of the agent"});
    }
    const auto lastOf = [&](const char *column, std::size_t i) {
        const Message message = getRequest({oids::row(column, static_cast<unsigned int>(kRows.at(i)))});
        return timePerRequest({agents[i].get()}, message, effort);
    };
    measureSizes(lastAlarm, effort, "µs", [&](std::size_t i) { return lastOf(oids::alarmStatesState, i); });
    measureSizes(lastRelay, effort, "µs", [&](std::size_t i) { return lastOf(oids::relayStatesState, i); });
    measureSizes(whole, effort, "µs", [&](std::size_t i) {
        const Message message = getBulkRequest(oids::alarmStatesState, kRows.at(i));
        return timePerRequest({agents[i].get()}, message, effort) / static_cast<double>(kRows.at(i));
    });
    measureSizes(memory, effort, "KiB",
                 [&](std::size_t i) { return static_cast<double>(support::residentKilobytes(agents[i]->pid())); });
}

void measureVarbinds(const Effort &effort) {
    constexpr std::array<std::size_t, 4> kVarbinds = {1, 10, 50, 100};
    const std::unique_ptr<harness::Agent> agent = startAgentWithTargets(1);
    std::vector<Size> sizes;
    sizes.reserve(kVarbinds.size());
    for (const std::size_t count : kVarbinds) {
        sizes.push_back({counted(count, "varbind") + " in a GET, per varbind"});
    }
    measureSizes(sizes, effort, "µs", [&](std::size_t i) {
        const Message message = getRequest(std::vector<std::string>(kVarbinds.at(i), oids::moduleType));
        return timePerRequest({agent.get()}, message, effort) / static_cast<double>(kVarbinds.at(i));
    });
}

void measureAgents(const Effort &effort) {
    constexpr std::array<std::size_t, 3> kAgents = {1, 4, 16};
    std::vector<std::unique_ptr<CameraAgent>> pairs;
    std::vector<const harness::Agent *> agents;
    for (std::size_t i = 0; i < kAgents.back(); ++i) {
        pairs.push_back(std::make_unique<CameraAgent>("dome"));
        agents.push_back(pairs.back()->agent.get());
    }
    std::vector<Size> cached;
    std::vector<Size> called;
    for (const std::size_t count : kAgents) {
        const std::string text = counted(count, "agent") + " with a camera each: ";
        cached.push_back({text + "GET of a cached number"});
        called.push_back({text + "GET with one service call"});
    }
    const auto timeOf = [&](const char *oid, std::size_t i) {
        const auto end = agents.begin() + static_cast<std::ptrdiff_t>(kAgents.at(i));
        const std::vector<const harness::Agent *> some(agents.begin(), end);
        return timePerRequest(some, getRequest({oid}), effort);
    };
    measureSizes(cached, effort, "µs", [&](std::size_t i) { return timeOf(oids::moduleType, i); });
    measureSizes(called, effort, "µs", [&](std::size_t i) { return timeOf(oids::temperature, i); });
}

} // namespace

void measureGrowth(const Effort &effort) {
    pinToProcessor(::getpid(), kManagerProcessor);
    printHeading("Growth: processor time of the agent per request", "relative to the first of its kind");
    measureRows(effort);
    measureVarbinds(effort);
    measureAgents(effort);
}

} // namespace bench
