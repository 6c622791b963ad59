// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Frames of one camera for any number of clients.
 */
#ifndef QUARNSNMP_PANEL_FRAME_SOURCE_H
#define QUARNSNMP_PANEL_FRAME_SOURCE_H

#include <chrono>
#include <functional>
#include <list>
#include <memory>
#include <vector>

#include <boost/asio/io_context.hpp>
#include <boost/asio/steady_timer.hpp>
#include <boost/asio/thread_pool.hpp>

#include "camera_link.h"
#include "frame_painter.h"
#include "server.h"

namespace panel {

/**
 * Draws each frame once and passes it to all clients. Without a client, nothing is drawn and the camera is not asked.
 * All functions belong to the thread of the io_context; the drawing has a thread of the pool.
 */
class FrameSource : public std::enable_shared_from_this<FrameSource> {
public:
    /** Takes a frame; null when it could not be drawn. */
    using Taker = std::function<void(const SharedText &jpeg)>;

    /** @param framesPerSecond  1 to 60 */
    FrameSource(boost::asio::io_context &io, boost::asio::thread_pool &pool, std::shared_ptr<CameraLink> link,
                std::unique_ptr<FramePainter> painter, int framesPerSecond);

    /** Sends all frames to a client, as parts of a stream. @return the source lives as long as the client keeps this */
    std::shared_ptr<void> watch(const std::weak_ptr<Watcher> &watcher);

    /** Passes one new frame. */
    void snapshot(Taker taker);

    /** Stops drawing for ever. */
    void stop();

private:
    void schedule();
    void begin();
    void draw(const std::vector<Taker> &takers);
    void deliver(const SharedText &jpeg, const std::vector<Taker> &takers);
    bool hasClients();

    boost::asio::io_context &io_;
    boost::asio::thread_pool &pool_;
    std::shared_ptr<CameraLink> link_;
    std::shared_ptr<FramePainter> painter_;
    std::chrono::microseconds period_;
    boost::asio::steady_timer timer_;
    std::list<std::weak_ptr<Watcher>> watchers_;
    std::vector<Taker> takers_;
    std::chrono::steady_clock::time_point started_{}; ///< of the last frame
    bool isDrawing_ = false;
    bool isStopped_ = false;
};

} // namespace panel

#endif
