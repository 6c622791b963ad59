// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Plan of a fleet: what each camera is and where its files are.
 */
#ifndef QUARNSNMP_FLEET_PLAN_H
#define QUARNSNMP_FLEET_PLAN_H

#include <string>
#include <vector>

#include <boost/asio/ip/udp.hpp>

#include "options.h"

namespace fleet {

/** A camera of the fleet with its agent. */
struct CameraPlan {
    unsigned number = 0; ///< from 1
    std::string name;    ///< sysName of its agent, such as camera-0001
    std::string kind;    ///< name of the camera in its file
    std::string file;    ///< path of the camera file
    std::string serial;  ///< empty if the camera file has none
    boost::asio::ip::udp::endpoint address;
    std::string directory; ///< of its sockets and files
};

/** Programs and files that all cameras share. */
struct Programs {
    std::string camera;
    std::string agent;
    std::string module;
};

/**
 * Finds the programs: the camera beside this program, Debian's agent or that of QUARNSNMP_SNMPD, and the module of the
 * build or of the installation.
 * @param module  path of another module; empty for none
 * @throws std::runtime_error when one is missing, or an agent's configuration cannot name the module
 */
Programs findPrograms(const std::string &module);

/**
 * Plans the cameras, and reads the camera files.
 * @param options  checked
 * @throws camera::FileError for a camera file that cannot be used
 */
std::vector<CameraPlan> planCameras(const Options &options, const std::string &directory);

/**
 * Checks that each camera can have its files and that each agent can listen.
 * @throws std::runtime_error with what stands against it
 */
void checkPlaces(const std::vector<CameraPlan> &cameras);

} // namespace fleet

#endif
