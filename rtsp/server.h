// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * The RTSP server.
 */
#ifndef QUARNSNMP_RTSP_SERVER_H
#define QUARNSNMP_RTSP_SERVER_H

#include <functional>
#include <string>

#include "media.h"

namespace rtsp {

/** What the server offers, and where. */
struct ServerOptions {
    std::string address = "127.0.0.1"; ///< to listen on
    int port = 8554;                   ///< 0 for any free one
    int cameras = 1;                   ///< number of the panel's cameras to offer
    Source source;                     ///< of the first camera
};

/**
 * Offers `/camera` (H.264) and `/camera-mjpeg` for the first camera of the panel, and `/camera/N` and `/camera-mjpeg/N`
 * for camera N. All clients of a stream share one connection to the panel, which exists while there are clients. Serves
 * until SIGINT or SIGTERM.
 * @param ready  called with the port when the server listens
 * @throws std::runtime_error if it cannot listen
 */
void serve(const ServerOptions &options, const std::function<void(int port)> &ready);

} // namespace rtsp

#endif
