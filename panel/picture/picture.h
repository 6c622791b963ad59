// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Pictures of a scene as a camera sees it.
 */
#ifndef QUARNSNMP_PANEL_PICTURE_H
#define QUARNSNMP_PANEL_PICTURE_H

#include <chrono>
#include <memory>
#include <string>

#include "scene.h"
#include "view.h"

namespace panel {

/** Format of the pictures. */
struct FrameSettings {
    int width = 1280;  ///< in pixels, from kSmallestSide to kLargestSide
    int height = 720;  ///< in pixels, likewise
    int quality = 80;  ///< of the JPEG, from 1 to 100
    bool stamp = true; ///< prints name, time, direction and zoom into the picture
};

inline constexpr int kSmallestSide = 64;
inline constexpr int kLargestSide = 4096;

/** Pictures are drawn for this time; the traffic in the scene follows it too. */
using PictureTime = std::chrono::system_clock::time_point;

/** Pixels in the order blue, green, red, unused; rows from top to bottom, without gaps. */
struct Pixels {
    int width = 0;
    int height = 0;
    const std::uint8_t *data = nullptr; ///< valid until the next picture
};

/**
 * Draws a scene. The first picture prepares what does not change; a picture after a pause of any length is as cheap as
 * the next one. Not thread-safe; objects are independent of each other.
 */
class Picture {
public:
    explicit Picture(const Scene &scene);
    ~Picture();
    Picture(const Picture &) = delete;
    Picture &operator=(const Picture &) = delete;

    /** Draws a picture. @throws std::runtime_error for invalid settings and without memory */
    Pixels draw(const View &view, const FrameSettings &settings, PictureTime time);

    /** Draws a picture as a JPEG file. @throws std::runtime_error as draw() */
    std::string drawJpeg(const View &view, const FrameSettings &settings, PictureTime time);

    /**
     * Draws the test picture of a camera that sends none.
     * @param name    of the camera; can be empty
     * @param reason  one short line, such as "camera restarts"
     */
    std::string drawNoSignal(const std::string &name, const std::string &reason, const FrameSettings &settings,
                             PictureTime time);

private:
    class Parts;
    std::unique_ptr<Parts> parts_;
};

} // namespace panel

#endif
