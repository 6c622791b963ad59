/**
 * @file
 * Camera files: which services a camera has, how many targets each of them, and their values at the start.
 */
#ifndef QUARNSNMP_CAMERA_FILE_H
#define QUARNSNMP_CAMERA_FILE_H

#include "camera_model.h"

#include <stdexcept>

namespace camera {

/** Most targets that a service can have. */
inline constexpr std::size_t kMostTargets = 32;

/** A camera file that cannot be used; what() is one line with the file, the place in it and what was expected. */
class CameraFileError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/** What a camera file holds. */
struct CameraDescription {
    std::string name;
    std::string description;
    Services services;
};

/** Reads the text of a camera file. @param fileName for messages only @throws CameraFileError */
CameraDescription parseCamera(const std::string &text, const std::string &fileName);

/** Reads a camera file. @throws CameraFileError */
CameraDescription readCameraFile(const std::string &path);

/** A camera that can be chosen by its name. */
struct CameraFile {
    std::string name;
    std::string path;
};

/** The camera files of a directory, `NAME.json` each, in alphabetical order; none when it cannot be read. */
std::vector<CameraFile> cameraFiles(const std::string &directory);

/**
 * Finds the file that `--camera` means: a value with a slash or the ending `.json` is a path, any other one the name of
 * a camera in the directory.
 * @throws CameraFileError when there is no such camera
 */
std::string findCamera(const std::string &nameOrPath, const std::string &directory);

} // namespace camera

#endif
