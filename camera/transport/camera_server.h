// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * All sockets of a camera.
 */
#ifndef QUARNSNMP_CAMERA_SERVER_H
#define QUARNSNMP_CAMERA_SERVER_H

#include "call_desk.h"
#include "control_desk.h"
#include "line_server.h"
#include "model_timer.h"
#include "service_keeper.h"
#include "socket_directory.h"

namespace camera {

/** Puts a camera on its sockets: one for each service, the directory's and the control program's. */
class CameraServer final : public ServiceSwitch {
public:
    /**
     * @param directory  holds the sockets; like the model, it must outlive the server
     * @param complain   takes one line about a service that does not come up again after a restart
     */
    CameraServer(boost::asio::io_context &io, CameraModel &model, const SocketDirectory &directory,
                 ServiceKeeper::Complaint complain);

    /** Opens all sockets. @throws TransportError */
    void open();

    /** Closes all sockets. */
    void close();

    bool isUp(const std::string &service) const override;
    void takeDown(const std::string &service) override;
    std::optional<std::string> bringUp(const std::string &service) override;

private:
    void controlLine(LineConnection &connection, std::string_view line);

    /** Sends the events from now on to a client. */
    void follow(LineConnection &connection);

    CameraModel &model_;
    Faults faults_;
    ServiceKeeper keeper_;
    CallDesk callDesk_;
    ControlDesk controlDesk_;
    std::map<std::string, std::unique_ptr<LineServer>> services_;
    LineServer directory_;
    LineServer control_;
    ModelTimer timer_;
};

} // namespace camera

#endif
