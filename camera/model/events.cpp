// SPDX-License-Identifier: Apache-2.0
#include "events.h"

#include <algorithm>
#include <cmath>
#include <utility>
#include <vector>

namespace camera {

Events::Subscription::Subscription(Subscription &&other) noexcept
    : events_(std::exchange(other.events_, nullptr)), id_(std::exchange(other.id_, 0)) {}

Events::Subscription &Events::Subscription::operator=(Subscription &&other) noexcept {
    std::swap(events_, other.events_);
    std::swap(id_, other.id_);
    return *this;
}

Events::Subscription::~Subscription() {
    if (events_ != nullptr) {
        events_->listeners_.erase(id_);
    }
}

Events::Subscription Events::subscribe(Listener listener) {
    const std::uint64_t id = nextId_++;
    listeners_.emplace(id, std::move(listener));
    return {*this, id};
}

bool Events::heard() const {
    return !listeners_.empty();
}

void Events::publish(const char *kind, nlohmann::json members) {
    publishAt(seconds(), kind, std::move(members));
}

void Events::publishAt(double time, const char *kind, nlohmann::json members) {
    constexpr double kPerSecond = 1e6;
    lastTime_ = std::max(lastTime_, std::round(time * kPerSecond) / kPerSecond);
    members["time"] = lastTime_;
    members["event"] = kind;
    // A listener may end any subscription, including its own. Each is looked up and copied for its call.
    std::vector<std::uint64_t> ids;
    ids.reserve(listeners_.size());
    for (const auto &entry : listeners_) {
        ids.push_back(entry.first);
    }
    for (const std::uint64_t id : ids) {
        const auto found = listeners_.find(id);
        if (found != listeners_.end()) {
            const Listener listener = found->second;
            listener(members);
        }
    }
}

double Events::seconds() const {
    return clock_();
}

} // namespace camera
