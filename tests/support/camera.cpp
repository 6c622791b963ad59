// SPDX-License-Identifier: Apache-2.0
#include "camera.h"

#include <iostream>
#include <stdexcept>
#include <utility>

#include <gtest/gtest.h>

namespace support {

std::string cameraPath() {
    return SUPPORT_CAMERA;
}

std::string controlPath() {
    return SUPPORT_CONTROL;
}

Camera::Camera(std::string camera, CameraOptions options) : camera_(std::move(camera)), options_(std::move(options)) {
    if (cameraPath().empty()) {
        throw std::runtime_error("this build has no simulated camera");
    }
    if (options_.directory.empty()) {
        options_.directory = files_.file("sockets");
    }
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
    return options_.directory;
}

pid_t Camera::pid() const {
    return process_ ? process_->pid() : -1;
}

void Camera::signal(int number) {
    running().signal(number);
}

void Camera::start() {
    if (process_) {
        throw std::runtime_error("the camera is running already");
    }
    std::vector<std::string> arguments = {cameraPath(), "--camera", camera_, "--directory", directory()};
    arguments.insert(arguments.end(), options_.arguments.begin(), options_.arguments.end());
    process_ = std::make_unique<Process>(
        Launch{arguments, options_.environment, output().path(), errors().path(), options_.filesLimit});
    // A line of output announces that all sockets are open.
    const auto ready = [this] { return output().count(" ready in ") > 0; };
    eventually([&] { return !process_->running() || ready(); });
    if (!process_->running() || !ready()) {
        const ExitStatus status = process_->end();
        process_.reset();
        throw std::runtime_error("the camera does not become ready (" + status.describe() + ")\n" + report());
    }
}

ExitStatus Camera::stop(int signal) {
    running().signal(signal);
    process_->wait(kPatience);
    const ExitStatus status = process_->end();
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
    std::vector<std::string> command = {controlPath(), "--directory", directory()};
    command.insert(command.end(), arguments.begin(), arguments.end());
    return runCommand(command);
}

LogFile Camera::output() const {
    return LogFile(files_.file("camera.out"));
}

LogFile Camera::errors() const {
    return LogFile(files_.file("camera.err"));
}

Process &Camera::running() {
    if (!process_ || !process_->running()) {
        throw std::runtime_error("the camera is not running\n" + report());
    }
    return *process_;
}

std::string Camera::report() const {
    return "---- camera ----\n" + output().tail(20) + errors().tail(40);
}

} // namespace support
