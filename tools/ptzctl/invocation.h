// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * A command line after it has been parsed.
 */
#ifndef PTZCTL_INVOCATION_H
#define PTZCTL_INVOCATION_H

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "context.h"
#include "library.h"
#include "outcome.h"
#include "probe/probe.h"
#include "session.h"

namespace ptzctl {

/** Name of the program in the SNMP library's configuration. */
inline constexpr const char *kProgram = "ptzctl";

/** Options and command. The command is one of `action`, `sessionAction`, `local`, `receives` and `expectations`. */
struct Invocation {
    std::vector<std::string> hosts;
    std::vector<std::string> hostLists; ///< files with further hosts, which the parser adds to `hosts`
    snmp::Credentials credentials;
    Settings settings;
    bool json = false;
    bool showsProgress = false; ///< standard error is a terminal
    double timeoutSeconds = 3;

    Action action; ///< command for each camera
    /** Command for each camera with sessions of its own; instead of `action`. */
    std::function<void(const snmp::SessionOptions &session, Report &report)> sessionAction;
    /** Runs after the command for all cameras, with their outcomes; may be empty. @throws snmp::Failure */
    std::function<void(const std::vector<Outcome> &outcomes)> afterwards;
    bool endsChildrenGently = false;    ///< a signal reaches the command of each camera, which ends in its own way
    std::function<std::string()> local; ///< command without a camera; returns its output
    bool receives = false;              ///< command `traps`
    std::optional<Expectations> expectations; ///< command `probe`
    std::string question;                     ///< to confirm before the action, unless `yes`
    bool asksPerson = false;                  ///< the action asks a person at the terminal
    bool yes = false;

    bool repeats = false; ///< repeat the action until Ctrl-C
    double intervalSeconds = 1;
    int count = 0; ///< number of repetitions or notifications; 0 for no end

    std::string listen; ///< address for notifications
    std::string engine; ///< engine ID of the sender of SNMPv3 notifications, as 0x…
};

} // namespace ptzctl

#endif
