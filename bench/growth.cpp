// SPDX-License-Identifier: Apache-2.0
#include <array>
#include <cstddef>
#include <memory>

#include <unistd.h>

#include "agents.h"
#include "families.h"
#include "load_generator.h"
#include "objects.h"
#include "process_information.h"
#include "processors.h"
#include "statistics.h"
#include "table.h"

namespace bench {

namespace {

constexpr std::size_t kUnderWay = 16;

/** Microseconds of processor time that agents took for each request while they always had some to do. */
double microseconds(const std::vector<const harness::Agent *> &agents, const Message &message, const Effort &effort) {
    std::vector<std::uint16_t> ports;
    double before = 0;
    for (const harness::Agent *agent : agents) {
        ports.push_back(agent->port());
        before += processorTime(agent->pid());
    }
    const Outcome outcome = LoadGenerator(ports).run(message, kUnderWay, effort.slice);
    double after = 0;
    for (const harness::Agent *agent : agents) {
        after += processorTime(agent->pid());
    }
    return (after - before) / static_cast<double>(outcome.microseconds.size());
}

/** A number with its noun, such as "8 rows". */
std::string counted(std::size_t number, const std::string &noun) {
    return std::to_string(number) + " " + noun + (number == 1 ? "" : "s");
}

/** One size of what grows, with a value for each round. */
struct Size {
    std::string what;
    std::vector<double> rounds = {};
};

/** Measures the sizes in turn, round by round, and compares them with the first. @param measure gets a size's number */
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
 * An agent whose core library has nothing to say and names so many targets: more than a camera process has, and what is
 * left is what agent and module do.
 */
std::unique_ptr<harness::Agent> startAgentWithTargets(std::size_t targets) {
    harness::AgentOptions options = agentOptions("");
    options.environment["LD_LIBRARY_PATH"] = BENCH_SILENT_DIRECTORY;
    options.configuration = {"maxGetbulkResponses " + std::to_string(targets)}; // 100 otherwise
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
        whole.push_back({text + "GETBULK of a state column, each row"});
        memory.push_back({text + "memory of the agent"});
    }
    const auto lastOf = [&](const char *column, std::size_t i) {
        const Message message(Pdu::Get, {{std::string(column) + "." + std::to_string(kRows.at(i))}});
        return microseconds({agents[i].get()}, message, effort);
    };
    measureSizes(lastAlarm, effort, "µs", [&](std::size_t i) { return lastOf(kAlarmState, i); });
    measureSizes(lastRelay, effort, "µs", [&](std::size_t i) { return lastOf(kRelayState, i); });
    measureSizes(whole, effort, "µs", [&](std::size_t i) {
        const Message message(Pdu::GetBulk, {{kAlarmState}}, static_cast<std::int32_t>(kRows.at(i)));
        return microseconds({agents[i].get()}, message, effort) / static_cast<double>(kRows.at(i));
    });
    measureSizes(memory, effort, "KiB",
                 [&](std::size_t i) { return static_cast<double>(support::residentKilobytes(agents[i]->pid())); });
}

void measureVariables(const Effort &effort) {
    constexpr std::array<std::size_t, 4> kVariables = {1, 10, 50, 100};
    const std::unique_ptr<harness::Agent> agent = startAgentWithTargets(1);
    std::vector<Size> sizes;
    sizes.reserve(kVariables.size());
    for (const std::size_t count : kVariables) {
        sizes.push_back({counted(count, "variable") + " in a GET, each"});
    }
    measureSizes(sizes, effort, "µs", [&](std::size_t i) {
        const std::vector<Varbind> varbinds(kVariables.at(i), {kModuleType});
        return microseconds({agent.get()}, Message(Pdu::Get, varbinds), effort) / static_cast<double>(kVariables.at(i));
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
    std::vector<Size> held;
    std::vector<Size> called;
    for (const std::size_t count : kAgents) {
        const std::string text = counted(count, "agent") + " with a camera each: ";
        held.push_back({text + "GET of a held number"});
        called.push_back({text + "GET with one service call"});
    }
    const auto spread = [&](const char *identifier, std::size_t i) {
        const auto end = agents.begin() + static_cast<std::ptrdiff_t>(kAgents.at(i));
        const std::vector<const harness::Agent *> some(agents.begin(), end);
        return microseconds(some, Message(Pdu::Get, {{identifier}}), effort);
    };
    measureSizes(held, effort, "µs", [&](std::size_t i) { return spread(kModuleType, i); });
    measureSizes(called, effort, "µs", [&](std::size_t i) { return spread(kTemperature, i); });
}

} // namespace

void measureGrowth(const Effort &effort) {
    tie(::getpid(), kManagerProcessor);
    printFamily("Growth: time of the agent's processor for a request", "of the first of its kind");
    measureRows(effort);
    measureVariables(effort);
    measureAgents(effort);
}

} // namespace bench
