// SPDX-License-Identifier: Apache-2.0
#include "control_command_line.h"

#include "wire.h"

namespace camera {

namespace {

using nlohmann::json;

/** Parses VALUE of `set` as JSON. Other input is a text, so texts need no second pair of quotes. */
json valueOf(const std::string &text) {
    json value = wire::decode(text);
    return value.is_discarded() ? json(text) : value;
}

json timesOf(const ControlArguments &arguments) {
    return arguments.always ? json("always") : json(arguments.times);
}

void addTimes(CLI::App *command, ControlArguments &arguments) {
    CLI::Option *times =
        command->add_option("--times", arguments.times, "Number of affected calls; default: 1")->type_name("N");
    command->add_flag("--always", arguments.always, "Affect all calls until cleared")->excludes(times);
}

void addFaultOf(CLI::App *command, ControlArguments &arguments) {
    command->add_option("SERVICE", arguments.service, "Name of a service, or \"directory\"")->required();
    command->add_option("OPERATION", arguments.operation, "Name of an operation; * for all")->required();
}

void addQueries(CLI::App &app, ControlRequest &request) {
    app.add_subcommand("state", "Print the state of the whole camera")->callback([&request] {
        request.command = {{"command", "state"}};
    });
    app.add_subcommand("follow", "Print events continuously until interrupted")->callback([&request] {
        request.command = {{"command", "follow"}};
    });
}

void addSet(CLI::App &app, ControlRequest &request, ControlArguments &arguments) {
    CLI::App *set = app.add_subcommand("set", "Set a field of a target");
    set->add_option("TARGET", arguments.target, "Target, such as alarm/1")->required();
    set->add_option("FIELD", arguments.field, "Field, such as state or pan.position")->required();
    set->add_option("VALUE", arguments.value, "JSON value; other input is a text")->required();
    set->callback([&request, &arguments] {
        request.command = {{"command", "set"},
                           {"target", arguments.target},
                           {"field", arguments.field},
                           {"value", valueOf(arguments.value)}};
    });
}

void addSwitches(CLI::App &app, ControlRequest &request, ControlArguments &arguments) {
    for (const char *name : {"down", "up"}) {
        CLI::App *command = app.add_subcommand(
            name, std::string(name) == "down" ? "Stop a service and close its connections" : "Start a stopped service");
        command->add_option("SERVICE", arguments.service, "Name of a service")->required();
        command->callback([&request, &arguments, name] {
            request.command = {{"command", name}, {"service", arguments.service}};
        });
    }
}

void addFaults(CLI::App &app, ControlRequest &request, ControlArguments &arguments) {
    CLI::App *fail = app.add_subcommand("fail", "Make an operation fail");
    addFaultOf(fail, arguments);
    fail->add_option("STATUS", arguments.number, "Status of the answer; not 0")->required();
    addTimes(fail, arguments);
    fail->callback([&request, &arguments] {
        request.command = {{"command", "fail"},
                           {"service", arguments.service},
                           {"operation", arguments.operation},
                           {"status", arguments.number},
                           {"times", timesOf(arguments)}};
    });

    CLI::App *delay = app.add_subcommand("delay", "Delay the answers of an operation");
    addFaultOf(delay, arguments);
    delay->add_option("MILLISECONDS", arguments.number, "Delay of each answer")->required();
    addTimes(delay, arguments);
    delay->callback([&request, &arguments] {
        request.command = {{"command", "delay"},
                           {"service", arguments.service},
                           {"operation", arguments.operation},
                           {"milliseconds", arguments.number},
                           {"times", timesOf(arguments)}};
    });
}

void addClear(CLI::App &app, ControlRequest &request, ControlArguments &arguments) {
    CLI::App *clear = app.add_subcommand("clear", "Remove failures and delays");
    clear->add_option("SERVICE", arguments.service, "Only those of a service, or of \"directory\"");
    clear->add_option("OPERATION", arguments.operation, "Only those of this operation, or of *");
    clear->callback([&request, &arguments] {
        request.command = {{"command", "clear"}};
        if (!arguments.service.empty()) {
            request.command["service"] = arguments.service;
        }
        if (!arguments.operation.empty()) {
            request.command["operation"] = arguments.operation;
        }
    });
}

void addPlay(CLI::App &app, ControlRequest &request) {
    CLI::App *play = app.add_subcommand("play", "Play a scenario: timed control commands");
    play->add_option("SCENARIO", request.scenario, "Name of a shipped scenario, or path of a scenario file")
        ->type_name("NAME|FILE")
        ->required();
    play->add_option("--speed", request.speed, "Seconds of the scenario per second")
        ->type_name("FACTOR")
        ->capture_default_str();
    play->callback([&request] {
        constexpr double kSlowest = 1e-3;
        constexpr double kFastest = 1e6;
        if (!(request.speed >= kSlowest && request.speed <= kFastest)) {
            throw CLI::ValidationError("--speed", "expected a number from 0.001 to 1000000");
        }
    });
}

} // namespace

void addControlCommands(CLI::App &app, ControlRequest &request, ControlArguments &arguments) {
    app.require_subcommand(1);
    addQueries(app, request);
    addSet(app, request, arguments);
    addSwitches(app, request, arguments);
    addFaults(app, request, arguments);
    addClear(app, request, arguments);
    addPlay(app, request);
}

} // namespace camera
