// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Checks whether a camera's core library does what the module needs.
 */
#include <chrono>
#include <exception>
#include <fstream>
#include <iostream>
#include <vector>

#include <unistd.h>

#include <CLI/CLI.hpp>

#include "checks.h"
#include "interface.h"
#include "report.h"
#include "trial.h"

namespace {

using namespace core_check;

constexpr const char *kProgram = "quarnsnmp-core-check";
constexpr int kFailed = 1;
constexpr int kUsageError = 2;

/** Options of the command line. */
struct Options {
    std::string path;    ///< of the library
    std::string logFile; ///< empty without one
    double patienceSeconds = 10;
    bool json = false;
    bool symbols = false;
};

/** Makes all checks. @return true if the library has loaded and started */
bool makeChecks(const Options &options, Supervisor &supervisor) {
    const Result file = checkFile(options.path);
    if (!file.passed) {
        supervisor.add(file);
        return false;
    }
    const std::string mark = kProgram + (' ' + std::to_string(::getpid()));
    supervisor.run([&](Trial &trial) { checkCalls(trial, options.path, mark); });
    if (!supervisor.hasPassed("library", symbols::kIpcInitiatorInit)) {
        return false;
    }
    if (!options.logFile.empty()) {
        supervisor.add(checkLog(options.logFile, mark));
    }
    supervisor.run([&](Trial &trial) { checkFork(trial, options.path); });
    supervisor.run([&](Trial &trial) { checkReload(trial, options.path); });
    return true;
}

int check(const Options &options) {
    std::vector<Result> results;
    Table table;
    const auto patience =
        std::chrono::duration_cast<std::chrono::milliseconds>(std::chrono::duration<double>(options.patienceSeconds));
    Supervisor supervisor(patience, [&](const Result &result) {
        results.push_back(result);
        if (!options.json) {
            table.add(result);
        }
    });
    if (!options.json) {
        std::cout << "result       ms  check" << std::endl;
    }
    const bool started = makeChecks(options, supervisor);
    if (options.json) {
        std::cout << jsonOf(options.path, results) << std::endl;
    } else {
        std::cout << '\n'
                  << supervisor.passed() << " checks passed, " << supervisor.failed() << " failed."
                  << (started ? "" : " The library does not start, so the other checks were not made.") << std::endl;
    }
    return supervisor.failed() == 0 ? 0 : kFailed;
}

int run(int argc, char **argv) {
    Options options;
    CLI::App app("Checks whether a camera's core library does what the SNMP agent module needs. Moves, stores and "
                 "switches nothing.",
                 kProgram);
    app.add_option("LIBRARY", options.path, "The camera's libzorva-core.so");
    app.add_option("--log", options.logFile, "File of the library's log; must contain the lines that this program logs")
        ->type_name("FILE");
    app.add_option("--patience", options.patienceSeconds, "Seconds after which a call counts as hanging")
        ->type_name("SECONDS")
        ->check(CLI::Range(3.0, 600.0))
        ->capture_default_str();
    app.add_flag("--json", options.json, "Print JSON instead of a table");
    app.add_flag("--symbols", options.symbols, "List the functions that a library must export, and exit");
    app.set_version_flag("--version", std::string(kProgram) + ' ' + QUARNSNMP_VERSION);
    try {
        app.parse(argc, argv);
        if (options.symbols) {
            for (const std::string &name : requiredSymbols()) {
                std::cout << name << '\n';
            }
            return 0;
        }
        if (options.path.empty()) {
            throw CLI::RequiredError("LIBRARY");
        }
        for (const std::string &file : {options.path, options.logFile}) {
            if (!file.empty() && !std::ifstream(file)) {
                throw CLI::ValidationError(file + " is unreadable");
            }
        }
    } catch (const CLI::ParseError &error) {
        if (error.get_exit_code() == 0) {
            return app.exit(error);
        }
        std::cerr << kProgram << ": " << error.what() << "\nRun with --help for more information.\n";
        return kUsageError;
    }
    if (options.path.find('/') == std::string::npos) {
        options.path.insert(0, "./"); // not to be searched in the system's directories
    }
    return check(options);
}

} // namespace

int main(int argc, char **argv) {
    try {
        return run(argc, argv);
    } catch (const std::exception &error) {
        std::cerr << kProgram << ": " << error.what() << '\n';
        return kUsageError;
    }
}
