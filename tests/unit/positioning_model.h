// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Expected results of the conversions of positioning, by other means than the module's: bands between corner
 * points, and fractions of integers in place of floating-point numbers.
 */
#ifndef QUARNSNMP_POSITIONING_MODEL_H
#define QUARNSNMP_POSITIONING_MODEL_H

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <limits>

#include "positioning_test.h"

namespace model {

/** A stretch in which a step of one hundredth of a degree is always the same step of the service. */
struct Band {
    int from;
    int to;
    int atFrom;
    int atTo;
};

inline constexpr std::array<Band, 4> kTiltBands{
    {{0, 9000, 0, 90000}, {9001, 18000, 10, 90000}, {18001, 27000, -10, -90000}, {27001, 35999, -89990, -10}}};

/** Tilt of the service for 0 to 35999, by the corner points of the bands. */
inline int zorvaTilt(int ntcip) {
    const auto *band = std::find_if(kTiltBands.begin(), kTiltBands.end(), [&](const Band &b) { return ntcip <= b.to; });
    return band->atFrom + (ntcip - band->from) * (band->atTo - band->atFrom) / (band->to - band->from);
}

/** An integer fraction; the denominator is positive. */
struct Fraction {
    std::int64_t numerator;
    std::int64_t denominator;
};

/** Quotient of two numbers that are not negative, to the nearest integer; `halfUp` says where a half goes. */
template <typename HalfUp>
std::int64_t rounded(std::int64_t numerator, std::int64_t denominator, HalfUp halfUp) {
    const std::int64_t whole = numerator / denominator;
    const std::int64_t twiceRest = 2 * (numerator % denominator);
    const bool up = twiceRest > denominator || (twiceRest == denominator && halfUp(whole));
    return up ? whole + 1 : whole;
}

/**
 * The nearest integer of a fraction that is first held in single precision: 24 significant bits, halves to the even
 * mantissa; then halves away from zero. Beyond an int it is the nearest int.
 */
inline int nearestOfFloat(Fraction fraction) {
    if (fraction.numerator == 0) {
        return 0;
    }
    const bool negative = fraction.numerator < 0;
    std::int64_t numerator = std::abs(fraction.numerator);
    std::int64_t denominator = fraction.denominator;
    int exponent = 0;
    for (; numerator / denominator < (std::int64_t{1} << 23); ++exponent) {
        numerator *= 2;
    }
    for (; numerator / denominator >= (std::int64_t{1} << 24); --exponent) {
        denominator *= 2;
    }
    const std::int64_t mantissa = rounded(numerator, denominator, [](std::int64_t whole) { return whole % 2 != 0; });
    const auto away = [](std::int64_t /*whole*/) { return true; };
    const std::int64_t magnitude =
        exponent >= 0 ? rounded(mantissa, std::int64_t{1} << exponent, away) : mantissa << -exponent;
    return static_cast<int>(std::clamp<std::int64_t>(negative ? -magnitude : magnitude, std::numeric_limits<int>::min(),
                                                     std::numeric_limits<int>::max()));
}

/** Linear mapping from one range to another. The bounds of `from` differ. */
inline int scaled(int value, const Limits &from, const Limits &to) {
    const std::int64_t sign = from.max > from.min ? 1 : -1;
    const std::int64_t span = sign * (std::int64_t{from.max} - from.min);
    const std::int64_t above = sign * (std::int64_t{value} - from.min) * (std::int64_t{to.max} - to.min);
    return nearestOfFloat({above + std::int64_t{to.min} * span, span});
}

inline int zorvaZoom(int ntcip, const Limits &zoom) {
    return scaled(ntcip, {0, 65535}, zoom);
}

inline int ntcipZoom(int zorva, const Limits &zoom) {
    return zoom.min == zoom.max ? 0 : scaled(zorva, zoom, {0, 65535});
}

/** Velocity of pan or tilt within these limits. */
inline int velocity(int speed, const Limits &limits) {
    return speed == 0 ? 0 : scaled(std::abs(speed), {0, 127}, limits);
}

/** Fraction of the velocity range of an axis. */
inline float fraction(int speed, const Limits &limits) {
    if (limits.min == limits.max) {
        return 0.0F;
    }
    // The range counts as an unsigned number of 32 bits, also where the limits are the wrong way round.
    const auto range = static_cast<std::uint32_t>(std::int64_t{limits.max} - limits.min);
    return static_cast<float>(static_cast<long double>(scaled(std::abs(speed), {0, 127}, limits)) / range);
}

} // namespace model

#endif
