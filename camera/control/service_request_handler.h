// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Handler of the request lines on the service sockets and the directory socket.
 */
#ifndef QUARNSNMP_CAMERA_SERVICE_REQUEST_HANDLER_H
#define QUARNSNMP_CAMERA_SERVICE_REQUEST_HANDLER_H

#include "camera_model.h"
#include "faults.h"
#include "service_control.h"

namespace camera {

/** Requests of every service socket besides the service's operations: registration and release of a client. */
inline constexpr const char *kInitiatorRequests[] = {"initiator_init", "initiator_deinit"};

/** The only request of the directory socket. */
inline constexpr const char *kDirectoryRequest = "get_target_ids";

/** Answer line with its newline, and its delay. */
struct Reply {
    std::string line;
    std::chrono::milliseconds delay{0};
};

/** Handler of requests: applies the configured faults, then runs the call in the model. */
class ServiceRequestHandler {
public:
    ServiceRequestHandler(CameraModel &model, Faults &faults, const ServiceControl &services)
        : model_(model), faults_(faults), services_(services) {}

    /** Answers a line of a service socket. @param line  without its newline */
    Reply handleService(const std::string &service, std::string_view line);

    /** Answers a line of the directory socket. @param line  without its newline */
    Reply handleDirectory(std::string_view line);

private:
    /** Takes the faults of a call and publishes them as an event. */
    Faults::Effect takeFaults(const std::string &service, const nlohmann::json &request);

    Answer targetIds(const std::string &service) const;

    CameraModel &model_;
    Faults &faults_;
    const ServiceControl &services_;
};

} // namespace camera

#endif
