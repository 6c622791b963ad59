// SPDX-License-Identifier: Apache-2.0
#include "blur.h"

#include <algorithm>
#include <cmath>

namespace panel {

namespace {

constexpr std::size_t kChannels = 4;

/** Averages a row or a column. @param step  from one pixel to the next, in octets */
void averageLine(std::uint8_t *line, std::size_t count, std::size_t step, std::size_t radius,
                 std::vector<std::uint8_t> &copy) {
    for (std::size_t channel = 0; channel < kChannels - 1; ++channel) {
        for (std::size_t i = 0; i < count; ++i) {
            copy[i] = line[i * step + channel];
        }
        const auto pixel = [&](std::size_t shifted) {
            // Positions are shifted by the radius, so that they are never negative.
            return static_cast<unsigned>(copy[std::min(std::max(shifted, radius) - radius, count - 1)]);
        };
        const unsigned size = std::max(static_cast<unsigned>(radius) * 2U + 1U, 1U);
        unsigned sum = 0;
        for (std::size_t i = 0; i < size; ++i) {
            sum += pixel(i);
        }
        for (std::size_t i = 0; i < count; ++i) {
            line[i * step + channel] = static_cast<std::uint8_t>((sum + size / 2) / size);
            sum += pixel(i + 2 * radius + 1);
            sum -= pixel(i);
        }
    }
}

} // namespace

BlurPlan planBlur(double radius) {
    constexpr double kInvisible = 0.35;
    constexpr double kLargestReduction = 10.0;
    constexpr double kFilterFrom = 1.5;
    if (radius < kInvisible) {
        return {};
    }
    BlurPlan plan;
    plan.reduction = std::min(1.0 + radius, kLargestReduction);
    if (radius >= kFilterFrom) {
        plan.spread = std::max(1, static_cast<int>(std::lround(radius / plan.reduction)));
    }
    return plan;
}

void soften(Canvas &canvas, int radius) {
    if (radius <= 0) {
        return;
    }
    const auto width = static_cast<std::size_t>(canvas.width());
    const auto height = static_cast<std::size_t>(canvas.height());
    const auto size = static_cast<std::size_t>(radius);
    std::uint8_t *pixels = canvas.pixels();
    std::vector<std::uint8_t> copy(std::max(width, height));
    for (int pass = 0; pass < 2; ++pass) {
        for (std::size_t y = 0; y < height; ++y) {
            averageLine(pixels + y * width * kChannels, width, kChannels, size, copy);
        }
        for (std::size_t x = 0; x < width; ++x) {
            averageLine(pixels + x * kChannels, height, width * kChannels, size, copy);
        }
    }
    canvas.changed();
}

void enlarge(const Canvas &small, Canvas &full) {
    cairo_t *context = full.context();
    cairo_save(context);
    cairo_scale(context, static_cast<double>(full.width()) / small.width(),
                static_cast<double>(full.height()) / small.height());
    cairo_set_source_surface(context, small.surface(), 0.0, 0.0);
    cairo_pattern_set_filter(cairo_get_source(context), CAIRO_FILTER_BILINEAR);
    cairo_pattern_set_extend(cairo_get_source(context), CAIRO_EXTEND_PAD);
    cairo_paint(context);
    cairo_restore(context);
}

} // namespace panel
