// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Lists of a fleet's addresses for other programs.
 */
#ifndef QUARNSNMP_FLEET_LISTS_H
#define QUARNSNMP_FLEET_LISTS_H

#include <string>
#include <vector>

#include "plan.h"

namespace fleet {

/** Returns a list for `ptzctl --hosts-file`: a line for each camera, with its name in a comment. */
std::string hostsText(const std::vector<CameraPlan> &cameras);

/** Returns a list for Prometheus' file_sd: a group for each camera, with its name, kind and serial as labels. */
std::string targetsText(const std::vector<CameraPlan> &cameras);

/** Checks that a file can be written, and writes nothing. @throws std::runtime_error if it cannot */
void checkWritable(const std::string &path);

} // namespace fleet

#endif
