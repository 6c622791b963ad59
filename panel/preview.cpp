// SPDX-License-Identifier: Apache-2.0
// Draws one picture of a scene into a JPEG or PNG file: for work on scenes, and for the pictures of the documentation.
#include <cstdio>
#include <filesystem>
#include <fstream>

#include <CLI/CLI.hpp>

#include "cairo_handles.h"
#include "picture.h"
#include "scene_file.h"

namespace {

struct Options {
    std::string scene = panel::kUsualScene;
    std::string output = "scene.jpg";
    double time = 1790000000.0;
    panel::View view;
    panel::FrameSettings frame;
};

void addOptions(CLI::App &app, Options &options) {
    app.add_option("--scene", options.scene, "name of a scene, or a scene file");
    app.add_option("--output", options.output, "JPEG or PNG file");
    app.add_option("--time", options.time, "time of the picture in seconds since 1970");
    app.add_option("--pan", options.view.bearing, "in degrees");
    app.add_option("--tilt", options.view.tilt, "in degrees");
    app.add_option("--zoom", options.view.zoom, "magnification");
    app.add_option("--defocus", options.view.defocus, "radius of the blur as a fraction of the width");
    app.add_option("--exposure", options.view.exposure, "1 for a normal brightness");
    app.add_option("--inputs", options.view.inputs, "states of the inputs, 0 or 1 each");
    app.add_option("--relays", options.view.relays, "states of the relays, 0 or 1 each");
    app.add_option("--width", options.frame.width, "in pixels");
    app.add_option("--height", options.frame.height, "in pixels");
    app.add_option("--quality", options.frame.quality, "of the JPEG, 1 to 100");
}

void writePng(const panel::Pixels &pixels, const std::string &path) {
    const panel::Surface2D surface(cairo_image_surface_create(CAIRO_FORMAT_RGB24, pixels.width, pixels.height));
    const std::size_t row = static_cast<std::size_t>(pixels.width) * 4;
    const auto stride = static_cast<std::size_t>(cairo_image_surface_get_stride(surface.get()));
    const auto rows = static_cast<std::size_t>(pixels.height);
    cairo_surface_flush(surface.get());
    for (std::size_t y = 0; y < rows; ++y) {
        std::copy_n(pixels.data + y * row, row, cairo_image_surface_get_data(surface.get()) + y * stride);
    }
    cairo_surface_mark_dirty(surface.get());
    const cairo_status_t status = cairo_surface_write_to_png(surface.get(), path.c_str());
    if (status != CAIRO_STATUS_SUCCESS) {
        throw std::runtime_error("cannot write " + path + ": " + cairo_status_to_string(status));
    }
}

void run(const Options &options) {
    using std::chrono::duration_cast;
    using Duration = panel::PictureTime::duration;
    panel::Picture picture(panel::readScene(options.scene));
    const panel::PictureTime time(duration_cast<Duration>(std::chrono::duration<double>(options.time)));
    if (std::filesystem::path(options.output).extension() == ".png") {
        writePng(picture.draw(options.view, options.frame, time), options.output);
        return;
    }
    std::ofstream file(options.output, std::ios::binary);
    file << picture.drawJpeg(options.view, options.frame, time) << std::flush;
    if (!file) {
        throw std::runtime_error("cannot write " + options.output);
    }
}

} // namespace

int main(int argc, char **argv) {
    try {
        CLI::App app("Draws one picture of a scene into a JPEG or PNG file.");
        Options options;
        options.view.name = "preview";
        addOptions(app, options);
        try {
            app.parse(argc, argv);
        } catch (const CLI::ParseError &error) {
            return app.exit(error);
        }
        run(options);
    } catch (const std::exception &error) {
        std::fprintf(stderr, "scene-preview: %s\n", error.what());
        return 1;
    }
    return 0;
}
