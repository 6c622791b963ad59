// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Camera whose lens has round numbers, for tests of its drives.
 */
#ifndef QUARNSNMP_TEST_LENS_CAMERA_H
#define QUARNSNMP_TEST_LENS_CAMERA_H

#include "steered_camera.h"

namespace camera::test {

/**
 * A camera in manual mode, whose drives all stand at 1000 of 0 to 10000, where the picture is sharp and bright enough,
 * and go 1000 a second, the stepper motors from 10 on. A focus run searches for half a second.
 */
class LensCamera : public SteeredCamera {
protected:
    LensCamera()
        : SteeredCamera(R"({"name": "lens", "services": {
        "device_management": {"targets": [{"rebootSeconds": 5}]},
        "exposure": {"targets": [{"manualMode": true}]},
        "focus_stepper": {"targets": [{"position": 1000, "maximum": 10000, "minimumSpeed": 10, "maximumSpeed": 1000,
            "secondPosition": 77, "manualMode": true, "sharpPosition": 1000, "searchTime": 500}]},
        "iris": {"targets": [{"position": 1000, "maximum": 10000, "speed": 1000, "automaticPosition": 1000}]},
        "lens_focus": {"targets": [{"position": 1000, "maximum": 10000, "speed": 1000, "manualMode": true,
            "sharpPosition": 1000, "searchTime": 500}]},
        "zoom_stepper": {"targets": [{"position": 1000, "maximum": 10000, "minimumSpeed": 10, "maximumSpeed": 1000}]}
    }})") {}

    nlohmann::json state(const std::string &service) {
        return camera_->state(service + "/1");
    }

    /** Expects a drive in motion; the target of a run is null. */
    void expectAt(const std::string &service, int position, int velocity, const nlohmann::json &target) {
        expectDrive(service, state(service), position, velocity, true);
        EXPECT_EQ(target, state(service)["target"]) << service << " at " << now_;
    }

    void expectAtRest(const std::string &service, int position) {
        expectDrive(service, state(service), position, 0, false);
    }

    /** Returns the events of a drive as time, kind and position, such as "3.5 move_stopped 2000". */
    std::vector<std::string> happened(const std::string &service) {
        camera_->advance();
        std::vector<std::string> lines;
        for (std::size_t i = 0; i < events_.seen().size(); ++i) {
            const nlohmann::json &event = events_.seen()[i];
            if (event.contains("position") && event["target"] == service + "/1") {
                lines.push_back(nlohmann::json(events_.times()[i]).dump() + " " + event["event"].get<std::string>() +
                                " " + event["position"].dump());
            }
        }
        return lines;
    }

    /**
     * Runs scripts on the drive of a service. The fixture's commands extend those of this class. The commands `move`
     * and `run` are the calls of the service that move it to a position or at a velocity.
     */
    void runDrive(const std::string &service, const std::vector<Script> &scripts, ScriptCommands commands = {}) {
        using Arguments = ScriptArguments;
        const auto call = [=](const char *operation) {
            return [=](const Arguments &a) { EXPECT_EQ(wire::kSuccess, callService(service, operation, a)); };
        };
        commands["move"] = call(service == "lens_focus" ? "set_manual_focus_position_send" : "set_position_send");
        commands["run"] = call("set_velocity_send");
        commands["set"] = [=](const Arguments &a) { setField(service, a.at(0), a.at(1)); };
        commands["at"] = [=](const Arguments &a) { expectAt(service, a.at(0), a.at(1), a.at(2)); };
        commands["rest"] = [=](const Arguments &a) { expectAtRest(service, a.at(0)); };
        commands["field"] = [=](const Arguments &a) { EXPECT_EQ(a.at(1), state(service)[a.at(0).get<std::string>()]); };
        commands["events"] = [=](const Arguments &a) {
            nlohmann::json words = nlohmann::json::array();
            for (const std::string &event : happened(service)) {
                std::istringstream text(event);
                double time = 0.0;
                std::string kind;
                int position = 0;
                text >> time >> kind >> position;
                words.insert(words.end(), {time, kind, position});
            }
            EXPECT_EQ(nlohmann::json(a), words);
        };
        runScripts(scripts, std::move(commands));
    }

    /** Expects that a call is refused: it changes nothing, and its command is the only event. */
    void expectRefused(wire::Status status, const std::string &service, const std::string &operation,
                       const nlohmann::json &arguments) {
        const nlohmann::json before = state(service);
        events_.clear();
        EXPECT_EQ(status, callService(service, operation, arguments)) << operation << " " << arguments;
        EXPECT_EQ(before, state(service)) << operation << " " << arguments;
        EXPECT_EQ(1U, events_.seen().size()) << operation << " " << arguments;
    }
};

} // namespace camera::test

#endif
