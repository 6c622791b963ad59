// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Fuzzer of scene files. A file is either refused with an error that names it, or small pictures of the scene can be
 * drawn in any direction and at any zoom.
 */
#include <string>

#include "finding.h"
#include "picture.h"
#include "scene_file.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size);

namespace {

constexpr const char *kName = "scene.json";

void draw(const panel::Scene &scene) {
    panel::Picture picture(scene);
    panel::FrameSettings settings;
    settings.width = 160;
    settings.height = 90;
    settings.stamp = false;
    panel::View view;
    view.inputs = {true};
    view.relays = {true};
    const panel::PictureTime time(std::chrono::seconds(1790000000));
    for (const double zoom : {1.0, 30.0}) {
        for (const double tilt : {-90.0, -20.0, 20.0}) {
            view.zoom = zoom;
            view.tilt = tilt;
            view.bearing += 77.0;
            picture.draw(view, settings, time);
        }
    }
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    const std::string text(reinterpret_cast<const char *>(data), size);
    try {
        draw(panel::parseScene(text, kName));
    } catch (const camera::FileError &error) {
        if (std::string(error.what()).rfind(kName, 0) != 0) {
            fuzz::reportFinding(std::string("an error without the name of the file: ") + error.what());
        }
    }
    return 0;
}
