// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * The command-line client for cameras.
 */
#include <csignal>
#include <exception>
#include <iostream>

#include <unistd.h>

#include "command_line.h"
#include "output.h"
#include "probe/run_probe.h"
#include "run.h"

namespace {

/** Probes cameras. An error of this machine is an unknown state, too. */
int probe(const ptzctl::Invocation &invocation) {
    ptzctl::State state = ptzctl::State::Unknown;
    try {
        state = ptzctl::runProbe(invocation, std::cout);
    } catch (const std::exception &error) {
        std::cerr << "ptzctl: " << error.what() << '\n';
    }
    return static_cast<int>(state);
}

int readAndRun(int argc, char **argv) {
    ptzctl::Invocation invocation;
    invocation.settings.style.coloured = ptzctl::wantsColours(STDOUT_FILENO);
    const std::unique_ptr<CLI::App> app = ptzctl::commandLine(invocation);
    try {
        app->parse(argc, argv);
    } catch (const CLI::ParseError &error) {
        if (error.get_exit_code() == 0) {
            app->exit(error);
            ptzctl::requireWritten(std::cout);
            return static_cast<int>(ptzctl::ExitCode::Done);
        }
        if (app->got_subcommand("probe")) {
            return static_cast<int>(ptzctl::reportProbeError(ptzctl::errorOf(*app, error), std::cout));
        }
        std::cerr << "ptzctl: " << ptzctl::errorOf(*app, error) << "\n  run with --help for more information\n";
        return static_cast<int>(ptzctl::ExitCode::Usage);
    } catch (const std::invalid_argument &error) {
        if (app->got_subcommand("probe")) {
            return static_cast<int>(ptzctl::reportProbeError(error.what(), std::cout));
        }
        std::cerr << "ptzctl: " << error.what() << '\n';
        return static_cast<int>(ptzctl::ExitCode::Usage);
    }
    if (invocation.expectations) {
        return probe(invocation);
    }
    invocation.showsProgress = isatty(STDERR_FILENO) == 1;
    const bool terminal = isatty(STDIN_FILENO) == 1 && isatty(STDOUT_FILENO) == 1;
    return static_cast<int>(ptzctl::run(invocation, std::cin, std::cout, std::cerr, terminal));
}

} // namespace

int main(int argc, char **argv) {
    // A closed pipe is an error of the output.
    static_cast<void>(std::signal(SIGPIPE, SIG_IGN));
    try {
        return readAndRun(argc, argv);
    } catch (const std::exception &error) {
        std::cerr << "ptzctl: " << error.what() << '\n';
        return static_cast<int>(ptzctl::ExitCode::BadResponse);
    }
}
