// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Supervisor of the services during control commands and restarts of the camera.
 */
#ifndef QUARNSNMP_CAMERA_SERVICE_SUPERVISOR_H
#define QUARNSNMP_CAMERA_SERVICE_SUPERVISOR_H

#include <set>

#include "camera_model.h"
#include "service_control.h"
#include "warning_handler.h"

namespace camera {

/**
 * Stops and starts services for the control program and for restarts of the camera, and publishes each change as an
 * event. A service that the control program took down stays down after a restart.
 */
class ServiceSupervisor {
public:
    /**
     * @param model,services  must outlive the supervisor
     * @param warn  receives one line for each service that does not start after a restart
     */
    ServiceSupervisor(CameraModel &model, ServiceControl &services, WarningHandler warn);
    ServiceSupervisor(const ServiceSupervisor &) = delete;
    ServiceSupervisor &operator=(const ServiceSupervisor &) = delete;
    ~ServiceSupervisor();

    /** Returns true while the service accepts connections. */
    bool isUp(const std::string &service) const {
        return services_.isUp(service);
    }

    /** Takes a service down; it stays down when a restart of the camera ends. */
    void takeDown(const std::string &service);

    /** Brings a service up. @return the error message when the service is still down */
    std::optional<std::string> bringUp(const std::string &service);

private:
    /** Takes all services down at the start of a restart; at its end, brings up those that takeDown() left. */
    void restart(bool away);

    void closeService(const std::string &service);
    std::optional<std::string> openService(const std::string &service);

    CameraModel &model_;
    ServiceControl &services_;
    WarningHandler warn_;
    std::set<std::string> takenDown_;
};

} // namespace camera

#endif
