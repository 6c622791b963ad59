// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Interface to stop and start services: used by the control commands, implemented by the transport.
 */
#ifndef QUARNSNMP_CAMERA_SERVICE_CONTROL_H
#define QUARNSNMP_CAMERA_SERVICE_CONTROL_H

#include <optional>
#include <string>

namespace camera {

/** Control over the services' sockets. All service names must be services of the camera. */
class ServiceControl {
public:
    ServiceControl() = default;
    ServiceControl(const ServiceControl &) = delete;
    ServiceControl &operator=(const ServiceControl &) = delete;
    virtual ~ServiceControl() = default;

    /** Returns true while the service accepts connections. */
    virtual bool isUp(const std::string &service) const = 0;

    /** Stops a service and closes the connections of its clients. */
    virtual void takeDown(const std::string &service) = 0;

    /** Starts a service. @return the error message when the service is still down */
    virtual std::optional<std::string> bringUp(const std::string &service) = 0;
};

} // namespace camera

#endif
