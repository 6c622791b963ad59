// SPDX-License-Identifier: Apache-2.0
#include "camera.h"

#include <csignal>
#include <cstring>
#include <filesystem>
#include <iostream>
#include <stdexcept>
#include <utility>

#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include "eventually.h"
#include "settings.h"
#include "wire.h"

namespace harness {

namespace {

/** Whether somebody accepts connections on a Unix socket. */
bool accepts(const std::string &path) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    if (path.size() >= sizeof address.sun_path) {
        throw std::runtime_error("too long for a socket's path: " + path);
    }
    std::memcpy(address.sun_path, path.c_str(), path.size() + 1);
    const int fd = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    if (fd < 0) {
        throw std::runtime_error("no socket to be had");
    }
    const bool connected = connect(fd, reinterpret_cast<const sockaddr *>(&address), sizeof address) == 0;
    close(fd);
    return connected;
}

} // namespace

Camera::Camera(const std::string &camera, std::map<std::string, std::string> environment)
    : camera_(camera), environment_(std::move(environment)) {
    start();
}

Camera::~Camera() {
    if (process_ && !process_->running()) {
        ADD_FAILURE() << "the camera ended by itself: " << process_->end().describe() << "\n" << report();
    } else if (process_) {
        const ExitStatus status = stop();
        if (!status.clean()) {
            ADD_FAILURE() << "the camera did not end cleanly: " << status.describe() << "\n" << report();
        }
    }
    if (testHasFailed()) {
        std::cerr << report();
    }
}

const std::string &Camera::directory() const {
    return directory_.path();
}

pid_t Camera::pid() const {
    return process_ ? process_->pid() : -1;
}

void Camera::start() {
    if (process_) {
        throw std::runtime_error("the camera is running already");
    }
    if (cameraPath().empty()) {
        throw std::runtime_error("this build has no simulated camera");
    }
    process_ = std::make_unique<Process>(Launch{{cameraPath(), "--camera", camera_, "--directory", directory()},
                                                environment_,
                                                output().path(),
                                                errors().path()});
    eventually(std::chrono::seconds(10), [this] { return !process_->running() || isReady(); });
    if (!process_->running() || !isReady()) {
        const ExitStatus status = process_->end();
        process_.reset();
        throw std::runtime_error("the camera does not become ready (" + status.describe() + ")\n" + report());
    }
}

ExitStatus Camera::stop() {
    const ExitStatus status = running().end();
    process_.reset();
    return status;
}

void Camera::kill() {
    running().signal(SIGKILL);
    process_->end();
    process_.reset();
}

void Camera::restart() {
    if (process_) {
        stop();
    }
    start();
}

CommandResult Camera::control(const std::vector<std::string> &arguments) const {
    if (controlPath().empty()) {
        throw std::runtime_error("this build has no simulated camera");
    }
    std::vector<std::string> command = {controlPath(), "--directory", directory()};
    command.insert(command.end(), arguments.begin(), arguments.end());
    return runCommand(command);
}

LogFile Camera::output() const {
    return LogFile(directory_.file("camera.out"));
}

LogFile Camera::errors() const {
    return LogFile(directory_.file("camera.err"));
}

Process &Camera::running() {
    if (!process_ || !process_->running()) {
        throw std::runtime_error("the camera is not running\n" + report());
    }
    return *process_;
}

bool Camera::isReady() const {
    return accepts(wire::socketPath(directory(), wire::kDirectorySocket)) &&
           accepts(wire::socketPath(directory(), wire::kControlSocket));
}

std::string Camera::report() const {
    return "---- camera ----\n" + output().tail(20) + errors().tail(40);
}

} // namespace harness
