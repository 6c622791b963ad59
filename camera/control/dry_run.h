// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Dry run of control commands on a copy of the camera.
 */
#ifndef QUARNSNMP_CAMERA_DRY_RUN_H
#define QUARNSNMP_CAMERA_DRY_RUN_H

#include <set>

#include "control_command_handler.h"

namespace camera {

/** Services without sockets. All of them are up at first, and each can be brought up again. */
class SimulatedServices final : public ServiceControl {
public:
    bool isUp(const std::string &service) const override;
    void takeDown(const std::string &service) override;
    std::optional<std::string> bringUp(const std::string &service) override;

private:
    std::set<std::string> down_;
};

/**
 * Copy of a camera that executes control commands, each with the effects of the commands before. Its time stands still,
 * it has no faults at first, and its services have no sockets. The camera itself does not change.
 */
class DryRun {
public:
    /**
     * Copies the camera.
     * @param skipMissingServices  accept commands for known services that the camera does not have, without an effect
     */
    DryRun(CameraModel &camera, bool skipMissingServices);

    /**
     * Executes a command and returns the answer line with its newline. The answer to a skipped command has the name of
     * the missing service in "skipped".
     * @param line  without its newline
     */
    std::string execute(std::string_view line);

private:
    /** Returns the missing service of a command to skip; empty for other commands. */
    std::string skippedService(const nlohmann::json &command) const;

    std::unique_ptr<CameraModel> model_;
    bool skipMissingServices_;
    SimulatedServices services_;
    Faults faults_;
    ServiceSupervisor supervisor_;
    ControlCommandHandler handler_;
};

} // namespace camera

#endif
