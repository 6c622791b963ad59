/**
 * @file
 * The control program of the simulated camera.
 */
#include "control_client.h"
#include "wire.h"

#include <exception>
#include <functional>
#include <iostream>

#include <CLI/CLI.hpp>

namespace {

using nlohmann::json;

constexpr int kRefused = 1;
constexpr int kUsageError = 2;

/** What the command line asks for. */
struct Request {
    std::string directory = wire::socketDirectory();
    json command = json::object();
    std::string done; ///< what to say when it is done
};

std::string printable(const json &value, int indent) {
    return value.dump(indent, ' ', false, json::error_handler_t::replace);
}

/** Holds the texts of a subcommand's arguments until the command line is read. */
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

/** VALUE of `set`: JSON when it is that, else a text, so that texts need no second pair of quotes. */
json valueOf(const std::string &text) {
    json value = wire::decode(text);
    return value.is_discarded() ? json(text) : value;
}

json timesOf(const Arguments &arguments) {
    return arguments.always ? json("always") : json(arguments.times);
}

std::string timesText(const Arguments &arguments) {
    if (arguments.always) {
        return "always";
    }
    return arguments.times == 1 ? "once" : std::to_string(arguments.times) + " times";
}

void addTimes(CLI::App *command, Arguments &arguments) {
    CLI::Option *times =
        command->add_option("--times", arguments.times, "How often it happens; once by default")->type_name("N");
    command->add_flag("--always", arguments.always, "It happens until it is cleared")->excludes(times);
}

void addFaultOf(CLI::App *command, Arguments &arguments) {
    command->add_option("SERVICE", arguments.service, "Name of a service, or directory")->required();
    command->add_option("OPERATION", arguments.operation, "Name of an operation, or * for all")->required();
}

void addQueries(CLI::App &app, Request &request) {
    app.add_subcommand("state", "Print the state of the whole camera")->callback([&request] {
        request.command = {{"command", "state"}};
    });
    app.add_subcommand("follow", "Print events as they happen, until interrupted")->callback([&request] {
        request.command = {{"command", "follow"}};
    });
}

void addSet(CLI::App &app, Request &request, Arguments &arguments) {
    CLI::App *set = app.add_subcommand("set", "Set a field of a target");
    set->add_option("TARGET", arguments.target, "Target such as alarm/1")->required();
    set->add_option("FIELD", arguments.field, "Field such as state or pan.position")->required();
    set->add_option("VALUE", arguments.value, "JSON, or else a text")->required();
    set->callback([&request, &arguments] {
        const json value = valueOf(arguments.value);
        request.command = {
            {"command", "set"}, {"target", arguments.target}, {"field", arguments.field}, {"value", value}};
        request.done = arguments.target + " " + arguments.field + " is " + printable(value, -1);
    });
}

void addSwitches(CLI::App &app, Request &request, Arguments &arguments) {
    for (const char *name : {"down", "up"}) {
        CLI::App *command =
            app.add_subcommand(name, std::string(name) == "down" ? "Stop a service; its clients lose their connections"
                                                                 : "Start a service again");
        command->add_option("SERVICE", arguments.service, "Name of a service")->required();
        command->callback([&request, &arguments, name] {
            request.command = {{"command", name}, {"service", arguments.service}};
            request.done = arguments.service + " is " + name;
        });
    }
}

void addFaults(CLI::App &app, Request &request, Arguments &arguments) {
    CLI::App *fail = app.add_subcommand("fail", "Let an operation fail");
    addFaultOf(fail, arguments);
    fail->add_option("STATUS", arguments.number, "Status that it answers; not 0")->required();
    addTimes(fail, arguments);
    fail->callback([&request, &arguments] {
        request.command = {{"command", "fail"},
                           {"service", arguments.service},
                           {"operation", arguments.operation},
                           {"status", arguments.number},
                           {"times", timesOf(arguments)}};
        request.done = arguments.service + " " + arguments.operation + " fails with status " +
                       std::to_string(arguments.number) + ", " + timesText(arguments);
    });

    CLI::App *delay = app.add_subcommand("delay", "Hold back an operation's answer");
    addFaultOf(delay, arguments);
    delay->add_option("MILLISECONDS", arguments.number, "How long")->required();
    addTimes(delay, arguments);
    delay->callback([&request, &arguments] {
        request.command = {{"command", "delay"},
                           {"service", arguments.service},
                           {"operation", arguments.operation},
                           {"milliseconds", arguments.number},
                           {"times", timesOf(arguments)}};
        request.done = arguments.service + " " + arguments.operation + " answers " + std::to_string(arguments.number) +
                       " ms late, " + timesText(arguments);
    });
}

void addClear(CLI::App &app, Request &request, Arguments &arguments) {
    CLI::App *clear = app.add_subcommand("clear", "End failures and delays");
    clear->add_option("SERVICE", arguments.service, "Only those of a service, or of directory");
    clear->add_option("OPERATION", arguments.operation, "Only those for this operation, or for *");
    clear->callback([&request, &arguments] {
        request.command = {{"command", "clear"}};
        request.done = "no failures and delays";
        if (!arguments.service.empty()) {
            request.command["service"] = arguments.service;
            request.done += " for " + arguments.service;
        }
        if (!arguments.operation.empty()) {
            request.command["operation"] = arguments.operation;
            request.done += " " + arguments.operation;
        }
    });
}

int follow(camera::ControlClient &client, const std::string &directory) {
    while (const std::optional<std::string> line = client.nextLine()) {
        std::cout << *line << std::endl;
    }
    throw camera::ControlError("the camera in " + directory + " has ended");
}

int execute(const Request &request) {
    camera::ControlClient client(request.directory);
    const json answer = client.execute(request.command);
    if (answer.value("ok", json()) != true) {
        const json error = answer.value("error", json("the camera refuses without a reason"));
        std::cerr << "quarnsnmp-camctl: " << (error.is_string() ? error.get<std::string>() : printable(error, -1))
                  << '\n';
        return kRefused;
    }
    if (request.command["command"] == "follow") {
        return follow(client, request.directory);
    }
    std::cout << (answer.contains("state") ? printable(answer["state"], 2) : request.done) << '\n';
    return 0;
}

int run(int argc, char **argv) {
    Request request;
    Arguments arguments;
    CLI::App app("Controls the simulated camera.", "quarnsnmp-camctl");
    app.footer("Exit status: 0 done, 1 refused or no camera there, 2 wrong usage.");
    app.set_version_flag("--version", std::string("quarnsnmp-camctl ") + QUARNSNMP_VERSION);
    app.add_option("--directory", request.directory,
                   "Directory of the camera's sockets; QUARNSNMP_CAMERA_DIR sets another default")
        ->type_name("DIR")
        ->capture_default_str();
    app.require_subcommand(1);
    addQueries(app, request);
    addSet(app, request, arguments);
    addSwitches(app, request, arguments);
    addFaults(app, request, arguments);
    addClear(app, request, arguments);
    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError &error) {
        if (error.get_exit_code() == 0) {
            return app.exit(error);
        }
        std::cerr << "quarnsnmp-camctl: " << error.what() << "\nRun with --help for more information.\n";
        return kUsageError;
    }
    return execute(request);
}

} // namespace

int main(int argc, char **argv) {
    try {
        return run(argc, argv);
    } catch (const std::exception &error) {
        std::cerr << "quarnsnmp-camctl: " << error.what() << '\n';
        return kRefused;
    }
}
