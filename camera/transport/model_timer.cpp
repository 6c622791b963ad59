// SPDX-License-Identifier: Apache-2.0
#include "model_timer.h"

#include <algorithm>
#include <chrono>
#include <cmath>

namespace camera {

namespace {

/** Returns the timer duration for a time span, rounded up: an early timer would have to wait again. */
std::chrono::microseconds waitFor(double seconds) {
    // Keeps the conversion in range; a wake-up every eleven days costs nothing.
    constexpr double kLongest = 1e6;
    constexpr double kPerSecond = 1e6;
    return std::chrono::microseconds(std::llround(std::ceil(std::clamp(seconds, 0.0, kLongest) * kPerSecond)));
}

} // namespace

ModelTimer::ModelTimer(boost::asio::io_context &io, CameraModel &model) : model_(model), timer_(io) {
    model_.onNextTimeChange([this] { arm(); });
    arm();
}

ModelTimer::~ModelTimer() {
    model_.onNextTimeChange(nullptr);
}

void ModelTimer::arm() {
    if (model_.nextTime() == kNever) {
        timer_.cancel();
        return;
    }
    timer_.expires_after(waitFor(model_.nextTime() - model_.events().seconds()));
    timer_.async_wait([this](const boost::system::error_code &error) {
        if (error) {
            return;
        }
        const double awaited = model_.nextTime();
        model_.advance();
        if (model_.nextTime() <= awaited) {
            arm();
        }
    });
}

} // namespace camera
