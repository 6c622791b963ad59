// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Directory of a fleet.
 */
#ifndef QUARNSNMP_FLEET_FLEET_DIRECTORY_H
#define QUARNSNMP_FLEET_FLEET_DIRECTORY_H

#include <optional>
#include <string>
#include <vector>

#include "plan.h"
#include "socket_directory.h"

namespace fleet {

/** Reservation of a directory for one fleet at a time. */
class FleetDirectory {
public:
    /**
     * Reserves a directory under the rules for that of a camera, which also means that only its owner can write it.
     * Creates it if it is missing.
     * @param path  empty for a temporary directory, which is removed with all of its content at the end
     * @throws std::runtime_error when the directory cannot be used
     */
    explicit FleetDirectory(const std::string &path);
    FleetDirectory(const FleetDirectory &) = delete;
    FleetDirectory &operator=(const FleetDirectory &) = delete;

    /** Removes the temporary directory, or the sockets of cameras that were killed. */
    ~FleetDirectory();

    /** Returns the absolute path. */
    const std::string &path() const {
        return path_;
    }

    /** Makes the directory of a camera. @throws std::runtime_error */
    void add(const CameraPlan &camera);

private:
    bool isTemporary_;
    std::string path_;
    std::optional<camera::SocketDirectory> reservation_;
    std::vector<std::string> cameras_;
};

} // namespace fleet

#endif
