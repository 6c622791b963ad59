// SPDX-License-Identifier: Apache-2.0
#include "canvas.h"

#include <algorithm>
#include <stdexcept>
#include <string>

namespace panel {

namespace {

constexpr int kOctetsPerPixel = 4;

} // namespace

Canvas::Canvas(int width, int height)
    : width_(width), height_(height),
      pixels_(static_cast<std::size_t>(width) * static_cast<std::size_t>(height) * kOctetsPerPixel),
      surface_(cairo_image_surface_create_for_data(pixels_.data(), CAIRO_FORMAT_RGB24, width, height,
                                                   width * kOctetsPerPixel)),
      context_(cairo_create(surface_.get())) {
    if (cairo_status(context_.get()) != CAIRO_STATUS_SUCCESS) {
        throw std::runtime_error(std::string("cannot draw a picture: ") +
                                 cairo_status_to_string(cairo_status(context_.get())));
    }
}

std::uint8_t *Canvas::pixels() {
    cairo_surface_flush(surface_.get());
    return pixels_.data();
}

void PixelBox::include(const PixelBox &other) {
    *this = {std::min(left, other.left), std::min(top, other.top), std::max(right, other.right),
             std::max(bottom, other.bottom)};
}

bool overlapsAny(const PixelBox &box, const std::vector<PixelBox> &others) {
    return std::any_of(others.begin(), others.end(), [&](const PixelBox &other) { return box.overlaps(other); });
}

std::vector<PixelBox> disjoint(std::vector<PixelBox> boxes) {
    std::vector<PixelBox> merged;
    while (!boxes.empty()) {
        PixelBox box = boxes.back();
        boxes.pop_back();
        const auto apart =
            std::partition(merged.begin(), merged.end(), [&](const PixelBox &each) { return !each.overlaps(box); });
        if (apart == merged.end()) {
            merged.push_back(box);
            continue;
        }
        // A larger box can overlap further ones.
        for (auto each = apart; each != merged.end(); ++each) {
            box.include(*each);
        }
        merged.erase(apart, merged.end());
        boxes.push_back(box);
    }
    return merged;
}

void Canvas::copy(Canvas &other) {
    copy(other, {0, 0, width_, height_});
}

void Canvas::copy(Canvas &other, const PixelBox &box) {
    if (other.width_ != width_ || other.height_ != height_) {
        throw std::logic_error("canvases of different sizes");
    }
    cairo_surface_flush(surface_.get());
    const std::uint8_t *source = other.pixels();
    for (int y = box.top; y < box.bottom; ++y) {
        const auto place =
            (static_cast<std::size_t>(y) * static_cast<std::size_t>(width_) + static_cast<std::size_t>(box.left)) *
            kOctetsPerPixel;
        std::copy_n(source + place, static_cast<std::size_t>(box.right - box.left) * kOctetsPerPixel,
                    pixels_.data() + place);
    }
    changed();
}

void Canvas::changed() {
    cairo_surface_mark_dirty(surface_.get());
}

} // namespace panel
