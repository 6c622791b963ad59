// SPDX-License-Identifier: Apache-2.0
#include "scene_painter.h"

#include "view.h"

namespace panel {

ScenePainter::ScenePainter(const Scene &scene, const FrameSettings &settings) : picture_(scene), settings_(settings) {}

std::string ScenePainter::draw(const FrameContent &content) {
    if (!content.state) {
        return picture_.drawNoSignal(content.name, content.problem, settings_, content.time);
    }
    return picture_.drawJpeg(viewOf(*content.state), settings_, content.time);
}

} // namespace panel
