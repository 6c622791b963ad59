// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Control program of the simulated camera.
 */
#include <chrono>
#include <exception>
#include <iostream>
#include <optional>

#include <CLI/CLI.hpp>

#include "command_text.h"
#include "control_client.h"
#include "scenario_runner.h"
#include "shipped_files.h"
#include "visible_text.h"
#include "wire.h"

namespace {

using nlohmann::json;

constexpr int kRefused = 1;
constexpr int kUsageError = 2;

/** Request of the command line. */
struct Request {
    std::string directory = wire::socketDirectory();
    json command = json::object();
    std::string scenario; ///< name or path of a scenario; empty for a single command
    double speed = 1.0;   ///< in seconds of the scenario per second
};

/** Storage of a subcommand's arguments during the parsing. */
struct Arguments {
    std::string service;
    std::string operation;
    std::string target;
    std::string field;
    std::string value;
    std::int64_t number = 0;
    std::int64_t times = 1;
    bool always = false;
};

/** Parses VALUE of `set` as JSON. Other input is a text, so texts need no second pair of quotes. */
json valueOf(const std::string &text) {
    json value = wire::decode(text);
    return value.is_discarded() ? json(text) : value;
}

json timesOf(const Arguments &arguments) {
    return arguments.always ? json("always") : json(arguments.times);
}

void addTimes(CLI::App *command, Arguments &arguments) {
    CLI::Option *times =
        command->add_option("--times", arguments.times, "Number of affected calls; default: 1")->type_name("N");
    command->add_flag("--always", arguments.always, "Affect all calls until cleared")->excludes(times);
}

void addFaultOf(CLI::App *command, Arguments &arguments) {
    command->add_option("SERVICE", arguments.service, "Name of a service, or \"directory\"")->required();
    command->add_option("OPERATION", arguments.operation, "Name of an operation; * for all")->required();
}

void addQueries(CLI::App &app, Request &request) {
    app.add_subcommand("state", "Print the state of the whole camera")->callback([&request] {
        request.command = {{"command", "state"}};
    });
    app.add_subcommand("follow", "Print events continuously until interrupted")->callback([&request] {
        request.command = {{"command", "follow"}};
    });
}

void addSet(CLI::App &app, Request &request, Arguments &arguments) {
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

void addSwitches(CLI::App &app, Request &request, Arguments &arguments) {
    for (const char *name : {"down", "up"}) {
        CLI::App *command = app.add_subcommand(
            name, std::string(name) == "down" ? "Stop a service and close its connections" : "Start a stopped service");
        command->add_option("SERVICE", arguments.service, "Name of a service")->required();
        command->callback([&request, &arguments, name] {
            request.command = {{"command", name}, {"service", arguments.service}};
        });
    }
}

void addFaults(CLI::App &app, Request &request, Arguments &arguments) {
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

void addClear(CLI::App &app, Request &request, Arguments &arguments) {
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

void addPlay(CLI::App &app, Request &request) {
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

int follow(camera::ControlClient &client, const std::string &directory) {
    while (const std::optional<std::string> line = client.nextLine()) {
        std::cout << camera::visible(*line) << std::endl;
    }
    throw camera::ControlError("the camera in " + directory + " has ended");
}

json executeOrThrow(camera::ControlClient &client, const json &command) {
    json answer = client.execute(command);
    if (const std::optional<std::string> refusal = camera::refusalIn(answer)) {
        throw camera::ControlError(*refusal);
    }
    return answer;
}

/** Checks a scenario with a dry run, which lasts as long as its own connection. */
void checkScenario(camera::Scenario &scenario, const std::string &directory) {
    camera::ControlClient client(directory);
    camera::dryRun(scenario, [&](const json &command) { return client.execute(command); });
}

int playScenario(const Request &request) {
    using Clock = std::chrono::steady_clock;
    camera::Scenario scenario = camera::readScenarioFile(camera::findShippedFile("scenario", request.scenario));
    checkScenario(scenario, request.directory);
    camera::ControlClient client(request.directory);
    std::cout << camera::visible(scenario.name + ": " + scenario.description) << std::endl;
    const Clock::time_point start = Clock::now();
    const camera::ScenarioRunner runner = {
        [&](double seconds) {
            client.waitUntil(start + std::chrono::ceil<Clock::duration>(std::chrono::duration<double>(seconds)));
        },
        [&](const json &command) { return client.execute(command); }, std::cout};
    runner.play(scenario, request.speed);
    std::cout << camera::visible(scenario.name) << " has been played" << std::endl;
    return 0;
}

int execute(const Request &request) {
    camera::ControlClient client(request.directory);
    const json answer = executeOrThrow(client, request.command);
    if (request.command["command"] == "follow") {
        return follow(client, request.directory);
    }
    if (answer.contains("state")) {
        std::cout << camera::visible(camera::printable(answer["state"], 2), "\n") << '\n';
    } else {
        std::cout << camera::visible(camera::doneText(request.command)) << '\n';
    }
    return 0;
}

int run(int argc, char **argv) {
    Request request;
    Arguments arguments;
    CLI::App app("Controls the simulated camera.", "quarnsnmp-camctl");
    app.footer("Exit status: 0 success, 1 refused command or no camera, 2 usage error.");
    app.set_version_flag("--version", std::string("quarnsnmp-camctl ") + QUARNSNMP_VERSION);
    app.add_option("--directory", request.directory,
                   "Directory of the camera's sockets; QUARNSNMP_CAMERA_DIR overrides the default")
        ->type_name("DIR")
        ->capture_default_str();
    app.require_subcommand(1);
    addQueries(app, request);
    addSet(app, request, arguments);
    addSwitches(app, request, arguments);
    addFaults(app, request, arguments);
    addClear(app, request, arguments);
    addPlay(app, request);
    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError &error) {
        if (error.get_exit_code() == 0) {
            return app.exit(error);
        }
        std::cerr << "quarnsnmp-camctl: " << error.what() << "\nRun with --help for more information.\n";
        return kUsageError;
    }
    return request.scenario.empty() ? execute(request) : playScenario(request);
}

} // namespace

int main(int argc, char **argv) {
    try {
        return run(argc, argv);
    } catch (const std::exception &error) {
        std::cerr << "quarnsnmp-camctl: " << camera::visible(error.what()) << '\n';
        return kRefused;
    }
}
