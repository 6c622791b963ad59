// SPDX-License-Identifier: Apache-2.0
#include "tone.h"

#include <algorithm>
#include <cmath>

namespace panel {

namespace {

constexpr double kWhite = 255.0;

std::uint8_t channel(double value) {
    return static_cast<std::uint8_t>(std::lround(std::clamp(value, 0.0, kWhite)));
}

/** Compresses highlights as a sensor does, instead of cutting them off. */
double shoulder(double light) {
    constexpr double kKnee = 0.75;
    const double beyond = (light - kKnee) / (1.0 - kKnee);
    return light <= kKnee ? light : 1.0 - (1.0 - kKnee) * std::exp(-beyond);
}

} // namespace

Color shade(const Color &color, double factor) {
    if (factor > 1.0) {
        return mix(color, {255, 255, 255}, std::min(factor - 1.0, 1.0));
    }
    return {channel(color.red * factor), channel(color.green * factor), channel(color.blue * factor)};
}

Color mix(const Color &first, const Color &second, double share) {
    const double rest = 1.0 - share;
    return {channel(first.red * rest + second.red * share), channel(first.green * rest + second.green * share),
            channel(first.blue * rest + second.blue * share)};
}

Tone::Tone(double exposure) {
    constexpr double kGamma = 2.2;
    for (std::size_t i = 0; i < exposed_.size(); ++i) {
        const double light = std::pow(static_cast<double>(i) / kWhite, kGamma) * exposure;
        exposed_.at(i) = std::pow(shoulder(light), 1.0 / kGamma);
    }
}

Tint Tone::at(const Color &color, double distance) const {
    return of(mix(color, kHaze, hazeAt(distance)));
}

double Tone::hazeAt(double distance) {
    constexpr double kVisibility = 1100.0;
    return 1.0 - std::exp(-distance / kVisibility);
}

Tint Tone::of(const Color &color) const {
    return {exposed_[color.red], exposed_[color.green], exposed_[color.blue]};
}

} // namespace panel
