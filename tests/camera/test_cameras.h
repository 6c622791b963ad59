// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Cameras for tests of the model.
 */
#ifndef QUARNSNMP_TEST_CAMERAS_H
#define QUARNSNMP_TEST_CAMERAS_H

#include "camera_file.h"

namespace camera::test {

/** Makes a camera of what a file holds. */
inline std::unique_ptr<CameraModel> makeCamera(CameraDescription description, Clock clock = startClock()) {
    return std::make_unique<CameraModel>(description.name, description.description, std::move(description.services),
                                         std::move(clock));
}

/** Makes a camera of the text of a camera file. */
inline std::unique_ptr<CameraModel> makeCamera(const std::string &text, Clock clock = startClock()) {
    return makeCamera(parseCamera(text, "test.json"), std::move(clock));
}

/** Makes a camera with one service that has one target with these fields. */
inline std::unique_ptr<CameraModel> makeCameraOf(const std::string &service, const nlohmann::json &fields) {
    const nlohmann::json target = {{"targets", nlohmann::json::array({fields})}};
    return makeCamera(nlohmann::json({{"name", "test"}, {"services", {{service, target}}}}).dump());
}

/** Sets up a relay, which cannot be switched before. */
inline void setUpRelay(CameraModel &camera, const std::string &relay) {
    camera.set(relay, "configuration.c1", 1);
}

/** A camera that the project ships. */
inline std::unique_ptr<CameraModel> shippedCamera(const std::string &name, Clock clock = startClock()) {
    return makeCamera(readCameraFile(std::string(QUARNSNMP_CAMERAS) + "/" + name + ".json"), std::move(clock));
}

} // namespace camera::test

#endif
