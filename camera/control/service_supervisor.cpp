// SPDX-License-Identifier: Apache-2.0
#include "service_supervisor.h"

#include <utility>

namespace camera {

ServiceSupervisor::ServiceSupervisor(CameraModel &model, ServiceControl &services, WarningHandler warn)
    : model_(model), services_(services), warn_(std::move(warn)) {
    model_.onRestart([this](bool away) { restart(away); });
}

ServiceSupervisor::~ServiceSupervisor() {
    model_.onRestart(nullptr);
}

void ServiceSupervisor::takeDown(const std::string &service) {
    takenDown_.insert(service);
    closeService(service);
}

std::optional<std::string> ServiceSupervisor::bringUp(const std::string &service) {
    if (model_.isRestarting()) {
        return "the camera restarts";
    }
    std::optional<std::string> error = openService(service);
    if (!error) {
        takenDown_.erase(service);
    }
    return error;
}

void ServiceSupervisor::restart(bool away) {
    for (const std::string &service : model_.serviceNames()) {
        if (away) {
            closeService(service);
        } else if (takenDown_.count(service) == 0) {
            if (const std::optional<std::string> error = openService(service)) {
                warn_("cannot bring up " + service + ": " + *error);
                model_.events().publish("service_not_up", {{"service", service}, {"error", *error}});
            }
        }
    }
}

void ServiceSupervisor::closeService(const std::string &service) {
    if (services_.isUp(service)) {
        services_.takeDown(service);
        model_.events().publish("service_down", {{"service", service}});
    }
}

std::optional<std::string> ServiceSupervisor::openService(const std::string &service) {
    if (services_.isUp(service)) {
        return std::nullopt;
    }
    std::optional<std::string> error = services_.bringUp(service);
    if (!error) {
        model_.events().publish("service_up", {{"service", service}});
    }
    return error;
}

} // namespace camera
