// SPDX-License-Identifier: Apache-2.0
#include "media.h"

#include <array>

#include <gst/gst.h>

namespace rtsp {

namespace {

struct Element {
    const char *name;
    const char *package;
};

constexpr std::array<Element, 11> kElements = {{
    {"souphttpsrc", "gstreamer1.0-plugins-good"},
    {"multipartdemux", "gstreamer1.0-plugins-good"},
    {"queue", "libgstreamer1.0-0"},
    {"jpegparse", "gstreamer1.0-plugins-bad"},
    {"jpegdec", "gstreamer1.0-plugins-good"},
    {"videorate", "gstreamer1.0-plugins-base"},
    {"videoconvert", "gstreamer1.0-plugins-base"},
    {"openh264enc", "gstreamer1.0-plugins-bad"},
    {"h264parse", "gstreamer1.0-plugins-bad"},
    {"rtph264pay", "gstreamer1.0-plugins-good"},
    {"rtpjpegpay", "gstreamer1.0-plugins-good"},
}};

/**
 * Reads the panel's pictures. The time of a picture is that of its arrival, because the panel's stream has none. A slow
 * encoder skips pictures instead of falling behind.
 */
std::string pictures(const Source &source) {
    return "souphttpsrc location=http://" + source.panel + "/stream.mjpeg?camera=" + std::to_string(source.camera) +
           " is-live=true do-timestamp=true timeout=10 retries=0 ! multipartdemux single-stream=true ! image/jpeg ! "
           "queue leaky=downstream max-size-buffers=4 ! ";
}

} // namespace

std::string h264Pipeline(const Source &source) {
    const std::string rate = std::to_string(source.framesPerSecond);
    // A key frame every two seconds: a client that joins waits for one.
    return "( " + pictures(source) + "jpegdec ! videorate ! video/x-raw,framerate=" + rate +
           "/1 ! videoconvert ! video/x-raw,format=I420 ! openh264enc usage-type=camera rate-control=bitrate bitrate=" +
           std::to_string(source.bitsPerSecond) + " gop-size=" + std::to_string(2 * source.framesPerSecond) +
           " ! h264parse config-interval=-1 ! rtph264pay name=pay0 pt=96 )";
}

std::string jpegPipeline(const Source &source) {
    return "( " + pictures(source) + "jpegparse ! rtpjpegpay name=pay0 pt=26 )";
}

std::string missingElements() {
    std::string missing;
    for (const Element &element : kElements) {
        GstElementFactory *factory = gst_element_factory_find(element.name);
        if (factory != nullptr) {
            gst_object_unref(factory);
            continue;
        }
        missing.append(missing.empty() ? "" : ", ")
            .append(element.name)
            .append(" (")
            .append(element.package)
            .append(")");
    }
    return missing;
}

} // namespace rtsp
