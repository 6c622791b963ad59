// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * A camera whose lens has round numbers, for tests of what moves in it.
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

    /** Expects a drive to be somewhere on its way; a target of null is that of a velocity. */
    void expectAt(const std::string &service, int position, int velocity, const nlohmann::json &target) {
        const nlohmann::json now = state(service);
        EXPECT_EQ(position, now["position"]) << service << " at " << now_;
        EXPECT_EQ(velocity, now["velocity"]) << service << " at " << now_;
        EXPECT_EQ(target, now["target"]) << service << " at " << now_;
        EXPECT_EQ(true, now["moving"]) << service << " at " << now_;
    }

    void expectAtRest(const std::string &service, int position) {
        const nlohmann::json now = state(service);
        EXPECT_EQ(position, now["position"]) << service << " at " << now_;
        EXPECT_EQ(0, now["velocity"]) << service << " at " << now_;
        EXPECT_EQ(nullptr, now["target"]) << service << " at " << now_;
        EXPECT_EQ(false, now["moving"]) << service << " at " << now_;
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

    /** What the drive of a service was told to have done, as in "3.5 move_stopped 2000", with its time and position. */
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

    /** Expects a call to be refused, with nothing but that to be told and nothing to be changed. */
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
