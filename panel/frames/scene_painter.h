// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Frames of a scene.
 */
#ifndef QUARNSNMP_PANEL_SCENE_PAINTER_H
#define QUARNSNMP_PANEL_SCENE_PAINTER_H

#include "frame_painter.h"
#include "picture.h"

namespace panel {

/** Draws what the camera sees of a scene, or why there is no picture. */
class ScenePainter : public FramePainter {
public:
    ScenePainter(const Scene &scene, const FrameSettings &settings);

    std::string draw(const FrameContent &content) override;

private:
    Picture picture_;
    FrameSettings settings_;
};

} // namespace panel

#endif
