// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Model of the simulated camera: its services, their targets and the effects of calls. The model is independent of
 * sockets, so all users of the camera share one state.
 */
#ifndef QUARNSNMP_CAMERA_MODEL_H
#define QUARNSNMP_CAMERA_MODEL_H

#include <functional>
#include <map>

#include "change_log.h"
#include "events.h"
#include "restart.h"
#include "service.h"

namespace camera {

/** Services of a camera by name. */
using Services = std::map<std::string, std::unique_ptr<Service>, std::less<>>;

/** Camera. Not thread-safe. */
class CameraModel {
public:
    /** @param clock  time of all events; without calls, time passes for the model only in advance() */
    CameraModel(std::string name, std::string description, Services services, Clock clock = startClock());
    CameraModel(const CameraModel &) = delete;
    CameraModel &operator=(const CameraModel &) = delete;

    /** Returns a copy of the camera at its present time, with a clock that stands still and without listeners. */
    std::unique_ptr<CameraModel> copy();

    const std::string &name() const {
        return name_;
    }
    const std::string &description() const {
        return description_;
    }
    const Services &services() const {
        return services_;
    }
    Events &events() {
        return events_;
    }

    /** Returns the names of the camera's services in alphabetical order. */
    std::vector<std::string> serviceNames() const;

    /** Returns a service; null when the camera does not have it. */
    const Service *service(std::string_view name) const;

    /** Returns the target IDs of a service, such as "alarm/1"; none when the camera does not have the service. */
    std::vector<std::string> targetIds(std::string_view service) const;

    /**
     * Runs a call `[operation, target, argument...]` of a service. Only a call that returns kSuccess changes the state.
     * @return kInvalidArgument for a malformed request, kServiceDown during a restart, kUnknownOperation,
     *         kUnknownTarget, or the answer of the operation
     */
    Answer call(std::string_view service, const nlohmann::json &request);

    /** Publishes a call that did not reach call(), with its status, unless it only reads. */
    void publishCommand(std::string_view service, const nlohmann::json &request, std::int32_t status);

    /** Sets a field of a target, or a group of fields with an object. Changes nothing and returns an error on failure.
     */
    std::optional<Problem> set(const std::string &target, const std::string &key, const nlohmann::json &value);

    /** Returns the present fields of a target as nested objects; null for an unknown target. */
    nlohmann::json state(const std::string &target);

    /** Makes the present values of a target its start values, which a restart restores. */
    void keep(const std::string &target);

    /**
     * Restarts the camera. At the next advance() the camera goes away and resets its volatile state. It is back at the
     * first advance() after the end of the restart. The model's clock continues meanwhile.
     * @param seconds  duration from now; the present call is answered first
     */
    void restart(double seconds);

    /** Returns true while the camera is away in a restart. */
    bool isRestarting() const {
        return restart_.isAway();
    }

    /** Sets the function to call when the camera goes away and when it is back; an empty function removes it. */
    void onRestart(std::function<void(bool away)> listener) {
        onRestart_ = std::move(listener);
    }

    /** Runs all timed events up to now. Calls, set() and state() do so first. */
    void advance();

    /** Returns the time of the next timed event in seconds since the camera started; kNever without one. */
    double nextTime() const {
        return nextTime_;
    }

    /** Sets the function to call after each change of nextTime(); an empty function removes it. */
    void onNextTimeChange(std::function<void()> listener) {
        onNextTimeChange_ = std::move(listener);
    }

    /** Returns the time of the present call or other work, in seconds since the camera started. */
    double now() const {
        return now_;
    }

    /** Publishes an event of a target, dated `time`, after the events of the present command. */
    void report(const std::string &target, double time, const char *kind, nlohmann::json members) {
        changes_.report(target, time, kind, std::move(members));
    }

    /**
     * Returns the target of another service with the same number, for operations across services: the presets of
     * presets_tours/2 are positions of positioning/2. Returns nothing when the camera does not have the target.
     */
    template <typename State>
    std::optional<Scope<State>> sibling(std::size_t index) {
        const auto found = services_.find(State::definition().service);
        if (found == services_.end()) {
            return std::nullopt;
        }
        State *state = static_cast<ServiceOf<State> &>(*found->second).state(index);
        if (state == nullptr) {
            return std::nullopt;
        }
        found->second->advance(*this, index);
        changes_.remember(*found->second, index);
        return Scope<State>{*this, index, *state};
    }

private:
    struct TargetPlace {
        Service *service;
        std::size_t index;
    };

    /** Finds a target; null when there is none. */
    const TargetPlace *place(const std::string &target) const;

    /** Publishes the event of a call at the present time, unless the call only reads. */
    void publishCommandEvent(std::string_view service, const nlohmann::json &request, std::int32_t status);

    /** Publishes the effects of a command and updates nextTime(). */
    void finishChange();

    /** Takes a due step of a restart. */
    void advanceRestart();

    /** Starts the time courses of all targets. */
    void startTargets();

    /** Applies the effects of a restart to all targets. */
    void resetVolatileState();

    /** Updates nextTime(). */
    void schedule();

    std::string name_;
    std::string description_;
    Services services_;
    std::map<std::string, TargetPlace> targets_;
    std::vector<TargetPlace> withTimeCourse_;
    Clock clock_;
    Events events_;
    ChangeLog changes_;
    double now_ = 0.0;
    double nextTime_ = kNever;
    std::function<void()> onNextTimeChange_;
    Restart restart_;
    std::function<void(bool away)> onRestart_;
};

/** Returns true for an operation that only reads; all others are commands. */
bool isGet(std::string_view operation);

} // namespace camera

#endif
