// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Selection of cameras of a running fleet.
 */
#ifndef QUARNSNMP_FLEET_SELECTION_H
#define QUARNSNMP_FLEET_SELECTION_H

#include <string>
#include <vector>

#include <nlohmann/json.hpp>

namespace fleet {

/** A camera of a running fleet, as `status` has it. */
struct FleetCamera {
    unsigned number = 0;
    std::string name;
    std::string kind;
    std::string address;
    unsigned port = 0;
    std::string directory;
    bool isReady = false;
    unsigned restarts = 0;       ///< of camera and agent
    int processes[2] = {-1, -1}; ///< of camera and agent; -1 while one does not run
};

/** Returns the cameras of a running fleet. @throws std::runtime_error without a fleet in the directory */
std::vector<FleetCamera> camerasOf(const std::string &directory);

/** Reads the cameras in the answer of a fleet. @throws std::runtime_error for a malformed one */
std::vector<FleetCamera> camerasIn(const nlohmann::json &answer);

/**
 * Returns the cameras that a pattern selects: a list, separated by commas, of numbers (7), ranges (10-20), and shell
 * patterns for the name, the kind or the address (dome, camera-00*, 127.1.0.[12]).
 * @throws std::invalid_argument for a malformed pattern, or a part that selects no camera
 */
std::vector<FleetCamera> selected(const std::vector<FleetCamera> &cameras, const std::string &pattern);

} // namespace fleet

#endif
