// SPDX-License-Identifier: Apache-2.0
#include "service_keeper.h"

#include <utility>

namespace camera {

ServiceKeeper::ServiceKeeper(CameraModel &model, ServiceSwitch &services, Complaint complain)
    : model_(model), services_(services), complain_(std::move(complain)) {
    model_.onRestart([this](bool away) { restart(away); });
}

ServiceKeeper::~ServiceKeeper() {
    model_.onRestart(nullptr);
}

void ServiceKeeper::takeDown(const std::string &service) {
    downByHand_.insert(service);
    closeService(service);
}

std::optional<std::string> ServiceKeeper::bringUp(const std::string &service) {
    if (model_.isRestarting()) {
        return "the camera restarts";
    }
    std::optional<std::string> error = openService(service);
    if (!error) {
        downByHand_.erase(service);
    }
    return error;
}

void ServiceKeeper::restart(bool away) {
    for (const std::string &service : model_.serviceNames()) {
        if (away) {
            closeService(service);
        } else if (downByHand_.count(service) == 0) {
            if (const std::optional<std::string> error = openService(service)) {
                complain_("cannot bring up " + service + ": " + *error);
                model_.events().publish("service_not_up", {{"service", service}, {"error", *error}});
            }
        }
    }
}

void ServiceKeeper::closeService(const std::string &service) {
    if (services_.isUp(service)) {
        services_.takeDown(service);
        model_.events().publish("service_down", {{"service", service}});
    }
}

std::optional<std::string> ServiceKeeper::openService(const std::string &service) {
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
