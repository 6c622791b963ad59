// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * A running camera and its clients.
 */
#ifndef QUARNSNMP_TEST_CAMERA_PROCESS_H
#define QUARNSNMP_TEST_CAMERA_PROCESS_H

#include <string>

#include <nlohmann/json.hpp>

#include "camera.h"
#include "eventually.h"
#include "line_client.h"

namespace camera::test {

/** A request for the temperature, and a camera's answer to it unless it has been told otherwise. */
inline const std::string kTemperatureRequest = R"(["get_temperature_send","temperature/1"])";
inline const std::string kTemperatureAnswer = "[0,31500]";

/** The control socket's answer to a successful command. */
inline const nlohmann::json kDone = {{"ok", true}};

/** A camera with its sockets in a directory of the test. */
class RunningCamera : public support::Camera {
public:
    explicit RunningCamera(const std::string &directory, const std::string &camera = "dome", unsigned filesLimit = 0)
        : Camera(camera, {directory, {}, {}, filesLimit}) {}

    /** The line that announces that the camera is ready. */
    std::string readyLine() const {
        return output().awaitLine(0);
    }
};

} // namespace camera::test

#endif
