// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Program that runs a fleet of simulated cameras.
 */
#include <exception>
#include <iostream>

#include "command_line.h"
#include "run.h"
#include "visible_text.h"

namespace {

constexpr int kFailed = 1;
constexpr int kUsageError = 2;

int run(int argc, char **argv) {
    fleet::CommandLine line;
    try {
        line.parse(argc, argv);
    } catch (const CLI::ParseError &error) {
        if (error.get_exit_code() == 0) {
            return line.app().exit(error);
        }
        std::cerr << fleet::kProgram << ": " << error.what() << "\nRun with --help for more information.\n";
        return kUsageError;
    }
    switch (line.command()) {
    case fleet::Command::control:
        return fleet::controlFleet(line.control(), line.request(), std::cout, std::cerr) ? 0 : kFailed;
    case fleet::Command::status:
        fleet::printUsage(fleet::measureFleet(line.status()), line.status().json, std::cout);
        break;
    case fleet::Command::start:
        fleet::runFleet(line.start());
        break;
    }
    return 0;
}

} // namespace

int main(int argc, char **argv) {
    try {
        return run(argc, argv);
    } catch (const std::exception &error) {
        std::cerr << fleet::kProgram << ": " << camera::visible(error.what()) << '\n';
        return kFailed;
    }
}
