// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * The simulated camera itself: the services it has, their targets, and what calls do to them. It knows nothing of
 * sockets, so that everything that shows or moves the camera works on the same state.
 */
#ifndef QUARNSNMP_CAMERA_MODEL_H
#define QUARNSNMP_CAMERA_MODEL_H

#include <functional>
#include <map>

#include "events.h"
#include "service.h"

namespace camera {

/** The services of a camera by their names. */
using Services = std::map<std::string, std::unique_ptr<Service>, std::less<>>;

/** A camera. Not for more than one thread. */
class CameraModel {
public:
    /** @param clock  gives the time of everything that happens; by itself nothing happens before advance() is called */
    CameraModel(std::string name, std::string description, Services services, Clock clock = startClock());
    CameraModel(const CameraModel &) = delete;
    CameraModel &operator=(const CameraModel &) = delete;

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

    /** The names of the services that this camera has. */
    std::vector<std::string> serviceNames() const;

    /** A service; null when this camera does not have it. */
    const Service *service(std::string_view name) const;

    /** The targets of a service, such as "alarm/1"; none when this camera does not have it. */
    std::vector<std::string> targetIds(std::string_view service) const;

    /**
     * Runs a call `[operation, target, argument...]` of a service.
     * @return kInvalidArgument for a request of another shape, kServiceDown while the camera restarts,
     *         kUnknownOperation, kUnknownTarget, or what the operation answers; nothing changes unless it answers
     * kSuccess
     */
    Answer call(std::string_view service, const nlohmann::json &request);

    /** Publishes a call with its outcome, unless it only reads. For calls that do not get as far as call(). */
    void publishCommand(std::string_view service, const nlohmann::json &request, std::int32_t status);

    /** Sets a field of a target, or a group of fields with an object; changes nothing after a problem. */
    std::optional<Problem> set(const std::string &target, const std::string &key, const nlohmann::json &value);

    /** A target's present fields as nested objects; null for an unknown target. */
    nlohmann::json state(const std::string &target);

    /** Makes the present values of a target those that it has after a restart. */
    void keep(const std::string &target);

    /**
     * Restarts the camera: at the next advance() it goes away, and loses what a restart loses. It is back at the first
     * advance() after that for which the time is over; the model's clock goes on meanwhile.
     * @param seconds  from now, for operations that must be answered before
     */
    void restart(double seconds);

    /** Whether the camera is away because of a restart. */
    bool isRestarting() const {
        return restarting_;
    }

    /** Calls a function when the camera goes away, and when it is back; an empty one ends that. */
    void onRestart(std::function<void(bool away)> listener) {
        onRestart_ = std::move(listener);
    }

    /** Lets happen what happens by itself until now. All that asks or commands the camera does so first. */
    void advance();

    /** When the next thing happens by itself, in seconds since the camera started; kNever when nothing does. */
    double nextTime() const {
        return nextTime_;
    }

    /** Calls a function whenever nextTime() has changed; an empty one ends that. */
    void onNextTimeChange(std::function<void()> listener) {
        onNextTimeChange_ = std::move(listener);
    }

    /** The time that the present call, or other piece of work, takes as now, in seconds since the camera started. */
    double now() const {
        return now_;
    }

    /** Publishes an event about a target, which happened at a time, behind those of the present command. */
    void report(const std::string &target, double time, const char *kind, nlohmann::json members);

    /**
     * A target of another service, for operations that reach beyond their own: preset 1 of presets_tours/2 is a
     * position of positioning/2. Nothing when the camera does not have it.
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
        remember(*found->second, index);
        return Scope<State>{*this, index, *state};
    }

private:
    /** Publishes a call that is made at the present, unless it only reads. */
    void tellCommand(std::string_view service, const nlohmann::json &request, std::int32_t status);

    struct TargetPlace {
        Service *service;
        std::size_t index;
    };
    struct Report {
        double time;
        const char *kind;
        nlohmann::json members;
    };
    struct Snapshot {
        TargetPlace place;
        nlohmann::json values;
    };

    /** Finds a target; null when there is none. */
    const TargetPlace *place(const std::string &target) const;

    /** Notes what a target holds before a command, so that its changes can be published. */
    void remember(Service &service, std::size_t index);

    /** Publishes what has changed in the remembered targets, and forgets them. */
    void publishChanges();

    /** Publishes what was reported. */
    void publishReports();

    /** Goes away for a restart that was ordered, or comes back from it. */
    void advanceRestart();

    /** Lets the targets do what they do without being told when the camera starts. */
    void startTargets();

    /** Does to all targets what a restart does. */
    void loseWhatARestartLoses();

    /** Finds out when the next thing happens by itself. */
    void schedule();

    std::string name_;
    std::string description_;
    Services services_;
    std::map<std::string, TargetPlace> targets_;
    std::vector<TargetPlace> withTimeCourse_;
    Clock clock_;
    Events events_;
    double now_ = 0.0;
    double nextTime_ = kNever;
    std::function<void()> onNextTimeChange_;
    double restartStep_ = kNever; ///< when a restart begins, or ends
    double restartEnd_ = kNever;
    bool restarting_ = false;
    std::function<void(bool away)> onRestart_;
    std::vector<Report> reports_;
    bool inCommand_ = false;
    std::vector<Snapshot> snapshots_;
};

/** The identifier of a target, `service/number`. */
std::string targetId(const std::string &service, std::size_t index);

/** Whether an operation only reads; all others are commands. */
bool isGet(std::string_view operation);

} // namespace camera

#endif
