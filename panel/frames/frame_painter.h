// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * What draws the frames of a camera.
 */
#ifndef QUARNSNMP_PANEL_FRAME_PAINTER_H
#define QUARNSNMP_PANEL_FRAME_PAINTER_H

#include <chrono>
#include <memory>
#include <string>

#include "camera_state.h"

namespace panel {

/** What a frame shows. */
struct FrameContent {
    std::shared_ptr<const CameraState> state; ///< null without a camera
    std::string name;                         ///< of the camera; may be empty
    std::string problem;                      ///< reason for showing no picture; empty for a picture
    std::chrono::system_clock::time_point time;
};

/** Draws frames in a thread of its own, one at a time. */
class FramePainter {
public:
    FramePainter() = default;
    FramePainter(const FramePainter &) = delete;
    FramePainter &operator=(const FramePainter &) = delete;
    virtual ~FramePainter() = default;

    /** Draws a JPEG file. @throws std::exception */
    virtual std::string draw(const FrameContent &content) = 0;
};

} // namespace panel

#endif
