// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Camera with a simulated clock, for tests of moves.
 */
#ifndef QUARNSNMP_TEST_MOVING_CAMERA_H
#define QUARNSNMP_TEST_MOVING_CAMERA_H

#include "steered_camera.h"

namespace camera::test {

/** Default arguments of commands. */
inline constexpr double kFullSpeed = 1.0;
inline constexpr int kPriority = 5;

/**
 * Camera whose axes have round numbers: pan is endless and takes a second to its full speed of 100000, tilt a second
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

    /** Moves one axis to a position. */
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

    /** Moves one axis at a velocity. @param timeout  in milliseconds */
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

    /** Expects an axis in motion. */
    void expectAt(const std::string &name, int position, int velocity) {
        expectDrive(name, axis(name), position, velocity, true);
    }

    void expectAtRest(const std::string &name, int position) {
        expectDrive(name, axis(name), position, 0, false);
    }

    /** Runs scripts. The arguments of a command are those of the function of its name. */
    void runMoves(const std::vector<Script> &scripts) {
        using Arguments = ScriptArguments;
        const auto argument = [](const Arguments &a, std::size_t i, auto otherwise) {
            return a.size() > i ? a[i].get<decltype(otherwise)>() : otherwise;
        };
        ScriptCommands commands;
        commands["move"] = [=](const Arguments &a) {
            EXPECT_EQ(wire::kSuccess,
                      move(a.at(0), a.at(1), argument(a, 2, kFullSpeed), argument(a, 3, int{kPriority})));
        };
        commands["run"] = [=](const Arguments &a) {
            EXPECT_EQ(wire::kSuccess, run(a.at(0), a.at(1), argument(a, 2, 0U), argument(a, 3, int{kPriority})));
        };
        commands["call"] = [=](const Arguments &a) { EXPECT_EQ(wire::kSuccess, call(a.at(0), a.at(1))); };
        commands["results"] = [=](const Arguments &a) { EXPECT_EQ(a.at(0), answer_.results); };
        commands["set"] = [=](const Arguments &a) { set(a.at(0), a.at(1)); };
        commands["at"] = [=](const Arguments &a) { expectAt(a.at(0), a.at(1), a.at(2)); };
        commands["rest"] = [=](const Arguments &a) { expectAtRest(a.at(0), a.at(1)); };
        commands["field"] = [=](const Arguments &a) {
            std::string path = "/" + a.at(0).get<std::string>();
            std::replace(path.begin(), path.end(), '.', '/');
            EXPECT_EQ(a.at(1), camera_->state("positioning/1").at(nlohmann::json::json_pointer(path)));
        };
        commands["times"] = [=](const Arguments &a) {
            const std::vector<double> &times = events_.times();
            ASSERT_LE(a.size(), times.size());
            EXPECT_EQ(nlohmann::json(a), nlohmann::json(std::vector<double>(
                                             times.end() - static_cast<std::ptrdiff_t>(a.size()), times.end())));
        };
        commands["moves"] = [=](const Arguments &a) {
            std::string moves;
            for (const std::string &each : events_.moves()) {
                moves += (moves.empty() ? "" : " ") + each;
            }
            std::string expected;
            for (const nlohmann::json &each : a) {
                expected += (expected.empty() ? "" : " ") + each.get<std::string>();
            }
            EXPECT_EQ(expected, moves);
        };
        runScripts(scripts, std::move(commands));
    }

    void set(const std::string &key, const nlohmann::json &value) {
        setField("positioning", key, value);
    }
};

} // namespace camera::test

#endif
