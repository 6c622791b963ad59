// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Server of all sockets of a camera.
 */
#ifndef QUARNSNMP_CAMERA_SERVER_H
#define QUARNSNMP_CAMERA_SERVER_H

#include "control_command_handler.h"
#include "dry_run.h"
#include "line_server.h"
#include "model_timer.h"
#include "service_request_handler.h"
#include "service_supervisor.h"
#include "socket_directory.h"

namespace camera {

/** Server of a camera's sockets: one for each service, the directory socket and the control socket. */
class CameraServer final : public ServiceControl {
public:
    /**
     * @param model,directory  must outlive the server
     * @param warn  receives one line for each service that does not start after a restart
     */
    CameraServer(boost::asio::io_context &io, CameraModel &model, const SocketDirectory &directory,
                 WarningHandler warn);

    /** Opens all sockets. @throws TransportError */
    void open();

    /** Closes all sockets. */
    void close();

    bool isUp(const std::string &service) const override;
    void takeDown(const std::string &service) override;
    std::optional<std::string> bringUp(const std::string &service) override;

private:
    void controlLine(LineConnection &connection, std::string_view line);

    /** Starts sending the events to a client. */
    void follow(LineConnection &connection);

    CameraModel &model_;
    Faults faults_;
    ServiceSupervisor supervisor_;
    ServiceRequestHandler requests_;
    ControlCommandHandler commands_;
    std::map<std::string, std::unique_ptr<LineServer>> services_;
    LineServer directory_;
    LineServer control_;
    ModelTimer timer_;
};

} // namespace camera

#endif
