// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * The media pipelines of the streams.
 */
#ifndef QUARNSNMP_RTSP_MEDIA_H
#define QUARNSNMP_RTSP_MEDIA_H

#include <string>

namespace rtsp {

/** A stream of the panel, as the pipelines read it. */
struct Source {
    std::string panel;   ///< the panel's address, as HOST:PORT
    int camera = 0;      ///< number of the camera in the panel
    int framesPerSecond; ///< of the streams; the panel may draw fewer
    int bitsPerSecond;   ///< of the H.264 stream
};

/** Pipeline of an H.264 stream, in the notation of gst-launch. */
std::string h264Pipeline(const Source &source);

/** Pipeline of a stream of JPEG pictures, which are not encoded again. */
std::string jpegPipeline(const Source &source);

/** Names the elements of both pipelines that this machine lacks, with their package; empty if all are there. */
std::string missingElements();

} // namespace rtsp

#endif
