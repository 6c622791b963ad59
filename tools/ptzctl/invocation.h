// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * A command line after it has been parsed.
 */
#ifndef PTZCTL_INVOCATION_H
#define PTZCTL_INVOCATION_H

#include <functional>
#include <string>
#include <vector>

#include "context.h"
#include "library.h"

namespace ptzctl {

/** Name of the program in the SNMP library's configuration. */
inline constexpr const char *kProgram = "ptzctl";

/** Options and command. The command is one of `action`, `local` and `receives`. */
struct Invocation {
    std::vector<std::string> hosts;
    snmp::Credentials credentials;
    Settings settings;
    bool json = false;
    double timeoutSeconds = 3;

    Action action;                      ///< command for each camera
    std::function<std::string()> local; ///< command without a camera; returns its output
    bool receives = false;              ///< command `traps`
    std::string question;               ///< to confirm before the action, unless `yes`
    bool yes = false;

    bool repeats = false; ///< repeat the action until Ctrl-C
    double intervalSeconds = 1;
    int count = 0; ///< number of repetitions or notifications; 0 for no end

    std::string listen; ///< address for notifications
    std::string engine; ///< engine ID of the sender of SNMPv3 notifications, as 0x…
};

} // namespace ptzctl

#endif
