// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Command line of the program.
 */
#ifndef QUARNSNMP_FLEET_COMMAND_LINE_H
#define QUARNSNMP_FLEET_COMMAND_LINE_H

#include <CLI/CLI.hpp>

#include "control.h"
#include "options.h"
#include "usage.h"

namespace fleet {

/** What the program is asked for. */
enum class Command { start, status, control };

/** Command line. */
class CommandLine {
public:
    CommandLine();
    CommandLine(const CommandLine &) = delete;
    CommandLine &operator=(const CommandLine &) = delete;

    /** Parses and checks the arguments of main(). @throws CLI::ParseError */
    void parse(int argc, char **argv);

    Command command() const {
        return command_;
    }
    /** Returns the options of the start, which have been checked. */
    const Options &start() const {
        return start_;
    }
    const StatusOptions &status() const {
        return status_;
    }
    const ControlOptions &control() const {
        return control_;
    }
    /** Returns the control command. */
    const camera::ControlRequest &request() const {
        return request_;
    }
    const CLI::App &app() const {
        return app_;
    }

private:
    void addStart();
    void addStatus();
    void addControl();
    void checkStart();

    CLI::App app_;
    Command command_ = Command::start;
    Options start_;
    StatusOptions status_;
    ControlOptions control_;
    camera::ControlRequest request_;
};

} // namespace fleet

#endif
