// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Faults of the agent, each named after the rule that finds it.
 */
#ifndef QUARNSNMP_CHECK_FAULTS_H
#define QUARNSNMP_CHECK_FAULTS_H

#include <functional>
#include <string>
#include <vector>

#include "agent.h"

namespace wrong {

/** One way to be wrong. */
struct Fault {
    std::string rule;   ///< name of the rule of `ptzctl check` that fails
    std::string effect; ///< what the agent does, in words
    std::function<void(Model &model, Behaviour &behaviour)> install;
};

/** Returns all faults. */
const std::vector<Fault> &faults();

/** Finds a fault. @throws std::invalid_argument for an unknown name */
const Fault &faultNamed(const std::string &rule);

} // namespace wrong

#endif
