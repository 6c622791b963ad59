// SPDX-License-Identifier: Apache-2.0
#include "camera_server.h"

#include <utility>

#include "wire.h"

namespace camera {

namespace {

void answer(LineConnection &connection, Reply reply) {
    if (reply.delay.count() > 0) {
        connection.sendLater(std::move(reply.line), reply.delay);
    } else {
        connection.send(std::move(reply.line));
    }
}

} // namespace

CameraServer::CameraServer(boost::asio::io_context &io, CameraModel &model, const SocketDirectory &directory,
                           WarningHandler warn)
    : model_(model), supervisor_(model, *this, std::move(warn)), requests_(model, faults_, *this),
      commands_(model, faults_, supervisor_), directory_(io, directory.socket(wire::kDirectorySocket),
                                                         [this](LineConnection &connection, std::string_view line) {
                                                             answer(connection, requests_.handleDirectory(line));
                                                         }),
      control_(io, directory.socket(wire::kControlSocket),
               [this](LineConnection &connection, std::string_view line) { controlLine(connection, line); }),
      timer_(io, model) {
    for (const std::string &name : model.serviceNames()) {
        services_.emplace(name,
                          std::make_unique<LineServer>(io, directory.socket(name),
                                                       [this, name](LineConnection &connection, std::string_view line) {
                                                           answer(connection, requests_.handleService(name, line));
                                                       }));
    }
}

void CameraServer::open() {
    std::vector<LineServer *> servers;
    for (const auto &entry : services_) {
        servers.push_back(entry.second.get());
    }
    servers.push_back(&directory_);
    servers.push_back(&control_);
    for (LineServer *server : servers) {
        if (const std::optional<std::string> error = server->open()) {
            throw TransportError(*error);
        }
    }
}

void CameraServer::close() {
    control_.close();
    directory_.close();
    for (const auto &entry : services_) {
        entry.second->close();
    }
}

bool CameraServer::isUp(const std::string &service) const {
    const auto found = services_.find(service);
    return found != services_.end() && found->second->isOpen();
}

void CameraServer::takeDown(const std::string &service) {
    services_.at(service)->close();
}

std::optional<std::string> CameraServer::bringUp(const std::string &service) {
    return services_.at(service)->open();
}

void CameraServer::controlLine(LineConnection &connection, std::string_view line) {
    if (const auto *dryRun = std::any_cast<std::shared_ptr<DryRun>>(&connection.context())) {
        connection.send((*dryRun)->execute(line));
        return;
    }
    ControlReply reply = commands_.execute(line);
    connection.send(std::move(reply.line));
    if (reply.mode == ControlMode::follow) {
        follow(connection);
    } else if (reply.mode == ControlMode::dryRun) {
        connection.context() = std::make_shared<DryRun>(model_, reply.skipMissingServices);
    }
}

void CameraServer::follow(LineConnection &connection) {
    const std::weak_ptr<LineConnection> follower = connection.weak_from_this();
    connection.context() =
        std::make_shared<Events::Subscription>(model_.events().subscribe([follower](const nlohmann::json &event) {
            if (const auto alive = follower.lock()) {
                alive->send(wire::encode(event));
            }
        }));
}

} // namespace camera
