// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Memory for the pixels of a picture, and Cairo's context on it.
 */
#ifndef QUARNSNMP_PANEL_CANVAS_H
#define QUARNSNMP_PANEL_CANVAS_H

#include <cstdint>
#include <vector>

#include "cairo_handles.h"

namespace panel {

/** Rectangle of pixels; the right and the lower limit are outside. */
struct PixelBox {
    int left = 0;
    int top = 0;
    int right = 0;
    int bottom = 0;

    bool isEmpty() const {
        return left >= right || top >= bottom;
    }
    bool overlaps(const PixelBox &other) const {
        return left < other.right && other.left < right && top < other.bottom && other.top < bottom;
    }
    /** Grows to include another box. */
    void include(const PixelBox &other);
};

inline bool operator==(const PixelBox &a, const PixelBox &b) {
    return a.left == b.left && a.top == b.top && a.right == b.right && a.bottom == b.bottom;
}

/** Returns true if a box overlaps one of several. */
bool overlapsAny(const PixelBox &box, const std::vector<PixelBox> &others);

/** Merges boxes until no two overlap. */
std::vector<PixelBox> disjoint(std::vector<PixelBox> boxes);

/** Pixels in the order blue, green, red, unused; rows without gaps. Starts black. */
class Canvas {
public:
    /** @throws std::runtime_error without memory */
    Canvas(int width, int height);

    cairo_t *context() const {
        return context_.get();
    }
    cairo_surface_t *surface() const {
        return surface_.get();
    }
    int width() const {
        return width_;
    }
    int height() const {
        return height_;
    }

    /** Returns the pixels after all drawing is done. */
    std::uint8_t *pixels();

    /** Takes the pixels of a canvas of the same size. */
    void copy(Canvas &other);

    /** Takes the pixels of a part. @param box  inside both */
    void copy(Canvas &other, const PixelBox &box);

    /** Announces that pixels() were changed. */
    void changed();

private:
    int width_;
    int height_;
    std::vector<std::uint8_t> pixels_;
    Surface2D surface_;
    Context context_;
};

} // namespace panel

#endif
