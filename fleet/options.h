// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Options of a fleet.
 */
#ifndef QUARNSNMP_FLEET_OPTIONS_H
#define QUARNSNMP_FLEET_OPTIONS_H

#include <optional>
#include <string>
#include <vector>

#include "addresses.h"
#include "mixture.h"

namespace fleet {

/** Largest fleet. */
inline constexpr unsigned kMostCameras = 9999;

/** Options of the command that starts a fleet. */
struct Options {
    unsigned count = 0;
    std::string base = "127.1.0.1";
    std::uint16_t port = 1161;
    std::vector<std::string> cameras = {"dome"};
    std::string directory; ///< empty for a temporary one
    std::string hostsFile;
    std::string targetsFile;
    std::string trapTo;
    std::string module; ///< empty for the module beside the program

    // Set by check().
    std::vector<boost::asio::ip::address_v4> addresses; ///< one for each camera
    std::vector<Share> shares;
    std::optional<boost::asio::ip::udp::endpoint> trapDestination;

    /** Checks the options together, and sets those that follow from others. @throws std::invalid_argument */
    void check();
};

} // namespace fleet

#endif
