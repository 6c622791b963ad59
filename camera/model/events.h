// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Events of the camera and their listeners.
 */
#ifndef QUARNSNMP_CAMERA_EVENTS_H
#define QUARNSNMP_CAMERA_EVENTS_H

#include <cstdint>
#include <functional>
#include <map>
#include <string>
#include <utility>

#include <nlohmann/json.hpp>

#include "clock.h"

namespace camera {

/**
 * Publisher of events, in the order of their times. An event is an object with its kind in "event", the seconds since
 * the camera started in "time", and further members. Times have a resolution of a microsecond and never decrease.
 */
class Events {
public:
    using Listener = std::function<void(const nlohmann::json &event)>;

    /** Registration of a listener, which ends with this object. The Events must outlive it. */
    class Subscription {
    public:
        Subscription() = default;
        Subscription(Events &events, std::uint64_t id) : events_(&events), id_(id) {}
        Subscription(const Subscription &) = delete;
        Subscription &operator=(const Subscription &) = delete;
        Subscription(Subscription &&other) noexcept;
        Subscription &operator=(Subscription &&other) noexcept;
        ~Subscription();

    private:
        Events *events_ = nullptr;
        std::uint64_t id_ = 0;
    };

    explicit Events(Clock clock = startClock()) : clock_(std::move(clock)) {}
    Events(const Events &) = delete;
    Events &operator=(const Events &) = delete;

    /** Registers a listener of all later events. A listener may end any subscription, including its own. */
    [[nodiscard]] Subscription subscribe(Listener listener);

    /** Returns true if there is a listener; otherwise, publishers can save the construction of events. */
    bool heard() const;

    /** Publishes an event of the present. */
    void publish(const char *kind, nlohmann::json members);

    /** Publishes an event of a past time, in seconds since the camera started. */
    void publishAt(double time, const char *kind, nlohmann::json members);

    /** Returns the seconds since the camera started. */
    double seconds() const;

private:
    Clock clock_;
    double lastTime_ = 0.0;
    std::map<std::uint64_t, Listener> listeners_;
    std::uint64_t nextId_ = 1;
};

} // namespace camera

#endif
