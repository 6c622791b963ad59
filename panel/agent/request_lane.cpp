// SPDX-License-Identifier: Apache-2.0
#include "request_lane.h"

#include <algorithm>
#include <exception>
#include <utility>

namespace panel {

namespace {

constexpr std::size_t kMostJobs = 32;

} // namespace

RequestLane::RequestLane(snmp::SessionOptions agent) : agent_(std::move(agent)) {
    agent_.isCancelled = [this] { return isStopping_.load(); };
    thread_ = std::thread([this] { work(); });
}

RequestLane::~RequestLane() {
    {
        const std::lock_guard<std::mutex> lock(mutex_);
        isStopping_ = true;
        jobs_.clear();
    }
    wake_.notify_one();
    thread_.join();
}

bool RequestLane::add(Job job) {
    Job replaced;
    {
        const std::lock_guard<std::mutex> lock(mutex_);
        const auto same = std::find_if(jobs_.begin(), jobs_.end(),
                                       [&](const Job &waiting) { return !job.key.empty() && waiting.key == job.key; });
        if (same != jobs_.end()) {
            replaced = std::move(*same);
            jobs_.erase(same);
        }
        if (jobs_.size() >= kMostJobs) {
            return false;
        }
        jobs_.push_back(std::move(job));
    }
    wake_.notify_one();
    if (replaced.drop) {
        replaced.drop();
    }
    return true;
}

void RequestLane::clear() {
    std::deque<Job> dropped;
    {
        const std::lock_guard<std::mutex> lock(mutex_);
        dropped.swap(jobs_);
    }
    for (const Job &job : dropped) {
        if (job.drop) {
            job.drop();
        }
    }
}

std::size_t RequestLane::waiting() const {
    const std::lock_guard<std::mutex> lock(mutex_);
    return jobs_.size();
}

std::optional<RequestLane::Clock::time_point> RequestLane::busySince() const {
    const std::lock_guard<std::mutex> lock(mutex_);
    return busySince_;
}

std::uint16_t RequestLane::localPort() const {
    return localPort_;
}

void RequestLane::work() {
    std::unique_lock<std::mutex> lock(mutex_);
    while (!isStopping_) {
        if (jobs_.empty()) {
            wake_.wait(lock);
            continue;
        }
        const Job job = std::move(jobs_.front());
        jobs_.pop_front();
        busySince_ = Clock::now();
        lock.unlock();
        perform(job);
        lock.lock();
        busySince_.reset();
    }
}

void RequestLane::perform(const Job &job) {
    try {
        if (!session_) {
            session_ = std::make_unique<snmp::Session>(agent_);
            localPort_ = session_->localPort();
        }
        job.run(*session_);
    } catch (const std::exception &error) {
        job.fail(error.what());
    }
}

} // namespace panel
