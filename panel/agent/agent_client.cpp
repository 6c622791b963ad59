// SPDX-License-Identifier: Apache-2.0
#include "agent_client.h"

#include <algorithm>
#include <array>
#include <utility>

#include <boost/asio/post.hpp>

#include "camera_requests.h"
#include "error_status.h"
#include "failure.h"
#include "octet_parts.h"
#include "shell_word.h"

namespace panel {

namespace asio = boost::asio;
using nlohmann::ordered_json;
using std::chrono::duration_cast;
using std::chrono::microseconds;

namespace {

using Clock = std::chrono::steady_clock;

constexpr std::chrono::seconds kStopTimeout{3};
constexpr std::chrono::seconds kCommandTimeout{15};
constexpr std::chrono::seconds kReadTimeout{4};

/** Stops are repeated, because a stop that arrives twice does no harm. */
constexpr int kStopAttempts = 4;

/** A request that takes longer than this waits for a camera that hangs. */
constexpr std::chrono::milliseconds kPatience{700};

snmp::SessionOptions session(const AgentAddress &address, const std::string &community, microseconds timeout) {
    snmp::SessionOptions options;
    options.host = address.agent;
    options.timeout = timeout;
    options.community = community;
    return options;
}

/** Outcome of an action in the thread of a lane. */
struct Outcome {
    std::string status = "noError";
    std::string message;
    std::string advice;
    long errorIndex = 0;
    std::vector<snmp::Varbind> varbinds; ///< of the response
    bool isAnswered = true;
};

Outcome failed(const std::string &status, const std::string &message, const std::string &advice, bool isAnswered) {
    Outcome outcome;
    outcome.status = status;
    outcome.message = message;
    outcome.advice = advice;
    outcome.isAnswered = isAnswered;
    return outcome;
}

/** Tests whether a response has the OIDs of its request. */
bool fits(const snmp::Response &response, const std::vector<snmp::Varbind> &sent) {
    return std::equal(
        response.varbinds.begin(), response.varbinds.end(), sent.begin(), sent.end(),
        [](const snmp::Varbind &answer, const snmp::Varbind &request) { return answer.oid == request.oid; });
}

Outcome exchange(snmp::Requester &agent, const ActionPlan &plan) {
    try {
        const snmp::Response response =
            agent.exchange(plan.operation, plan.varbinds, {plan.isStop ? kStopAttempts : 1, {}});
        Outcome outcome;
        outcome.errorIndex = response.errorIndex;
        if (response.error != 0) {
            const snmp::ErrorDescription error = snmp::describeError(response.error);
            outcome.status = error.name;
            outcome.message = "the agent answered " + error.name;
            outcome.advice = error.advice;
        } else if (!fits(response, plan.varbinds)) {
            return failed("badResponse", "the answer does not belong to the request", "", true);
        } else {
            outcome.varbinds = response.varbinds;
        }
        return outcome;
    } catch (const snmp::Failure &failure) {
        const bool isSilent = failure.cause() == snmp::Cause::NoAnswer;
        return failed(isSilent ? "noAnswer" : "badResponse", failure.what(), failure.advice(), !isSilent);
    }
}

void addOutcome(ordered_json &report, const Outcome &outcome) {
    report["ok"] = outcome.status == "noError";
    report["status"] = outcome.status;
    report["message"] = outcome.message;
    report["advice"] = outcome.advice;
    report["errorIndex"] = outcome.errorIndex;
}

ordered_json objectsOf(const std::vector<snmp::Varbind> &varbinds) {
    ordered_json objects = ordered_json::array();
    for (const snmp::Varbind &varbind : varbinds) {
        objects.push_back(varbindJson(varbind));
        objects.back()["parts"] = partsOf(ptz::instanceAt(varbind.oid), varbind);
    }
    return objects;
}

} // namespace

AgentClient::AgentClient(asio::io_context &io, AgentAddress address)
    : io_(io), address_(std::move(address)), stops_(session(address_, address_.writeCommunity, kStopTimeout)),
      commands_(session(address_, address_.writeCommunity, kCommandTimeout)),
      reads_(session(address_, address_.readCommunity, kReadTimeout)) {
    report_.since = std::chrono::system_clock::now();
}

const AgentAddress &AgentClient::address() const {
    return address_;
}

ordered_json AgentClient::outline(const ActionPlan &plan) const {
    ordered_json lines = ordered_json::object();
    const bool isGet = plan.operation == snmp::Operation::Get;
    lines[isGet ? "snmpget" : "snmpset"] = snmpCommandLine(plan, address_.agent, address_.writeCommunity);
    lines["ptzctl"] = ordered_json::array();
    for (const std::string &arguments : plan.ptzctl) {
        lines["ptzctl"].push_back("ptzctl -H " + address_.agent + " -c " + shellWord(address_.writeCommunity) + " " +
                                  arguments);
    }
    return {{"ok", true},
            {"action", plan.action},
            {"status", "noError"},
            {"message", ""},
            {"advice", ""},
            {"lines", lines},
            {"objects", objectsOf(plan.varbinds)}};
}

bool AgentClient::perform(const ActionPlan &plan, Done done) {
    if (plan.isStop) {
        // What waits is older than the stop, and would move the camera again.
        commands_.clear();
        if (commands_.busySince()) {
            // The action under way may reach the agent after the stop, so the stop follows it once more.
            commands_.add(
                {"", [plan](snmp::Requester &agent) { exchange(agent, plan); }, [](const auto &) {}, nullptr});
        }
    }
    const std::weak_ptr<AgentClient> weak = weak_from_this();
    const auto finish = [&io = io_, weak, done = std::move(done)](const ordered_json &report, const Outcome &outcome) {
        asio::post(io, [weak, done, report, outcome] {
            const std::shared_ptr<AgentClient> self = weak.lock();
            if (self && outcome.status != "superseded") {
                self->noteAnswer(outcome.isAnswered, outcome.message);
            }
            done(report);
        });
    };
    const auto end = [outlined = outline(plan), finish](const Outcome &outcome) {
        ordered_json report = outlined;
        addOutcome(report, outcome);
        finish(report, outcome);
    };
    RequestLane::Job job;
    job.key = plan.key;
    job.run = [plan, outlined = outline(plan), finish, added = Clock::now()](snmp::Requester &agent) {
        const Clock::time_point start = Clock::now();
        const Outcome outcome = exchange(agent, plan);
        ordered_json report = outlined;
        addOutcome(report, outcome);
        if (plan.operation == snmp::Operation::Get && !outcome.varbinds.empty()) {
            report["objects"] = objectsOf(outcome.varbinds);
        }
        report["queuedUs"] = duration_cast<microseconds>(start - added).count();
        report["durationUs"] = duration_cast<microseconds>(Clock::now() - start).count();
        finish(report, outcome);
    };
    job.fail = [end](const std::string &reason) { end(failed("noAnswer", reason, "", false)); };
    job.drop = [end] { end(failed("superseded", "a later action has replaced it", "", true)); };
    return (plan.isStop ? stops_ : commands_).add(std::move(job));
}

bool AgentClient::read(const std::vector<ptz::Instance> &instances, ReadDone done) {
    return addRead([instances](snmp::Requester &agent) { return ptz::readAll(agent, instances); }, std::move(done));
}

bool AgentClient::readRows(const std::string &column, ReadDone done) {
    return addRead([column](snmp::Requester &agent) { return ptz::readColumn(agent, column); }, std::move(done));
}

bool AgentClient::addRead(Reader reader, ReadDone done) {
    if (reads_.waiting() > 0 || reads_.busySince()) {
        return false;
    }
    const std::weak_ptr<AgentClient> weak = weak_from_this();
    const auto finish = [&io = io_, weak, done = std::move(done)](std::vector<ptz::Reading> readings, bool isAnswered,
                                                                  const std::string &reason, microseconds duration) {
        asio::post(io, [weak, done, readings = std::move(readings), isAnswered, reason, duration] {
            if (const std::shared_ptr<AgentClient> self = weak.lock()) {
                self->noteAnswer(isAnswered, reason);
                done(readings, duration);
            }
        });
    };
    RequestLane::Job job;
    job.run = [reader = std::move(reader), finish](snmp::Requester &agent) {
        const Clock::time_point start = Clock::now();
        const auto duration = [&] { return duration_cast<microseconds>(Clock::now() - start); };
        try {
            std::vector<ptz::Reading> readings = reader(agent);
            finish(std::move(readings), true, "", duration());
        } catch (const snmp::Failure &failure) {
            finish({}, failure.cause() != snmp::Cause::NoAnswer, failure.what(), duration());
        }
    };
    job.fail = [finish](const std::string &reason) { finish({}, false, reason, microseconds(0)); };
    return reads_.add(std::move(job));
}

AgentReport AgentClient::report() {
    std::chrono::milliseconds busy{0};
    for (const RequestLane *const lane : {&stops_, &commands_, &reads_}) {
        if (const auto since = lane->busySince()) {
            busy = std::max(busy, duration_cast<std::chrono::milliseconds>(Clock::now() - *since));
        }
    }
    if (busy > kPatience && report_.status != "silent") {
        enter("waiting", "the agent has not answered yet; a service of the camera may hang");
    }
    report_.busy = busy;
    report_.queue = stops_.waiting() + commands_.waiting();
    return report_;
}

void AgentClient::enter(const std::string &status, const std::string &message) {
    report_.message = message;
    if (report_.status != status) {
        report_.status = status;
        report_.since = std::chrono::system_clock::now();
    }
}

void AgentClient::noteAnswer(bool hasAnswer, const std::string &message) {
    if (hasAnswer) {
        report_.answered = Clock::now();
        enter("up", "");
    } else {
        enter("silent", message);
    }
}

bool AgentClient::isOwnReading(const std::string &source) const {
    const std::size_t colon = source.rfind(':');
    const std::uint16_t port = reads_.localPort();
    return port != 0 && colon != std::string::npos && source.substr(colon + 1) == std::to_string(port);
}

} // namespace panel
