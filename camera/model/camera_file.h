// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Camera files: the services of a camera, their targets and the start values of the fields.
 */
#ifndef QUARNSNMP_CAMERA_FILE_H
#define QUARNSNMP_CAMERA_FILE_H

#include "camera_model.h"
#include "text_file.h"

namespace camera {

/** Largest number of targets of a service. */
inline constexpr std::size_t kMostTargets = 32;

/** Contents of a camera file. */
struct CameraDescription {
    std::string name;
    std::string description;
    Services services;
};

/** Parses the text of a camera file. @param fileName  for error messages @throws FileError */
CameraDescription parseCamera(const std::string &text, const std::string &fileName);

/** Reads a camera file. @throws FileError */
CameraDescription readCameraFile(const std::string &path);

} // namespace camera

#endif
