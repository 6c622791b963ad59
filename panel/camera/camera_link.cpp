// SPDX-License-Identifier: Apache-2.0
#include "camera_link.h"

#include <utility>

#include <sys/socket.h>

#include <boost/asio/write.hpp>

#include "directory_check.h"
#include "json_text.h"
#include "wire.h"

namespace panel {

namespace asio = boost::asio;
using nlohmann::json;

namespace {

constexpr std::chrono::milliseconds kRetryPeriod{500};

/** Longest line of a camera. A state has some thousand octets; 255 presets add less than 64 KiB. */
constexpr std::size_t kLongestLine = std::size_t{1024} * 1024;

} // namespace

const char *statusName(CameraStatus status) {
    switch (status) {
    case CameraStatus::Up:
        return "up";
    case CameraStatus::Restarting:
        return "rebooting";
    case CameraStatus::Gone:
        return "gone";
    case CameraStatus::Unknown:
        break;
    }
    return "unknown";
}

CameraLink::CameraLink(asio::io_context &io, std::string directory, EventHandler onEvent, Notice onStatus)
    : io_(io), directory_(std::move(directory)), onEvent_(std::move(onEvent)), onStatus_(std::move(onStatus)),
      retry_(io), patience_(io) {
    report_.since = std::chrono::system_clock::now();
}

void CameraLink::start() {
    connect();
}

void CameraLink::stop() {
    isStopped_ = true;
    retry_.cancel();
    patience_.cancel();
    if (socket_) {
        boost::system::error_code ignored;
        socket_->close(ignored);
        socket_.reset();
    }
    // Those who wait own this link, or are owned by somebody who does.
    answers_.clear();
    refreshed_.clear();
}

const CameraReport &CameraLink::report() const {
    return report_;
}

const std::string &CameraLink::directory() const {
    return directory_;
}

void CameraLink::connect() {
    if (const std::optional<std::string> reason = wire::unsafeDirectory(directory_)) {
        fail(*reason);
        return;
    }
    const std::string path = wire::socketPath(directory_, wire::kControlSocket);
    socket_ = std::make_shared<Socket>(io_);
    boost::system::error_code error;
    // A camera that hangs accepts no connection. Without its consent, a blocking attempt would wait for ever.
    const asio::local::stream_protocol::endpoint endpoint(path);
    socket_->open(endpoint.protocol(), error);
    if (!error) {
        socket_->non_blocking(true, error);
    }
    if (error || ::connect(socket_->native_handle(), endpoint.data(), static_cast<socklen_t>(endpoint.size())) != 0) {
        fail("no camera in " + directory_);
        return;
    }
    connected();
}

void CameraLink::connected() {
    input_.clear();
    readMore();
    send(wire::encode({{"command", "follow"}}), [](const auto &) {});
    refresh([] {});
}

void CameraLink::readMore() {
    socket_->async_read_some(asio::buffer(chunk_),
                             [self = shared_from_this(), socket = socket_](const auto &error, std::size_t octets) {
                                 if (socket != self->socket_) {
                                     return; // of an earlier connection
                                 }
                                 if (error) {
                                     self->fail("the camera has ended");
                                     return;
                                 }
                                 self->input_.append(self->chunk_.data(), octets);
                                 self->takeLines();
                                 if (socket == self->socket_) {
                                     self->readMore();
                                 }
                             });
}

void CameraLink::takeLines() {
    const std::shared_ptr<Socket> socket = socket_;
    std::size_t start = 0;
    std::size_t end = 0;
    // A handler may end the connection.
    while (socket == socket_ && (end = input_.find('\n', start)) != std::string::npos) {
        const std::string line = input_.substr(start, end - start);
        start = end + 1;
        takeLine(line);
    }
    if (socket != socket_) {
        return;
    }
    input_.erase(0, start);
    if (input_.size() > kLongestLine) {
        fail("the camera sends a line without an end");
    }
}

void CameraLink::takeLine(const std::string &line) {
    const json message = camera::parseLine(line);
    if (!message.is_object()) {
        fail("the camera's answer is not a JSON object");
        return;
    }
    if (!message.contains("ok")) {
        onEvent_(message);
        return;
    }
    if (answers_.empty()) {
        fail("the camera answers without a command");
        return;
    }
    const Answer answer = std::move(answers_.front());
    answers_.pop_front();
    watchAnswers();
    answer(message);
}

void CameraLink::takeState(const json &answer) {
    try {
        const json &state = answer.at("state");
        report_.parsed = std::make_shared<const CameraState>(readCameraState(state));
        report_.state = std::make_shared<const json>(state);
    } catch (const std::exception &error) {
        fail(std::string("the camera's state is unusable: ") + error.what());
        return;
    }
    report_.read = std::chrono::steady_clock::now();
    enter(report_.parsed->restarting ? CameraStatus::Restarting : CameraStatus::Up, "");
}

void CameraLink::refresh(Notice done) {
    if (!socket_) {
        asio::post(io_, std::move(done));
        return;
    }
    refreshed_.push_back(std::move(done));
    if (refreshed_.size() > 1) {
        return; // the answer under way is as good
    }
    execute({{"command", "state"}}, [self = shared_from_this()](const std::optional<json> &answer) {
        if (answer) {
            self->takeState(*answer);
        }
        for (const Notice &each : std::exchange(self->refreshed_, {})) {
            each();
        }
    });
}

void CameraLink::execute(const json &command, Answer answer) {
    if (!socket_) {
        asio::post(io_, [answer = std::move(answer)] { answer(std::nullopt); });
        return;
    }
    send(wire::encode(command), std::move(answer));
}

void CameraLink::send(const std::string &line, Answer answer) {
    answers_.push_back(std::move(answer));
    output_.push_back(line);
    if (answers_.size() == 1) {
        watchAnswers();
    }
    if (output_.size() == 1) {
        sendNext();
    }
}

void CameraLink::sendNext() {
    asio::async_write(*socket_, asio::buffer(output_.front()),
                      [self = shared_from_this(), socket = socket_](const auto &error, std::size_t /*octets*/) {
                          if (socket != self->socket_) {
                              return;
                          }
                          if (error) {
                              self->fail("the camera has ended");
                              return;
                          }
                          self->output_.pop_front();
                          if (!self->output_.empty()) {
                              self->sendNext();
                          }
                      });
}

void CameraLink::watchAnswers() {
    if (answers_.empty()) {
        patience_.cancel();
        return;
    }
    patience_.expires_after(kPatience);
    patience_.async_wait([self = shared_from_this()](const boost::system::error_code &cancelled) {
        if (!cancelled && !self->answers_.empty() && !self->isStopped_) {
            self->fail("the camera does not answer");
        }
    });
}

void CameraLink::fail(const std::string &reason) {
    if (socket_) {
        boost::system::error_code ignored;
        socket_->close(ignored);
        socket_.reset();
    }
    output_.clear();
    enter(CameraStatus::Gone, reason);
    for (const Answer &answer : std::exchange(answers_, {})) {
        answer(std::nullopt);
    }
    if (!isStopped_) {
        retryLater();
    }
}

void CameraLink::retryLater() {
    retry_.expires_after(kRetryPeriod);
    retry_.async_wait([self = shared_from_this()](const boost::system::error_code &cancelled) {
        if (!cancelled && !self->isStopped_) {
            self->connect();
        }
    });
}

void CameraLink::enter(CameraStatus status, const std::string &message) {
    report_.message = message;
    if (report_.status != status) {
        report_.status = status;
        report_.since = std::chrono::system_clock::now();
        onStatus_();
    }
}

} // namespace panel
