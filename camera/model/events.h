/**
 * @file
 * Events: what happens in the camera, told to whoever wants to know.
 */
#ifndef QUARNSNMP_CAMERA_EVENTS_H
#define QUARNSNMP_CAMERA_EVENTS_H

#include <chrono>
#include <cstdint>
#include <functional>
#include <map>
#include <string>

#include <nlohmann/json.hpp>

namespace camera {

/**
 * Hands events to listeners, in the order in which they happen. An event is an object with the seconds since the
 * camera started in "time", its kind in "event", and members of its kind.
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

    Events() = default;
    Events(const Events &) = delete;
    Events &operator=(const Events &) = delete;

    /** Calls the listener for each event to come. A listener may end subscriptions, its own included. */
    [[nodiscard]] Subscription subscribe(Listener listener);

    /** Whether anybody listens; without listeners an event need not be put together. */
    bool heard() const;

    /** Publishes an event of a kind with its members. */
    void publish(const char *kind, nlohmann::json members);

    /** Seconds since the camera started. */
    double seconds() const;

private:
    std::chrono::steady_clock::time_point start_ = std::chrono::steady_clock::now();
    std::map<std::uint64_t, Listener> listeners_;
    std::uint64_t nextId_ = 1;
};

} // namespace camera

#endif
