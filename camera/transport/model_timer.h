// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Timer for the timed events of the camera model.
 */
#ifndef QUARNSNMP_CAMERA_MODEL_TIMER_H
#define QUARNSNMP_CAMERA_MODEL_TIMER_H

#include <boost/asio/io_context.hpp>
#include <boost/asio/steady_timer.hpp>

#include "camera_model.h"

namespace camera {

/**
 * Timer that advances a camera at the time of its next timed event. It restarts only when that time changes, and is
 * idle without one.
 */
class ModelTimer {
public:
    /** @param model  must outlive the timer; its clock must be the real time */
    ModelTimer(boost::asio::io_context &io, CameraModel &model);
    ModelTimer(const ModelTimer &) = delete;
    ModelTimer &operator=(const ModelTimer &) = delete;
    ~ModelTimer();

private:
    void arm();

    CameraModel &model_;
    boost::asio::steady_timer timer_;
};

} // namespace camera

#endif
