// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Which services run: those that nobody has taken down, while the camera is not away because of a restart.
 */
#ifndef QUARNSNMP_CAMERA_SERVICE_KEEPER_H
#define QUARNSNMP_CAMERA_SERVICE_KEEPER_H

#include <set>

#include "camera_model.h"
#include "service_switch.h"

namespace camera {

/**
 * Switches services for the control program and for restarts of the camera, and publishes what becomes of them. What
 * was taken down by hand stays down after a restart.
 */
class ServiceKeeper {
public:
    /** Takes one line about a service that does not come up again after a restart. */
    using Complaint = std::function<void(const std::string &line)>;

    /** @param model,services  must outlive the keeper */
    ServiceKeeper(CameraModel &model, ServiceSwitch &services, Complaint complain);
    ServiceKeeper(const ServiceKeeper &) = delete;
    ServiceKeeper &operator=(const ServiceKeeper &) = delete;
    ~ServiceKeeper();

    bool isUp(const std::string &service) const {
        return services_.isUp(service);
    }

    /** Takes a service down by hand; while the camera restarts, it will not come up with the others. */
    void takeDown(const std::string &service);

    /** Brings a service up. @return what went wrong, when it is still down */
    std::optional<std::string> bringUp(const std::string &service);

private:
    /** Takes all services down, or brings those up that were not taken down by hand. */
    void restart(bool away);

    void closeService(const std::string &service);
    std::optional<std::string> openService(const std::string &service);

    CameraModel &model_;
    ServiceSwitch &services_;
    Complaint complain_;
    std::set<std::string> downByHand_;
};

} // namespace camera

#endif
