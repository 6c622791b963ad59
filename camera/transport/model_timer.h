// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Lets things happen in the camera in time, while nobody asks for them.
 */
#ifndef QUARNSNMP_CAMERA_MODEL_TIMER_H
#define QUARNSNMP_CAMERA_MODEL_TIMER_H

#include <boost/asio/io_context.hpp>
#include <boost/asio/steady_timer.hpp>

#include "camera_model.h"

namespace camera {

/**
 * Wakes a camera exactly when the next thing happens in it by itself. It waits for nothing while nothing will happen,
 * and starts to wait anew only when that time has changed.
 */
class ModelTimer {
public:
    /** @param model must outlive the timer, and have the real time as its clock */
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
