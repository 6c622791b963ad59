// SPDX-License-Identifier: Apache-2.0
#include "lettering.h"

#include <algorithm>
#include <stdexcept>

namespace panel {

namespace {

/** Height of a capital letter of the font, as a fraction of its size. */
constexpr double kCapital = 0.729;
constexpr double kFontSize = 100.0;

FlatPath pathOf(cairo_t *context, const std::string &text) {
    cairo_select_font_face(context, kFont, CAIRO_FONT_SLANT_NORMAL, CAIRO_FONT_WEIGHT_BOLD);
    cairo_set_font_size(context, kFontSize);
    cairo_set_tolerance(context, 1.0);
    cairo_move_to(context, 0.0, 0.0);
    cairo_text_path(context, text.c_str());
    return FlatPath(cairo_copy_path_flat(context));
}

} // namespace

Lettering letteringOf(const std::string &text) {
    const Surface2D surface(cairo_image_surface_create(CAIRO_FORMAT_A8, 1, 1));
    const Context context(cairo_create(surface.get()));
    const FlatPath path = pathOf(context.get(), text);
    if (path->status != CAIRO_STATUS_SUCCESS) {
        throw std::runtime_error(std::string("cannot outline a text: ") + cairo_status_to_string(path->status));
    }
    constexpr double kScale = 1.0 / (kFontSize * kCapital);
    Lettering lettering;
    for (int i = 0; i < path->num_data; i += path->data[i].header.length) {
        const cairo_path_data_t *data = &path->data[i];
        if (data->header.type == CAIRO_PATH_MOVE_TO) {
            lettering.outlines.emplace_back();
        }
        if (data->header.type == CAIRO_PATH_MOVE_TO || data->header.type == CAIRO_PATH_LINE_TO) {
            const Vec2 point = {data[1].point.x * kScale, -data[1].point.y * kScale};
            lettering.outlines.back().push_back(point);
            lettering.width = std::max(lettering.width, point.x);
        }
    }
    return lettering;
}

void drawText(Brush &brush, const Lettering &lettering, const TextPlane &plane, const Color &color) {
    constexpr double kLegible = 1.5;
    const double distance = brush.distanceOf(plane.centre);
    double size = plane.size;
    if (lettering.width * size > plane.width) {
        size = plane.width / lettering.width;
    }
    if (size * brush.projection().pixelsPerMetre(distance) < kLegible) {
        return;
    }
    const Vec3 origin = plane.centre + plane.right * (-0.5 * lettering.width * size) + plane.up * (-0.5 * size);
    std::vector<Vec3> points;
    for (const std::vector<Vec2> &outline : lettering.outlines) {
        points.clear();
        for (const Vec2 &point : outline) {
            points.push_back(origin + plane.right * (point.x * size) + plane.up * (point.y * size));
        }
        brush.add(points);
    }
    brush.fill(color, distance);
}

} // namespace panel

#ifdef QUARNSNMP_ADDRESS_SANITIZER
// Fontconfig keeps the patterns of its fonts until the end, and refers to them by offsets, which LeakSanitizer does not
// recognise as references. The name is that of its hook.
#pragma clang diagnostic ignored "-Wreserved-identifier"
extern "C" const char *__lsan_default_suppressions();
extern "C" const char *__lsan_default_suppressions() {
    return "leak:libfontconfig.so\n";
}
#endif
