// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Answers the request lines of the service sockets and of the directory socket.
 */
#ifndef QUARNSNMP_CAMERA_CALL_DESK_H
#define QUARNSNMP_CAMERA_CALL_DESK_H

#include "camera_model.h"
#include "faults.h"
#include "service_switch.h"

namespace camera {

/** The requests that a service's socket takes besides the service's operations: a client that comes, or goes. */
inline constexpr const char *kInitiatorRequests[] = {"initiator_init", "initiator_deinit"};

/** The one request of the directory socket. */
inline constexpr const char *kDirectoryRequest = "get_target_ids";

/** An answer line, newline included, and how long to hold it back. */
struct Reply {
    std::string line;
    std::chrono::milliseconds delay{0};
};

/** Leads each request past the faults to the model. */
class CallDesk {
public:
    CallDesk(CameraModel &model, Faults &faults, const ServiceSwitch &services)
        : model_(model), faults_(faults), services_(services) {}

    /** Answers a line, given without its newline, that came on a service's socket. */
    Reply serviceRequest(const std::string &service, std::string_view line);

    /** Answers a line, given without its newline, that came on the directory socket. */
    Reply directoryRequest(std::string_view line);

private:
    /** Takes the faults of a call, and publishes them. */
    Faults::Effect faultsOf(const std::string &service, const nlohmann::json &request);

    Answer targetIds(const std::string &service) const;

    CameraModel &model_;
    Faults &faults_;
    const ServiceSwitch &services_;
};

} // namespace camera

#endif
