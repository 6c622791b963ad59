// SPDX-License-Identifier: Apache-2.0
#include "control_command_handler.h"

#include <algorithm>
#include <limits>

#include "json_text.h"
#include "service_request_handler.h"
#include "wire.h"

namespace camera {

namespace {

/** Refusal of a command; what() is the reason for the client. */
class Refusal : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

bool contains(const std::vector<std::string> &names, const std::string &name) {
    return std::find(names.begin(), names.end(), name) != names.end();
}

std::string textOf(const nlohmann::json &command, const std::string &key) {
    const nlohmann::json &value = command.at(key);
    if (!value.is_string()) {
        throw Refusal(key + ": " + mismatch("a text", value));
    }
    return value.get<std::string>();
}

std::int64_t integerOf(const nlohmann::json &command, const std::string &key, std::int64_t lowest,
                       std::int64_t highest) {
    const std::optional<std::int64_t> number = integerIn(command.at(key), lowest, highest);
    if (!number) {
        throw Refusal(key + ": " + mismatch(integerExpected(lowest, highest), command.at(key)));
    }
    return *number;
}

/** Returns the number of affected calls: "always" or a number; 1 without the key. */
Times timesOf(const nlohmann::json &command) {
    constexpr std::int64_t kMostTimes = 1000000;
    const auto found = command.find("times");
    if (found == command.end()) {
        return 1;
    }
    if (*found == "always") {
        return std::nullopt;
    }
    const std::optional<std::int64_t> times = integerIn(*found, 1, kMostTimes);
    if (!times) {
        throw Refusal("times: " + mismatch(integerExpected(1, kMostTimes) + " or \"always\"", *found));
    }
    return static_cast<std::uint32_t>(*times);
}

/** Returns the flag of an optional key; false without the key. */
bool flagOf(const nlohmann::json &command, const std::string &key) {
    const nlohmann::json value = command.value(key, nlohmann::json(false));
    if (!value.is_boolean()) {
        throw Refusal(key + ": " + mismatch("true or false", value));
    }
    return value.get<bool>();
}

std::string oneOf(const nlohmann::json &command, const std::string &key, const std::vector<std::string> &names) {
    std::string name = textOf(command, key);
    if (!contains(names, name)) {
        throw Refusal("unknown " + key + " " + shown(name) + "; expected one of: " + listed(names));
    }
    return name;
}

void checkKeys(const nlohmann::json &command, const std::string &name, const std::vector<std::string> &required,
               const std::vector<std::string> &optional) {
    std::vector<std::string> known = {"command"};
    known.insert(known.end(), required.begin(), required.end());
    known.insert(known.end(), optional.begin(), optional.end());
    for (const std::string &key : required) {
        if (!command.contains(key)) {
            throw Refusal("command " + shown(name) + " needs the key " + shown(key));
        }
    }
    for (const auto &item : command.items()) {
        if (!contains(known, item.key())) {
            throw Refusal("unknown key " + shown(item.key()) + "; command " + shown(name) + " has: " + listed(known));
        }
    }
}

} // namespace

const std::vector<ControlCommandHandler::Command> &ControlCommandHandler::commands() {
    static const std::vector<Command> all = {
        {"state", {}, {}, &ControlCommandHandler::showState},
        {"set", {"target", "field", "value"}, {}, &ControlCommandHandler::set},
        {"down", {"service"}, {}, &ControlCommandHandler::takeDown},
        {"up", {"service"}, {}, &ControlCommandHandler::bringUp},
        {"fail", {"service", "operation", "status"}, {"times"}, &ControlCommandHandler::fail},
        {"delay", {"service", "operation", "milliseconds"}, {"times"}, &ControlCommandHandler::delay},
        {"clear", {}, {"service", "operation"}, &ControlCommandHandler::clear},
        {"follow", {}, {}, &ControlCommandHandler::follow},
        {"dryRun", {}, {"skipMissingServices"}, &ControlCommandHandler::startDryRun},
    };
    return all;
}

ControlReply ControlCommandHandler::execute(std::string_view line) {
    try {
        const nlohmann::json command = parseLine(line);
        const Command &known = findCommand(command);
        checkKeys(command, known.name, known.required, known.optional);
        Outcome outcome;
        (this->*known.action)(command, outcome);
        return {wire::encode(outcome.answer), outcome.mode, outcome.skipMissingServices};
    } catch (const Refusal &refusal) {
        return {wire::encode({{"ok", false}, {"error", refusal.what()}})};
    }
}

const ControlCommandHandler::Command &ControlCommandHandler::findCommand(const nlohmann::json &command) {
    std::vector<std::string> names;
    for (const Command &each : commands()) {
        names.push_back(each.name);
    }
    if (!command.is_object() || !command.contains("command")) {
        throw Refusal("expected an object {\"command\": NAME, ...} on one line, with one of the commands: " +
                      listed(names));
    }
    const std::string name = oneOf(command, "command", names);
    return *std::find_if(commands().begin(), commands().end(), [&](const Command &each) { return each.name == name; });
}

nlohmann::json ControlCommandHandler::state() {
    model_.advance();
    nlohmann::json services = nlohmann::json::object();
    for (const auto &[name, service] : model_.services()) {
        nlohmann::json targets = nlohmann::json::object();
        for (const std::string &target : model_.targetIds(name)) {
            targets[target] = model_.state(target);
        }
        services[name] = {{"up", services_.isUp(name)}, {"targets", std::move(targets)}};
    }
    return {{"camera", model_.name()},
            {"description", model_.description()},
            {"time", model_.events().seconds()},
            {"rebooting", model_.isRestarting()},
            {"services", std::move(services)},
            {"failures", faults_.failures().list("status")},
            {"delays", faults_.delays().list("milliseconds")}};
}

void ControlCommandHandler::showState(const nlohmann::json & /*command*/, Outcome &outcome) {
    outcome.answer["state"] = state();
}

void ControlCommandHandler::set(const nlohmann::json &command, Outcome & /*outcome*/) {
    const std::optional<Problem> problem =
        model_.set(textOf(command, "target"), textOf(command, "field"), command.at("value"));
    if (problem) {
        throw Refusal(toString(*problem));
    }
}

void ControlCommandHandler::takeDown(const nlohmann::json &command, Outcome & /*outcome*/) {
    services_.takeDown(service(command));
}

void ControlCommandHandler::bringUp(const nlohmann::json &command, Outcome & /*outcome*/) {
    const std::string name = service(command);
    if (const std::optional<std::string> error = services_.bringUp(name)) {
        throw Refusal("cannot bring up " + name + ": " + *error);
    }
}

void ControlCommandHandler::fail(const nlohmann::json &command, Outcome & /*outcome*/) {
    const std::string name = faultyService(command);
    const std::int64_t status = integerOf(command, "status", std::numeric_limits<std::int32_t>::min(),
                                          std::numeric_limits<std::int32_t>::max());
    if (status == wire::kSuccess) {
        throw Refusal("status: 0 is success; expected the status of a failure");
    }
    faults_.failures().set(name, operation(command, name), status, timesOf(command));
}

void ControlCommandHandler::delay(const nlohmann::json &command, Outcome & /*outcome*/) {
    const std::string name = faultyService(command);
    const std::int64_t milliseconds = integerOf(command, "milliseconds", 1, kLongestDelayMilliseconds);
    faults_.delays().set(name, operation(command, name), milliseconds, timesOf(command));
}

void ControlCommandHandler::clear(const nlohmann::json &command, Outcome & /*outcome*/) {
    std::optional<std::string> ofService;
    std::optional<std::string> ofOperation;
    if (command.contains("service")) {
        ofService = faultyService(command);
    }
    if (command.contains("operation")) {
        if (!ofService) {
            throw Refusal("command \"clear\" needs the key \"service\" with the key \"operation\"");
        }
        ofOperation = operation(command, *ofService);
    }
    faults_.failures().clear(ofService, ofOperation);
    faults_.delays().clear(ofService, ofOperation);
}

void ControlCommandHandler::follow(const nlohmann::json & /*command*/, Outcome &outcome) {
    outcome.mode = ControlMode::follow;
}

void ControlCommandHandler::startDryRun(const nlohmann::json &command, Outcome &outcome) {
    outcome.skipMissingServices = flagOf(command, "skipMissingServices");
    outcome.mode = ControlMode::dryRun;
}

std::string ControlCommandHandler::service(const nlohmann::json &command) const {
    return oneOf(command, "service", model_.serviceNames());
}

std::string ControlCommandHandler::faultyService(const nlohmann::json &command) const {
    std::vector<std::string> names = model_.serviceNames();
    names.emplace_back(wire::kDirectorySocket);
    return oneOf(command, "service", names);
}

std::string ControlCommandHandler::operation(const nlohmann::json &command, const std::string &service) const {
    std::vector<std::string> names = {kEveryOperation};
    if (const Service *found = model_.service(service)) {
        names.insert(names.end(), std::begin(kInitiatorRequests), std::end(kInitiatorRequests));
        for (const OperationSummary &each : found->operations()) {
            names.push_back(each.name);
        }
    } else {
        names.emplace_back(kDirectoryRequest);
    }
    return oneOf(command, "operation", names);
}

} // namespace camera
