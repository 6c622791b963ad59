// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Cameras and helpers for tests of the model.
 */
#ifndef QUARNSNMP_TEST_CAMERAS_H
#define QUARNSNMP_TEST_CAMERAS_H

#include "camera_file.h"

namespace camera::test {

/** Makes a camera from the contents of a file. */
inline std::unique_ptr<CameraModel> makeCamera(CameraDescription description, Clock clock = startClock()) {
    return std::make_unique<CameraModel>(description.name, description.description, std::move(description.services),
                                         std::move(clock));
}

/** Makes a camera from the text of a camera file. */
inline std::unique_ptr<CameraModel> makeCamera(const std::string &text, Clock clock = startClock()) {
    return makeCamera(parseCamera(text, "test.json"), std::move(clock));
}

/** Makes a camera with one target with the given fields. */
inline std::unique_ptr<CameraModel> makeCameraOf(const std::string &service, const nlohmann::json &fields) {
    const nlohmann::json target = {{"targets", nlohmann::json::array({fields})}};
    return makeCamera(nlohmann::json({{"name", "test"}, {"services", {{service, target}}}}).dump());
}

/** Configures a relay, so that calls can switch it. */
inline void setUpRelay(CameraModel &camera, const std::string &relay) {
    camera.set(relay, "configuration.c1", 1);
}

/** Makes a shipped camera. */
inline std::unique_ptr<CameraModel> shippedCamera(const std::string &name, Clock clock = startClock()) {
    return makeCamera(readCameraFile(std::string(QUARNSNMP_CAMERAS) + "/" + name + ".json"), std::move(clock));
}

/** Returns the message of a function's FileError, or "no error". */
inline std::string errorOf(const std::function<void()> &function) {
    try {
        function();
    } catch (const FileError &error) {
        return error.what();
    }
    return "no error";
}

} // namespace camera::test

#endif
