// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Camera files: which services a camera has, how many targets each of them, and their values at the start.
 */
#ifndef QUARNSNMP_CAMERA_FILE_H
#define QUARNSNMP_CAMERA_FILE_H

#include "camera_model.h"
#include "json_file.h"

namespace camera {

/** Most targets that a service can have. */
inline constexpr std::size_t kMostTargets = 32;

/** What a camera file holds. */
struct CameraDescription {
    std::string name;
    std::string description;
    Services services;
};

/** Reads the text of a camera file. @param fileName for messages only @throws FileError */
CameraDescription parseCamera(const std::string &text, const std::string &fileName);

/** Reads a camera file. @throws FileError */
CameraDescription readCameraFile(const std::string &path);

} // namespace camera

#endif
