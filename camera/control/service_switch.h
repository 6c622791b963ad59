// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Taking services down and bringing them up, as the control program orders it and the transport does it.
 */
#ifndef QUARNSNMP_CAMERA_SERVICE_SWITCH_H
#define QUARNSNMP_CAMERA_SERVICE_SWITCH_H

#include <optional>
#include <string>

namespace camera {

/** Which services run. The services named to it are ones that the camera has. */
class ServiceSwitch {
public:
    ServiceSwitch() = default;
    ServiceSwitch(const ServiceSwitch &) = delete;
    ServiceSwitch &operator=(const ServiceSwitch &) = delete;
    virtual ~ServiceSwitch() = default;

    virtual bool isUp(const std::string &service) const = 0;

    /** Stops a service; its clients lose their connections. */
    virtual void takeDown(const std::string &service) = 0;

    /** Starts a service. @return what went wrong, when it is still down */
    virtual std::optional<std::string> bringUp(const std::string &service) = 0;
};

} // namespace camera

#endif
