// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Storage of presets in a file.
 */
#ifndef QUARNSNMP_CAMERA_PRESETS_FILE_H
#define QUARNSNMP_CAMERA_PRESETS_FILE_H

#include "camera_model.h"
#include "warning_handler.h"

namespace camera {

/**
 * File of a camera's presets, `{"presets_tours/1": [preset...], ...}` with presets as in camera files. Each change of
 * presets replaces the file before the call is answered, so no confirmed change is lost. A write error fails no call:
 * the presets then last until the camera restarts, and the event `presets_not_kept` has the error message.
 */
class PresetsFile {
public:
    /**
     * Loads the presets of the file into the camera, or creates the file. A target without an entry in the file keeps
     * the presets of its camera file.
     * @param model  must outlive this object; must not have been used before
     * @param warn  receives write errors
     * @throws FileError when the file cannot be read, parsed or created
     */
    PresetsFile(CameraModel &model, const std::string &path, WarningHandler warn);

private:
    void load(const std::string &text);
    void save() const;

    /** Saves the presets after an event that changes them. */
    void follow(const nlohmann::json &event);

    CameraModel &model_;
    std::string path_;
    WarningHandler warn_;
    std::vector<std::string> targets_;
    Events::Subscription subscription_;
};

} // namespace camera

#endif
