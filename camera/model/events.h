// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Events: what happens in the camera, told to whoever wants to know.
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
 * Hands events to listeners, in the order in which they happen. An event is an object with the seconds since the
 * camera started in "time", to the microsecond and never less than in the event before, its kind in "event", and
 * members of its kind.
 */
class Events {
public:
    using Listener = std::function<void(const nlohmann::json &event)>;

    /** Ends a listening when it goes; it must go before the events it belongs to. */
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

    /** Calls the listener for each event to come. A listener may end subscriptions, its own included. */
    [[nodiscard]] Subscription subscribe(Listener listener);

    /** Whether anybody listens; without listeners an event need not be put together. */
    bool heard() const;

    /** Publishes an event of a kind with its members that happens now. */
    void publish(const char *kind, nlohmann::json members);

    /** Publishes an event that happened at a time, in seconds since the camera started. */
    void publishAt(double time, const char *kind, nlohmann::json members);

    /** Seconds since the camera started. */
    double seconds() const;

private:
    Clock clock_;
    double lastTime_ = 0.0;
    std::map<std::uint64_t, Listener> listeners_;
    std::uint64_t nextId_ = 1;
};

} // namespace camera

#endif
