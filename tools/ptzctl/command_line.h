// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * The command line: its options and commands, and what they ask for.
 */
#ifndef PTZCTL_COMMAND_LINE_H
#define PTZCTL_COMMAND_LINE_H

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include <CLI/CLI.hpp>

#include "context.h"
#include "credentials.h"

namespace ptzctl {

/** What a command line asks for. After it has been read it is one of action, local and receives. */
struct Invocation {
    std::vector<std::string> hosts;
    Credentials credentials;
    Settings settings;
    bool json = false;
    double timeoutSeconds = 3;

    Action action;                      ///< what each camera is asked
    std::function<std::string()> local; ///< what needs no camera; returns what to print
    bool receives = false;              ///< whether to wait for traps
    std::string question;               ///< to be answered before the action, unless `yes`
    bool yes = false;

    bool repeats = false; ///< whether the action is repeated until Ctrl-C
    double intervalSeconds = 1;
    int count = 0; ///< after how many times a repetition or a receiver ends; 0 for never

    std::string listen; ///< where traps are received
    std::string engine; ///< whose SNMPv3 traps are received, as 0x…
};

/**
 * Makes the command line's reader.
 * @param invocation  is filled when the command line is read; lives longer than the reader
 * @return whose parse() throws CLI::ParseError or std::invalid_argument for a wrong command line
 */
std::unique_ptr<CLI::App> commandLine(Invocation &invocation);

/** What is wrong with a command line that parse() has thrown a CLI::ParseError for. */
std::string complaintOf(const CLI::App &app, const CLI::ParseError &error);

/** A speed from a text: 1 to 127, or a percentage of 127. @throws std::invalid_argument */
int speedOf(const std::string &text);

} // namespace ptzctl

#endif
