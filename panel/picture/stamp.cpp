// SPDX-License-Identifier: Apache-2.0
#include "stamp.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <ctime>

#include "lettering.h"

namespace panel {

namespace {

enum class Side : std::uint8_t { left, centre, right };

double sizeFor(const Canvas &canvas) {
    return std::max(8.0, canvas.height() / 34.0);
}

/** Offset of the dark copy behind a light text, which keeps it legible on any picture. */
double shadowDistance(double size) {
    return std::max(1.0, size / 14.0);
}

void chooseFont(cairo_t *context, double size) {
    cairo_select_font_face(context, kFont, CAIRO_FONT_SLANT_NORMAL, CAIRO_FONT_WEIGHT_BOLD);
    cairo_set_font_size(context, size);
}

StampLine lineOf(const Canvas &canvas, const std::string &text, double y, double size, Side side) {
    cairo_t *context = canvas.context();
    chooseFont(context, size);
    cairo_text_extents_t extents;
    cairo_text_extents(context, text.c_str(), &extents);
    const double margin = size;
    const double room = canvas.width() - extents.x_advance;
    const double x = side == Side::left ? margin : side == Side::right ? room - margin : room / 2.0;
    const double reach = shadowDistance(size) + 2.0;
    const auto column = [&](double value) {
        return static_cast<int>(std::clamp(value, 0.0, static_cast<double>(canvas.width())));
    };
    const auto row = [&](double value) {
        return static_cast<int>(std::clamp(value, 0.0, static_cast<double>(canvas.height())));
    };
    return {text,
            x,
            y,
            {column(x + extents.x_bearing - reach), row(y + extents.y_bearing - reach),
             column(x + extents.x_bearing + extents.width + reach),
             row(y + extents.y_bearing + extents.height + reach)}};
}

void print(const Canvas &canvas, const StampLine &line, double size) {
    cairo_t *context = canvas.context();
    chooseFont(context, size);
    const double shadow = shadowDistance(size);
    cairo_set_source_rgba(context, 0.0, 0.0, 0.0, 0.75);
    cairo_move_to(context, line.x + shadow, line.y + shadow);
    cairo_show_text(context, line.text.c_str());
    cairo_set_source_rgb(context, 1.0, 1.0, 1.0);
    cairo_move_to(context, line.x, line.y);
    cairo_show_text(context, line.text.c_str());
}

void print(const Canvas &canvas, const std::string &text, double y, double size, Side side) {
    print(canvas, lineOf(canvas, text, y, size, side), size);
}

std::string dateAndTime(PictureTime time) {
    const std::time_t seconds = std::chrono::system_clock::to_time_t(time);
    std::tm local{};
    if (localtime_r(&seconds, &local) == nullptr) {
        return {};
    }
    char text[32] = "";
    const std::size_t size = std::strftime(text, sizeof text, "%Y-%m-%d %H:%M:%S", &local);
    return {text, size};
}

std::string directionText(const View &view) {
    double bearing = std::fmod(view.bearing, 360.0);
    bearing += bearing < 0.0 ? 360.0 : 0.0;
    char text[96] = "";
    std::snprintf(text, sizeof text, "PAN %06.2f\u00b0   TILT %+06.2f\u00b0   ZOOM %.1fx", bearing, view.tilt,
                  view.zoom);
    return text;
}

void fillRectangle(cairo_t *context, double x, double y, double width, double height) {
    cairo_rectangle(context, x, y, width, height);
    cairo_fill(context);
}

} // namespace

std::vector<StampLine> stampOf(const Canvas &canvas, const View &view, PictureTime time) {
    const double size = sizeFor(canvas);
    return {lineOf(canvas, view.name, 1.8 * size, size, Side::left),
            lineOf(canvas, dateAndTime(time), 1.8 * size, size, Side::right),
            lineOf(canvas, directionText(view), canvas.height() - size, size, Side::left)};
}

void drawLine(Canvas &canvas, const StampLine &line) {
    print(canvas, line, sizeFor(canvas));
}

void drawTestPicture(Canvas &canvas, const std::string &name, const std::string &reason, PictureTime time) {
    struct Bar {
        double red;
        double green;
        double blue;
    };
    constexpr Bar kBars[] = {{0.62, 0.62, 0.62}, {0.60, 0.60, 0.10}, {0.10, 0.58, 0.58}, {0.10, 0.55, 0.12},
                             {0.55, 0.12, 0.55}, {0.56, 0.12, 0.12}, {0.12, 0.14, 0.55}};
    constexpr int kCount = std::size(kBars);
    cairo_t *context = canvas.context();
    const double width = canvas.width();
    const double height = canvas.height();
    const double size = sizeFor(canvas);
    for (int i = 0; i < kCount; ++i) {
        const Bar &bar = kBars[i];
        cairo_set_source_rgb(context, bar.red, bar.green, bar.blue);
        fillRectangle(context, std::floor(width * i / kCount), 0.0, std::ceil(width / kCount) + 1.0, height);
    }
    cairo_set_source_rgb(context, 0.05, 0.06, 0.09);
    fillRectangle(context, 0.0, 0.36 * height, width, 0.28 * height);
    print(canvas, "NO SIGNAL", 0.51 * height, 3.0 * size, Side::centre);
    print(canvas, reason, 0.58 * height, size, Side::centre);
    print(canvas, name, 1.8 * size, size, Side::left);
    print(canvas, dateAndTime(time), 1.8 * size, size, Side::right);
}

} // namespace panel
