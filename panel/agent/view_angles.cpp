// SPDX-License-Identifier: Apache-2.0
#include "view_angles.h"

#include <algorithm>
#include <cmath>

namespace panel {

namespace {

constexpr double kHalfTurn = 180.0;
constexpr double kTurn = 360.0;
const double kPi = std::acos(-1.0);

double radians(double degrees) {
    return degrees * kPi / kHalfTurn;
}

double degrees(double angle) {
    return angle * kHalfTurn / kPi;
}

/** Tangent of half an angle: half a side of the picture at the distance 1. */
double halfSide(double angle) {
    return std::tan(radians(angle) / 2.0);
}

} // namespace

double magnifiedAngle(double angle, double magnification) {
    return degrees(2.0 * std::atan(halfSide(angle) / magnification));
}

double angleOfSide(double angle, double ratio) {
    return degrees(2.0 * std::atan(halfSide(angle) * ratio));
}

Direction directionAt(const ViewAngles &view, double x, double y) {
    const double right = (2.0 * x - 1.0) * halfSide(view.horizontal);
    const double up = (1.0 - 2.0 * y) * halfSide(view.vertical);
    const double sine = std::sin(radians(view.tilt));
    const double cosine = std::cos(radians(view.tilt));
    // The point relative to the camera's bearing: forwards along the ground, and upwards.
    const double ahead = cosine - up * sine;
    const double height = sine + up * cosine;
    double pan = std::fmod(view.pan + degrees(std::atan2(right, ahead)) + kTurn, kTurn);
    const double tilt = degrees(std::atan2(height, std::hypot(right, ahead)));
    // Positions have hundredths of a degree, and 360.00 is none of them.
    constexpr double kSmallest = 0.005;
    if (pan >= kTurn - kSmallest) {
        pan = 0.0;
    }
    return {pan, std::clamp(tilt, view.lowestTilt, view.highestTilt)};
}

} // namespace panel
