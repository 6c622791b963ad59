// SPDX-License-Identifier: Apache-2.0
#include "connection.h"

#include <exception>
#include <utility>

#include <boost/asio/write.hpp>

namespace panel {

namespace asio = boost::asio;

namespace {

constexpr int kInternalError = 500;
constexpr int kUnavailable = 503;

/** Time for a client to read a last answer before the socket is closed. */
constexpr std::chrono::seconds kFarewell{2};

/** Size of the kernel's buffer, so that a slow client has at most a few frames of delay. */
constexpr int kSendBuffer = 256 * 1024;

} // namespace

Connection::Connection(asio::ip::tcp::socket socket, Server &server) : socket_(std::move(socket)), server_(server) {}

void Connection::start() {
    boost::system::error_code ignored;
    socket_.set_option(asio::ip::tcp::no_delay(true), ignored);
    readMore();
}

void Connection::enter(Phase phase) {
    phase_ = phase;
    since_ = Clock::now();
}

void Connection::readMore() {
    if (isReading_ || phase_ == Phase::Closed) {
        return;
    }
    isReading_ = true;
    socket_.async_read_some(asio::buffer(chunk_), [self = shared_from_this()](const auto &error, std::size_t octets) {
        self->isReading_ = false;
        if (self->phase_ == Phase::Closed) {
            return;
        }
        if (error) {
            self->close();
        } else if (self->phase_ == Phase::Streaming || self->phase_ == Phase::Ending) {
            self->readMore(); // discards the octets and waits for the end
        } else {
            self->input_.append(self->chunk_.data(), octets);
            self->processInput();
        }
    });
}

void Connection::processInput() {
    if (phase_ == Phase::Waiting && !input_.empty()) {
        enter(Phase::Reading);
    }
    switch (reader_->read(input_)) {
    case RequestReader::Progress::NeedsMore:
        readMore();
        break;
    case RequestReader::Progress::Complete: {
        const Request request = reader_->take();
        reader_ = std::make_unique<RequestReader>();
        dispatch(request);
        break;
    }
    case RequestReader::Progress::Failed:
        refuse(reader_->error());
        break;
    }
}

void Connection::refuse(const HttpError &error) {
    keepsAlive_ = false;
    isHead_ = false;
    enter(Phase::Answering);
    respond(errorResponse(error.status, error.text));
}

void Connection::dispatch(const Request &request) {
    enter(Phase::Answering);
    keepsAlive_ = request.keepsAlive;
    isHead_ = request.method == "HEAD";
    if (const std::optional<HttpError> error = refusal(request, server_.hosts_)) {
        respond(errorResponse(error->status, error->text));
        return;
    }
    try {
        server_.handler_(request, shared_from_this());
    } catch (const std::exception &error) {
        respond(errorResponse(kInternalError, error.what()));
    }
}

void Connection::respond(const Response &response) {
    if (phase_ != Phase::Answering || isWriting_) {
        return;
    }
    queue_.push_back(shared(headOf(response, keepsAlive_)));
    if (!isHead_ && response.body) {
        queue_.push_back(response.body);
    }
    write();
}

void Connection::stream(const std::string &type, const StreamStart &start) {
    if (phase_ != Phase::Answering || isWriting_) {
        return;
    }
    if (server_.streamCount() >= server_.limits_.streams) {
        respond(errorResponse(kUnavailable, "too many clients watch already"));
        return;
    }
    keepsAlive_ = false;
    queue_.push_back(shared(streamHeadOf(type)));
    if (isHead_) {
        write();
        return;
    }
    boost::system::error_code ignored;
    socket_.set_option(asio::socket_base::send_buffer_size(kSendBuffer), ignored);
    enter(Phase::Streaming);
    write();
    source_ = start(weak_from_this());
    readMore();
}

void Connection::send(const SharedText &octets) {
    if (phase_ != Phase::Streaming) {
        return;
    }
    queuedOctets_ += octets->size();
    if (queuedOctets_ > server_.limits_.unreadOctets) {
        close();
        return;
    }
    queue_.push_back(octets);
    write();
}

void Connection::offer(const SharedText &octets) {
    if (phase_ != Phase::Streaming) {
        return;
    }
    if (isWriting_) {
        newest_ = octets;
    } else {
        queuedOctets_ += octets->size();
        queue_.push_back(octets);
        write();
    }
}

void Connection::write() {
    if (isWriting_ || queue_.empty()) {
        return;
    }
    isWriting_ = true;
    writingSince_ = Clock::now();
    asio::async_write(socket_, asio::buffer(*queue_.front()),
                      [self = shared_from_this()](const auto &error, std::size_t octets) {
                          self->isWriting_ = false;
                          if (error || self->phase_ == Phase::Closed) {
                              self->close();
                          } else {
                              self->written(octets);
                          }
                      });
}

void Connection::written(std::size_t octets) {
    queue_.pop_front();
    queuedOctets_ -= std::min(octets, queuedOctets_);
    if (queue_.empty() && newest_) {
        queuedOctets_ += newest_->size();
        queue_.push_back(std::exchange(newest_, nullptr));
    }
    if (!queue_.empty()) {
        write();
    } else if (phase_ == Phase::Answering) {
        finishResponse();
    }
}

void Connection::finishResponse() {
    if (keepsAlive_) {
        enter(Phase::Waiting);
        processInput();
        return;
    }
    // Closing at once would discard the answer if octets of the client are still on their way.
    enter(Phase::Ending);
    boost::system::error_code ignored;
    socket_.shutdown(asio::ip::tcp::socket::shutdown_send, ignored);
    readMore();
}

void Connection::check(Clock::time_point now) {
    const ServerLimits &limits = server_.limits_;
    const bool isLate = (phase_ == Phase::Waiting && now - since_ > limits.idle) ||
                        (phase_ == Phase::Reading && now - since_ > limits.request) ||
                        (phase_ == Phase::Ending && now - since_ > kFarewell) ||
                        (isWriting_ && now - writingSince_ > limits.write);
    if (isLate) {
        close();
    }
}

void Connection::close() {
    if (phase_ == Phase::Closed) {
        return;
    }
    enter(Phase::Closed);
    newest_.reset();
    boost::system::error_code ignored;
    socket_.close(ignored);
    // The source may be the caller.
    asio::post(server_.io_, [source = std::move(source_)] {});
}

bool Connection::isClosed() const {
    return phase_ == Phase::Closed;
}

bool Connection::isStreaming() const {
    return phase_ == Phase::Streaming;
}

bool Connection::isIdle() const {
    return phase_ == Phase::Waiting || phase_ == Phase::Reading || phase_ == Phase::Ending;
}

Connection::Clock::time_point Connection::since() const {
    return since_;
}

} // namespace panel
