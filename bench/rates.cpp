// SPDX-License-Identifier: Apache-2.0
#include <stdexcept>

#include <unistd.h>

#include "agents.h"
#include "eventually.h"
#include "load_generator.h"
#include "object_oids.h"
#include "processors.h"
#include "report_drain.h"
#include "settings.h"
#include "statistics.h"
#include "suites.h"
#include "table.h"

namespace bench {

namespace {

using harness::Manager;

// Alternatives to a module, each with one scalar, all in one agent.
constexpr const char *kSubagentScalar = ".1.3.6.1.4.1.99999.98.1.0";
constexpr const char *kScriptSubtree = ".1.3.6.1.4.1.99999.98.2";
constexpr const char *kScriptScalar = ".1.3.6.1.4.1.99999.98.2.0";
constexpr const char *kExtendSubtree = ".1.3.6.1.4.1.99999.98.3";
constexpr const char *kExtendScalar = ".1.3.6.1.4.1.99999.98.3.3.1.1.6.115.99.97.108.97.114"; // "scalar"

/** Agent without the module. Serves one scalar each from a subagent, a script and a command. */
class BaselineAgent {
public:
    BaselineAgent() : agent_(startAgent(options())), subagent_({{BENCH_SUBAGENT, socket()}, {{"MIBS", ""}}}) {
        pinToProcessor(subagent_.pid(), kAgentProcessor);
        Manager manager(agent_->peer());
        for (const char *scalar : {kSubagentScalar, kScriptScalar, kExtendScalar}) {
            if (!support::eventually(std::chrono::seconds(10), [&] { return hasValue(manager.get(scalar)); })) {
                throw std::runtime_error(std::string("the agent does not serve ") + scalar);
            }
        }
    }

    const harness::Agent &operator*() const {
        return *agent_;
    }

private:
    std::string socket() const {
        return directory_.file("agentx");
    }

    harness::AgentOptions options() const {
        harness::AgentOptions result;
        result.configuration = {"master agentx", "agentXSocket " + socket(),
                                std::string("pass_persist ") + kScriptSubtree + " " + BENCH_SCRIPT,
                                // -1 disables the cache, so that every response is current.
                                std::string("extend -cacheTime -1 ") + kExtendSubtree + " scalar /bin/echo 1"};
        return result;
    }

    static bool hasValue(const harness::Result &result) {
        return result.ok() && static_cast<unsigned>(result.single().type) < 0x80;
    }

    support::TemporaryDirectory directory_;
    std::unique_ptr<harness::Agent> agent_;
    support::Process subagent_;
};

/** Agent with the module, and with the one that reports each request to a receiver. */
class ObservedAgent {
public:
    ObservedAgent() : camera_("dome"), drain_(camera_.directory()), agent_(startAgent(options())) {}

    const harness::Agent &operator*() const {
        return *agent_;
    }

private:
    harness::AgentOptions options() const {
        harness::AgentOptions result = agentOptions(camera_.directory());
        result.configuration = {"dlmod quarnsnmp_watch " + harness::watchModulePath()};
        return result;
    }

    support::Camera camera_;
    ReportDrain drain_;
    std::unique_ptr<harness::Agent> agent_;
};

/** A request to send. */
struct Load {
    const char *what;
    Message message;
    const harness::Agent &agent;
    std::size_t reference = 0; ///< index of the load to compare with
};

constexpr std::size_t kTenOfAgent = 1;

/** Returns a GET with ten varbinds, in which the OIDs take turns. */
Message tenVarbinds(const std::vector<std::string> &oids) {
    std::vector<std::string> ten;
    for (std::size_t i = 0; i < 10; ++i) {
        ten.push_back(oids[i % oids.size()]);
    }
    return getRequest(ten);
}

std::vector<Load> loads(const harness::Agent &own, const harness::Agent &observed, const harness::Agent &baseline) {
    const std::size_t everything = Manager(own.peer()).bulkWalk(".1.3.6.1.4.1").size();
    return {
        {"GET sysUpTime.0, of the agent itself: the ceiling", getRequest({oids::sysUpTime}), own},
        {"GET of 10 times sysUpTime.0", tenVarbinds({oids::sysUpTime}), own},
        {"GET of 10 cached objects, relative to 10 times sysUpTime.0",
         tenVarbinds({oids::modelName, oids::moduleType, oids::rangeTrueNorthOffset, oids::positionPan}), own,
         kTenOfAgent},
        {"GET of a cached number", getRequest({oids::moduleType}), own},
        {"GET of a cached text", getRequest({oids::modelName}), own},
        {"GET of a cached command", getRequest({oids::positionPan}), own},
        {"GET with one service call", getRequest({oids::temperature}), own},
        {"GET with one service call and a log line", getRequest({oids::rangePanLeftLimit}), own},
        {"SET of a cached number, four phases", setRequest(snmp::integer(oids::rangeTrueNorthOffset, 65535)), own},
        {"SET that moves an axis", setRequest(snmp::octetString(oids::positionPan, "\x02\x7F\x50\x46")), own},
        {"GETBULK of all objects of the module", getBulkRequest(".1.3.6.1.4.1", everything), own},
        {"GET of a cached number, reported to the panel", getRequest({oids::moduleType}), observed},
        {"SET of a cached number, reported to the panel", setRequest(snmp::integer(oids::rangeTrueNorthOffset, 65535)),
         observed},
        {"GET, AgentX subagent", getRequest({kSubagentScalar}), baseline},
        {"SET, AgentX subagent", setRequest(snmp::integer(kSubagentScalar, 1)), baseline},
        {"GET, pass_persist script", getRequest({kScriptScalar}), baseline},
        {"GET, extend", getRequest({kExtendScalar}), baseline},
    };
}

/** Results of one load, with one value per round. */
struct Figures {
    std::vector<double> perSecond;
    std::vector<double> processor;    ///< processor time of the agent per response, in microseconds
    std::vector<double> median;       ///< response time in microseconds
    std::vector<double> percentile99; ///< response time in microseconds
};

constexpr std::size_t kShift = 4;

/** Measures all loads in each round, so that other activity on the machine affects all of them. */
std::vector<Figures> measure(const std::vector<Load> &loads, std::size_t window, const Effort &effort) {
    std::vector<Figures> figures(loads.size());
    for (int round = 0; round < effort.rounds; ++round) {
        for (std::size_t turn = 0; turn < loads.size(); ++turn) {
            // Each round starts with another load, so that the order of the loads varies.
            const std::size_t i = (turn + static_cast<std::size_t>(round) * kShift) % loads.size();
            const double before = processorTime(loads[i].agent.pid());
            const Outcome outcome = LoadGenerator({loads[i].agent.port()}).run(loads[i].message, window, effort.slice);
            figures[i].perSecond.push_back(outcome.perSecond);
            figures[i].processor.push_back((processorTime(loads[i].agent.pid()) - before) /
                                           static_cast<double>(outcome.microseconds.size()));
            figures[i].median.push_back(quantile(outcome.microseconds, 0.5));
            figures[i].percentile99.push_back(quantile(outcome.microseconds, 0.99));
        }
    }
    return figures;
}

/** Selection and format of a figure. */
struct Column {
    std::vector<double> Figures::*rounds;
    const char *unit;
    int decimals;
};

void print(const std::vector<Load> &loads, const std::vector<Figures> &figures, const char *heading,
           const char *comparison, const Column &column) {
    printHeading(heading, comparison);
    for (std::size_t i = 0; i < loads.size(); ++i) {
        const std::vector<double> &rounds = figures[i].*column.rounds;
        printRounds(loads[i].what, rounds, column.unit, column.decimals,
                    ratios(rounds, figures[loads[i].reference].*column.rounds));
    }
}

} // namespace

void measureRates(const Effort &effort) {
    const CameraAgent own("dome");
    const ObservedAgent observed;
    const BaselineAgent baseline;
    pinToProcessor(::getpid(), kManagerProcessor);
    const std::vector<Load> all = loads(*own.agent, *observed, *baseline);

    // Enough requests to keep an agent busy while another process briefly takes the manager's processor.
    constexpr std::size_t kBusy = 64;
    const std::vector<Figures> busy = measure(all, kBusy, effort);
    const std::vector<Figures> alone = measure(all, 1, effort);
    print(all, busy, "Requests per second, 64 outstanding", "relative to the ceiling", {&Figures::perSecond, "/s", 0});
    print(all, busy, "Time of the agent's thread per request, 64 outstanding", "relative to the ceiling",
          {&Figures::processor, "µs", 1});
    print(all, alone, "Response time, 1 outstanding: median", "relative to the ceiling", {&Figures::median, "µs", 1});
    print(all, alone, "Response time, 1 outstanding: 99th percentile", "relative to the ceiling",
          {&Figures::percentile99, "µs", 1});
}

} // namespace bench
