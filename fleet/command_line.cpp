// SPDX-License-Identifier: Apache-2.0
#include "command_line.h"

#include <stdexcept>

#include "run.h"

namespace fleet {

namespace {

void addDirectory(CLI::App *command, std::string &directory) {
    command->add_option("--directory", directory, "Directory of the running fleet")->type_name("DIR")->required();
}

} // namespace

CommandLine::CommandLine()
    : app_("Runs many simulated cameras, each with an agent at an address of its own.", kProgram) {
    app_.footer("Exit status: 0 after a signal or success, 1 for an error, 2 for a usage error.");
    app_.set_version_flag("--version", std::string(kProgram) + " " + QUARNSNMP_VERSION);
    app_.require_subcommand(0, 1);
    addStart();
    addStatus();
    addControl();
}

void CommandLine::addStart() {
    constexpr unsigned kHighestPort = 65535;
    app_.add_option("COUNT", start_.count, "Number of cameras")->check(CLI::Range(1U, kMostCameras));
    app_.add_option("--base", start_.base, "Address of the first camera; the others follow it")
        ->type_name("ADDRESS")
        ->capture_default_str();
    app_.add_option("--port", start_.port, "UDP port of the agents")
        ->type_name("N")
        ->check(CLI::Range(1U, kHighestPort))
        ->capture_default_str();
    app_.add_option("--camera", start_.cameras,
                    "Kinds of cameras: names or files, each with its share, such as dome:8 stepper:1")
        ->type_name("NAME|FILE[:SHARE]")
        ->take_all()
        ->capture_default_str();
    app_.add_option("--directory", start_.directory,
                    "Directory of the fleet, which keeps the presets; by default, a temporary one")
        ->type_name("DIR");
    app_.add_option("--hosts-file", start_.hostsFile, "Write the addresses to a file for ptzctl")->type_name("FILE");
    app_.add_option("--targets-file", start_.targetsFile, "Write the addresses to a file for Prometheus")
        ->type_name("FILE");
    app_.add_option("--trap-to", start_.trapTo, "Destination of the cameras' traps; by default, none")
        ->type_name("ADDRESS:PORT");
    app_.add_option("--module", start_.module, "Agent module to load instead of the one beside this program")
        ->type_name("FILE");
}

void CommandLine::addStatus() {
    constexpr double kLongestInterval = 3600.0;
    constexpr double kShortestInterval = 0.1;
    CLI::App *command = app_.add_subcommand("status", "Show the cameras of a running fleet and what they use");
    addDirectory(command, status_.directory);
    command->add_option("--interval", status_.interval, "Time to count requests")
        ->type_name("SECONDS")
        ->check(CLI::Range(kShortestInterval, kLongestInterval))
        ->capture_default_str();
    command->add_flag("--json", status_.json, "Print JSON");
    command->callback([this] { command_ = Command::status; });
}

void CommandLine::addControl() {
    constexpr double kLongestStagger = 3600.0;
    CLI::App *command = app_.add_subcommand("control", "Execute a command of quarnsnmp-camctl on cameras of a fleet");
    addDirectory(command, control_.directory);
    command->add_option("--select", control_.select, "Numbers, ranges, or patterns of names, kinds or addresses")
        ->type_name("PATTERN")
        ->capture_default_str();
    command->add_option("--stagger", control_.stagger, "Time by which each camera starts after the one before it")
        ->type_name("SECONDS")
        ->check(CLI::Range(0.0, kLongestStagger))
        ->capture_default_str();
    command->add_option("COMMAND", control_.command, "Command and its arguments, after --")->required();
    command->callback([this] { command_ = Command::control; });
}

void CommandLine::parse(int argc, char **argv) {
    app_.parse(argc, argv);
    if (command_ == Command::control) {
        request_ = parseCommand(control_.command);
    } else if (command_ == Command::start) {
        checkStart();
    }
}

void CommandLine::checkStart() {
    if (start_.count == 0) {
        throw CLI::RequiredError("COUNT");
    }
    try {
        start_.check();
    } catch (const std::invalid_argument &error) {
        throw CLI::ValidationError(error.what());
    }
}

} // namespace fleet
