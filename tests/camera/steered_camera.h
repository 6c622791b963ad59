// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * A camera with a clock that tests set.
 */
#ifndef QUARNSNMP_TEST_STEERED_CAMERA_H
#define QUARNSNMP_TEST_STEERED_CAMERA_H

#include <gmock/gmock.h>

#include "event_recorder.h"
#include "test_cameras.h"

namespace camera::test {

/** A camera that stands at 0 seconds until a test lets time pass. */
class SteeredCamera : public testing::Test {
protected:
    /** @param file  text of the camera file */
    explicit SteeredCamera(const std::string &file) : camera_(makeCamera(file, [this] { return now_; })) {}

    /** Lets time pass without asking the camera for anything. */
    void pass(double seconds) {
        now_ += seconds;
    }

    /** Lets time pass as a timer would that wakes the camera whenever something happens. */
    void passAwake(double seconds) {
        const double end = now_ + seconds;
        while (camera_->nextTime() <= end) {
            now_ = camera_->nextTime();
            camera_->advance();
        }
        now_ = end;
        camera_->advance();
    }

    /** Calls an operation of a service's first target. */
    wire::Status callService(const std::string &service, const std::string &operation,
                             const nlohmann::json &arguments) {
        nlohmann::json request = nlohmann::json::array({operation, service + "/1"});
        request.insert(request.end(), arguments.begin(), arguments.end());
        answer_ = camera_->call(service, request);
        return answer_.status;
    }

    /** Sets a field of a service's first target. */
    void setField(const std::string &service, const std::string &key, const nlohmann::json &value) {
        const std::optional<Problem> problem = camera_->set(service + "/1", key, value);
        ASSERT_FALSE(problem) << toString(*problem);
    }

    double now_ = 0.0;
    std::unique_ptr<CameraModel> camera_;
    EventRecorder events_{camera_->events()};
    Answer answer_;
};

} // namespace camera::test

#endif
