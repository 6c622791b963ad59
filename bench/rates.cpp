// SPDX-License-Identifier: Apache-2.0
#include <stdexcept>

#include <unistd.h>

#include "agents.h"
#include "eventually.h"
#include "families.h"
#include "load_generator.h"
#include "objects.h"
#include "processors.h"
#include "statistics.h"
#include "table.h"

namespace bench {

namespace {

using harness::Manager;

// The same scalar in other ways, all in one agent.
constexpr const char *kSubagentScalar = "1.3.6.1.4.1.99999.98.1.0";
constexpr const char *kScriptSubtree = "1.3.6.1.4.1.99999.98.2";
constexpr const char *kScriptScalar = "1.3.6.1.4.1.99999.98.2.0";
constexpr const char *kExtendSubtree = "1.3.6.1.4.1.99999.98.3";
constexpr const char *kExtendScalar = "1.3.6.1.4.1.99999.98.3.3.1.1.6.115.99.97.108.97.114"; // "scalar"

/** An agent without the module that has its scalar from a subagent, from a script and from a command. */
class RivalAgent {
public:
    RivalAgent() : agent(startAgent(options())), subagent({{BENCH_SUBAGENT, socket()}, {{"MIBS", ""}}}) {
        tie(subagent.pid(), kAgentProcessor);
        Manager manager(agent->peer());
        for (const char *scalar : {kSubagentScalar, kScriptScalar, kExtendScalar}) {
            if (!support::eventually(std::chrono::seconds(10), [&] { return hasValue(manager.get(scalar)); })) {
                throw std::runtime_error(std::string("the agent has no ") + scalar);
            }
        }
    }

    const harness::Agent &operator*() const {
        return *agent;
    }

private:
    std::string socket() const {
        return directory.file("agentx");
    }

    harness::AgentOptions options() const {
        harness::AgentOptions result;
        result.configuration = {"master agentx", "agentXSocket " + socket(),
                                std::string("pass_persist .") + kScriptSubtree + " " + BENCH_SCRIPT,
                                // -1: the command runs for each request, as it must when its answer is to be new.
                                std::string("extend -cacheTime -1 .") + kExtendSubtree + " scalar /bin/echo 1"};
        return result;
    }

    static bool hasValue(const harness::Result &result) {
        return result.ok() && static_cast<unsigned>(result.single().type) < 0x80;
    }

    support::TemporaryDirectory directory;
    std::unique_ptr<harness::Agent> agent;
    support::Process subagent;
};

/** What is sent. */
struct Load {
    const char *what;
    Message message;
    const harness::Agent &agent;
    std::size_t reference = 0; ///< with which load it is compared
};

constexpr std::size_t kTenOfTheAgent = 1;

std::vector<Varbind> tenVariables(const std::vector<std::string> &identifiers) {
    std::vector<Varbind> result;
    for (std::size_t i = 0; i < 10; ++i) {
        result.push_back({identifiers[i % identifiers.size()]});
    }
    return result;
}

std::vector<Load> loads(const harness::Agent &own, const harness::Agent &rivals) {
    const auto everything = Manager(own.peer()).bulkWalk(".1.3.6.1.4.1").size();
    return {
        {"GET sysUpTime.0, the agent's own: the ceiling", {Pdu::Get, {{kSystemUpTime}}}, own},
        {"GET of 10 times sysUpTime.0", {Pdu::Get, tenVariables({kSystemUpTime})}, own},
        {"GET of 10 held objects, against 10 times sysUpTime.0",
         {Pdu::Get, tenVariables({kModelName, kModuleType, kTrueNorthOffset, kPositionPan})},
         own,
         kTenOfTheAgent},
        {"GET of a held number", {Pdu::Get, {{kModuleType}}}, own},
        {"GET of a held text", {Pdu::Get, {{kModelName}}}, own},
        {"GET of a held command", {Pdu::Get, {{kPositionPan}}}, own},
        {"GET with one service call", {Pdu::Get, {{kTemperature}}}, own},
        {"GET with one service call and a log line", {Pdu::Get, {{kPanLeftLimit}}}, own},
        {"SET of a held number, four phases", {Pdu::Set, {{kTrueNorthOffset, integer(65535)}}}, own},
        {"SET that moves an axis", {Pdu::Set, {{kPositionPan, octets("\x02\x7F\x50\x46")}}}, own},
        {"GETBULK of everything the module has",
         {Pdu::GetBulk, {{"1.3.6.1.4.1"}}, static_cast<std::int32_t>(everything)},
         own},
        {"GET, AgentX subagent", {Pdu::Get, {{kSubagentScalar}}}, rivals},
        {"SET, AgentX subagent", {Pdu::Set, {{kSubagentScalar, integer(1)}}}, rivals},
        {"GET, pass_persist script", {Pdu::Get, {{kScriptScalar}}}, rivals},
        {"GET, extend", {Pdu::Get, {{kExtendScalar}}}, rivals},
    };
}

/** Rounds of one load. */
struct Figures {
    std::vector<double> perSecond;
    std::vector<double> processor; ///< microseconds of the agent's processor for an answer
    std::vector<double> middle;    ///< microseconds
    std::vector<double> late;      ///< microseconds that one of a hundred answers exceeds
};

constexpr std::size_t kShift = 4;

/** Measures all loads in turn, round by round, so that what else the machine does meets all of them. */
std::vector<Figures> measure(const std::vector<Load> &loads, std::size_t window, const Effort &effort) {
    std::vector<Figures> figures(loads.size());
    for (int round = 0; round < effort.rounds; ++round) {
        for (std::size_t turn = 0; turn < loads.size(); ++turn) {
            // Each round begins with another load, so that none always follows the same one.
            const std::size_t i = (turn + static_cast<std::size_t>(round) * kShift) % loads.size();
            const double before = processorTime(loads[i].agent.pid());
            const Outcome outcome = LoadGenerator({loads[i].agent.port()}).run(loads[i].message, window, effort.slice);
            figures[i].perSecond.push_back(outcome.perSecond);
            figures[i].processor.push_back((processorTime(loads[i].agent.pid()) - before) /
                                           static_cast<double>(outcome.microseconds.size()));
            figures[i].middle.push_back(quantile(outcome.microseconds, 0.5));
            figures[i].late.push_back(quantile(outcome.microseconds, 0.99));
        }
    }
    return figures;
}

/** Which figure is shown, and how. */
struct Column {
    std::vector<double> Figures::*rounds;
    const char *unit;
    int decimals;
};

void print(const std::vector<Load> &loads, const std::vector<Figures> &figures, const char *family,
           const char *comparison, const Column &column) {
    printFamily(family, comparison);
    for (std::size_t i = 0; i < loads.size(); ++i) {
        const std::vector<double> &rounds = figures[i].*column.rounds;
        printRounds(loads[i].what, rounds, column.unit, column.decimals,
                    ratios(rounds, figures[loads[i].reference].*column.rounds));
    }
}

} // namespace

void measureRates(const Effort &effort) {
    const CameraAgent own("dome");
    const RivalAgent rivals;
    tie(::getpid(), kManagerProcessor);
    const std::vector<Load> all = loads(*own.agent, *rivals);

    // So many that an agent has enough to do while somebody else has the manager's processor for a moment.
    constexpr std::size_t kBusy = 64;
    const std::vector<Figures> busy = measure(all, kBusy, effort);
    const std::vector<Figures> alone = measure(all, 1, effort);
    print(all, busy, "Requests in a second, 64 under way", "of the ceiling", {&Figures::perSecond, "/s", 0});
    print(all, busy, "Time of the agent's thread for a request, 64 under way", "of the ceiling's",
          {&Figures::processor, "µs", 1});
    print(all, alone, "Time until the answer, one under way: median", "of the ceiling's", {&Figures::middle, "µs", 1});
    print(all, alone, "Time until the answer, one under way: 99th percentile", "of the ceiling's",
          {&Figures::late, "µs", 1});
}

} // namespace bench
