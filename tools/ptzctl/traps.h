// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * `traps`: receiving notifications and explaining them.
 */
#ifndef PTZCTL_TRAPS_H
#define PTZCTL_TRAPS_H

#include <string>
#include <vector>

#include <nlohmann/json.hpp>

#include "command_line.h"

namespace ptzctl {

/** What a notification says, such as "temperature is 36 °C: …"; varbinds that nothing is known about are listed. */
std::string trapText(const std::vector<Variable> &variables, const Settings &settings);

/** The same for programs. */
nlohmann::ordered_json trapJson(const std::vector<Variable> &variables, const Settings &settings);

/**
 * Receives notifications and prints each as one line, until Ctrl-C or until as many as were asked for have come.
 * @throws Failure when the address cannot be listened at, or the SNMPv3 user cannot be made
 */
void receiveTraps(const Invocation &invocation);

} // namespace ptzctl

#endif
