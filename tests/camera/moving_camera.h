// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * A camera with a clock that tests set, for tests of what moves.
 */
#ifndef QUARNSNMP_TEST_MOVING_CAMERA_H
#define QUARNSNMP_TEST_MOVING_CAMERA_H

#include "steered_camera.h"

namespace camera::test {

/** Values of commands whose arguments are the same for most tests. */
inline constexpr double kFullSpeed = 1.0;
inline constexpr int kPriority = 5;

/**
 * A camera whose axes have round numbers: pan is endless and takes a second to its full speed of 100000, tilt a second
 * to 10000, and zoom has its speed of 1 to 101 at once.
 */
class MovingCamera : public SteeredCamera {
protected:
    MovingCamera()
        : SteeredCamera(R"({"name": "moving", "services": {
        "positioning": {"targets": [{
            "pan": {"minimum": 0, "maximum": 359999, "endless": true, "maximumSpeed": 100000, "acceleration": 100000},
            "tilt": {"minimum": -90000, "maximum": 20000, "minimumSpeed": 100, "maximumSpeed": 10000,
                "acceleration": 10000},
            "zoom": {"position": 10, "minimum": 10, "maximum": 300, "minimumSpeed": 1, "maximumSpeed": 101},
            "digitalZoom": {"maximum": 120, "combinedMaximum": 3600}}]},
        "presets_tours": {"targets": [{"maximumPresets": 9}]}
    }})") {}

    wire::Status call(const std::string &operation, const nlohmann::json &arguments,
                      const std::string &service = "positioning") {
        return callService(service, operation, arguments);
    }

    /** Sends one axis to a position. */
    wire::Status move(const std::string &axis, int position, double fraction = kFullSpeed, int priority = kPriority) {
        nlohmann::json arguments = nlohmann::json::array();
        for (const char *each : {"pan", "tilt", "zoom"}) {
            const bool enabled = axis == each;
            arguments.push_back(enabled ? 1 : 0);
            arguments.push_back(enabled ? position : 0);
            arguments.push_back(enabled ? fraction : 0.0);
        }
        arguments.push_back(priority);
        return call("move_to_position_with_speed_percentage_send", arguments);
    }

    /** Gives one axis a velocity, with a time-out in milliseconds. */
    wire::Status run(const std::string &axis, int velocity, unsigned timeout = 0, int priority = kPriority) {
        nlohmann::json arguments = nlohmann::json::array();
        for (const char *each : {"pan", "tilt", "zoom"}) {
            arguments.push_back(axis == each ? 1 : 0);
            arguments.push_back(axis == each ? velocity : 0);
        }
        arguments.push_back(priority);
        arguments.push_back(timeout);
        return call("set_velocity_with_timeout_send", arguments);
    }

    nlohmann::json axis(const std::string &name) {
        return camera_->state("positioning/1")[name];
    }

    /** Expects an axis to be somewhere on its way. */
    void expectAt(const std::string &name, int position, int velocity) {
        const nlohmann::json now = axis(name);
        EXPECT_EQ(position, now["position"]) << name << " at " << now_;
        EXPECT_EQ(velocity, now["velocity"]) << name << " at " << now_;
        EXPECT_EQ(true, now["moving"]) << name << " at " << now_;
    }

    void expectAtRest(const std::string &name, int position) {
        const nlohmann::json now = axis(name);
        EXPECT_EQ(position, now["position"]) << name << " at " << now_;
        EXPECT_EQ(0, now["velocity"]) << name << " at " << now_;
        EXPECT_EQ(false, now["moving"]) << name << " at " << now_;
        EXPECT_EQ(nullptr, now["target"]) << name << " at " << now_;
    }

    /** Lets time pass, and then expects the same as expectAt(). */
    template <typename... Expected>
    void expectAtAfter(double seconds, const Expected &...expected) {
        pass(seconds);
        expectAt(expected...);
    }

    /** Lets time pass, and then expects the same as expectAtRest(). */
    void expectAtRestAfter(double seconds, const std::string &name, int position) {
        pass(seconds);
        expectAtRest(name, position);
    }

    void set(const std::string &key, const nlohmann::json &value) {
        setField("positioning", key, value);
    }
};

} // namespace camera::test

#endif
