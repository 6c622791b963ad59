// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Presets that outlive the camera: a file of the presets of each target of `presets_tours`.
 */
#ifndef QUARNSNMP_CAMERA_PRESETS_FILE_H
#define QUARNSNMP_CAMERA_PRESETS_FILE_H

#include "camera_model.h"
#include "json_file.h"

namespace camera {

/**
 * Keeps a camera's presets in a file, `{"presets_tours/1": [preset...], ...}` with presets as in camera files. Whenever
 * a call or the control program has changed them the file is replaced, before the call is answered: what was answered
 * is kept. A file that cannot be written fails no call: the presets then last until the camera restarts, and
 * the event `presets_not_kept` tells why.
 */
class PresetsFile {
public:
    /** Takes one line about a file that cannot be written. */
    using Complaint = std::function<void(const std::string &line)>;

    /**
     * Gives a camera the presets of the file, or makes the file when it is missing. A target that the file does not
     * mention has the presets of its camera file.
     * @param model  must outlive this object, and not have been used before
     * @throws FileError when the file cannot be used
     */
    PresetsFile(CameraModel &model, const std::string &path, Complaint complain);

private:
    void load(const std::string &text);
    void save() const;

    /** Saves what an event tells of, if it tells of presets. */
    void follow(const nlohmann::json &event);

    CameraModel &model_;
    std::string path_;
    Complaint complain_;
    std::vector<std::string> targets_;
    Events::Subscription subscription_;
};

} // namespace camera

#endif
