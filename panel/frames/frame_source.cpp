// SPDX-License-Identifier: Apache-2.0
#include "frame_source.h"

#include <algorithm>
#include <exception>
#include <utility>

#include <boost/asio/post.hpp>

namespace panel {

namespace asio = boost::asio;

namespace {

/** Frames of a camera without a picture change once a second only: its clock. */
constexpr std::chrono::seconds kProblemPeriod{1};

FrameContent contentOf(const CameraReport &report) {
    FrameContent content;
    content.time = std::chrono::system_clock::now();
    content.name = report.parsed ? report.parsed->name : "";
    if (report.status == CameraStatus::Up) {
        content.state = report.parsed;
    } else {
        content.problem = report.status == CameraStatus::Restarting ? "the camera restarts" : report.message;
    }
    return content;
}

/** Draws a frame. @return null if that fails */
SharedText drawn(FramePainter &painter, const FrameContent &content) {
    try {
        return shared(painter.draw(content));
    } catch (const std::exception &) {
        return nullptr;
    }
}

} // namespace

FrameSource::FrameSource(asio::io_context &io, asio::thread_pool &pool, std::shared_ptr<CameraLink> link,
                         std::unique_ptr<FramePainter> painter, int framesPerSecond)
    : io_(io), pool_(pool), link_(std::move(link)), painter_(std::move(painter)),
      period_(std::chrono::microseconds(std::chrono::seconds(1)) / framesPerSecond), timer_(io) {}

std::shared_ptr<void> FrameSource::watch(const std::weak_ptr<Watcher> &watcher) {
    watchers_.push_back(watcher);
    schedule();
    return shared_from_this();
}

void FrameSource::snapshot(Taker taker) {
    takers_.push_back(std::move(taker));
    schedule();
}

void FrameSource::stop() {
    isStopped_ = true;
    timer_.cancel();
    takers_.clear();
    watchers_.clear();
}

bool FrameSource::hasClients() {
    watchers_.remove_if([](const auto &watcher) { return watcher.expired(); });
    return !watchers_.empty() || !takers_.empty();
}

void FrameSource::schedule() {
    if (isDrawing_ || isStopped_ || !hasClients()) {
        return;
    }
    const bool hasPicture = link_->report().status == CameraStatus::Up;
    const bool isSlow = !hasPicture && takers_.empty();
    timer_.expires_at(started_ + (isSlow ? std::chrono::microseconds(kProblemPeriod) : period_));
    timer_.async_wait([self = shared_from_this()](const boost::system::error_code &cancelled) {
        if (!cancelled && !self->isDrawing_ && !self->isStopped_) {
            self->begin();
        }
    });
}

void FrameSource::begin() {
    isDrawing_ = true;
    started_ = std::chrono::steady_clock::now();
    // Later requests get a later state of the camera.
    link_->refresh([self = shared_from_this(), takers = std::exchange(takers_, {})] { self->draw(takers); });
}

void FrameSource::draw(const std::vector<Taker> &takers) {
    asio::post(pool_, [self = shared_from_this(), painter = painter_, content = contentOf(link_->report()), takers] {
        const SharedText jpeg = drawn(*painter, content);
        asio::post(self->io_, [self, jpeg, takers] { self->deliver(jpeg, takers); });
    });
}

void FrameSource::deliver(const SharedText &jpeg, const std::vector<Taker> &takers) {
    isDrawing_ = false;
    for (const Taker &taker : takers) {
        taker(jpeg);
    }
    if (jpeg && !watchers_.empty()) {
        const SharedText part = shared(framePart(*jpeg));
        for (const auto &watcher : std::list<std::weak_ptr<Watcher>>(watchers_)) {
            if (const std::shared_ptr<Watcher> client = watcher.lock()) {
                client->offer(part);
            }
        }
    }
    schedule();
}

} // namespace panel
