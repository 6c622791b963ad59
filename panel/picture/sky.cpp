// SPDX-License-Identifier: Apache-2.0
#include "sky.h"

#include <algorithm>

#include "ground.h"
#include "light.h"

namespace panel {

namespace {

constexpr Color kZenith = {70, 124, 186};
constexpr Color kMiddle = {138, 178, 216};

void addStop(cairo_pattern_t *pattern, double offset, const Tint &tint, double opacity = 1.0) {
    cairo_pattern_add_color_stop_rgba(pattern, offset, tint.red, tint.green, tint.blue, opacity);
}

/** Adds a heap of puffs with a flat base, upright in a distance. */
void addCloud(Mesh &mesh, double bearing, double height, double size, std::uint32_t seed) {
    constexpr double kDistance = 3000.0;
    Dice dice(seed);
    const Vec2 middle = direction(bearing) * kDistance;
    const Vec3 right = at(rightOf(direction(bearing)), 0.0);
    const Vec3 up = {0.0, 0.0, 1.0};
    struct Puff {
        double x;
        double z;
        double radius;
    };
    std::vector<Puff> puffs;
    for (int i = 0; i < 9; ++i) {
        const double x = dice.between(-1.0, 1.0);
        const double swell = 1.0 - x * x * 0.8;
        puffs.push_back({x * size, dice.between(0.0, 0.12) * size, (0.14 + 0.22 * swell * dice.next()) * size});
    }
    const auto layer = [&](double scale, double lift, const Color &color, double opacity) {
        mesh.color(color, 0.0, opacity);
        for (const Puff &puff : puffs) {
            std::vector<Vec3> points;
            constexpr int kCorners = 18;
            for (int i = 0; i < kCorners; ++i) {
                const double angle = 2.0 * kPi * i / kCorners;
                const double z = puff.z + puff.radius * scale * std::sin(angle) * 0.8 + lift * size;
                points.push_back(at(middle, height) + right * (puff.x + puff.radius * scale * std::cos(angle)) +
                                 up * std::max(z, -0.03 * size));
            }
            mesh.add(points);
        }
    };
    layer(1.18, 0.0, {236, 241, 246}, 0.28);
    layer(1.0, 0.01, {226, 232, 240}, 0.55);
    layer(0.8, 0.055, {250, 251, 252}, 0.75);
}

void addHills(Mesh &mesh, std::uint32_t seed) {
    constexpr int kParts = 90;
    const auto ridge = [&](double distance, double low, double high, const Color &color) {
        Dice dice(seed + static_cast<std::uint32_t>(distance));
        const double phase = dice.between(0.0, 6.0);
        const auto heightAt = [&](int i) {
            const double angle = 2.0 * kPi * i / kParts;
            const double wave = 0.5 + 0.22 * std::sin(3.0 * angle + phase) +
                                0.16 * std::sin(7.0 * angle + 2.0 * phase) + 0.12 * std::sin(17.0 * angle + phase);
            return low + (high - low) * wave;
        };
        mesh.color(color);
        for (int i = 0; i < kParts; ++i) {
            const Vec2 from = direction(360.0 * i / kParts) * distance;
            const Vec2 to = direction(360.0 * (i + 1) / kParts) * distance;
            mesh.add({at(from, 0.0), at(to, 0.0), at(to, heightAt(i + 1)), at(from, heightAt(i))});
        }
    };
    ridge(4500.0, 30.0, 330.0, {176, 193, 208});
    ridge(3200.0, 5.0, 150.0, {164, 183, 194});
}

/** Adds towers of a distant city, and trees before them. */
void addSkyline(Mesh &mesh, const Skyline &skyline) {
    Dice dice(static_cast<std::uint32_t>(skyline.seed));
    const int towers = static_cast<int>(150.0 * skyline.density);
    const double centre = dice.between(330.0, 380.0);
    for (int i = 0; i < towers; ++i) {
        const bool isCentre = dice.next() < 0.4;
        const double bearing = isCentre ? centre + dice.between(-24.0, 24.0) : dice.between(0.0, 360.0);
        const double distance = dice.between(750.0, 1700.0);
        const double height = isCentre ? dice.between(25.0, 130.0) : dice.between(10.0, 42.0);
        const double half = dice.between(7.0, 17.0);
        const Vec2 middle = direction(bearing) * distance;
        const Vec2 right = rightOf(direction(bearing));
        const Color color = mix({120, 126, 138}, {176, 160, 146}, dice.next());
        const auto plate = [&](double left, double to, double low, double high) {
            mesh.add({at(middle + right * left, low), at(middle + right * to, low), at(middle + right * to, high),
                      at(middle + right * left, high)});
        };
        mesh.color(color);
        plate(-half, half, 0.0, height);
        mesh.color(shade(color, 0.8));
        plate(half * 0.3, half, 0.0, height);
        mesh.color(shade(color, 0.62), 2.4);
        const int floors = static_cast<int>(height / 4.0) - 1;
        for (int floor = 1; floor <= floors; ++floor) {
            const double z = 4.0 * floor;
            plate(-half * 0.9, half * 0.22, z, z + 1.9);
        }
    }
}

} // namespace

Sky::Sky(const Scene &scene, const Vec3 &eye)
    : ground_(colorOf(scene.ground)), clouds_(eye), hills_(eye), skyline_(eye) {
    Dice dice(static_cast<std::uint32_t>(scene.skyline.seed) + 99U);
    for (std::uint32_t i = 0; i < 18; ++i) {
        const double bearing = 20.0 * i + dice.between(-8.0, 8.0);
        const double height = dice.between(300.0, 1250.0);
        addCloud(clouds_, bearing, height, dice.between(180.0, 480.0), 7U * i + 5U);
    }
    addHills(hills_, static_cast<std::uint32_t>(scene.skyline.seed));
    addSkyline(skyline_, scene.skyline);
}

void Sky::draw(Brush &brush) const {
    const Projection &projection = brush.projection();
    cairo_t *context = brush.context();
    const double horizon = projection.horizon();
    const double width = projection.width();
    const double height = projection.height();
    if (horizon > 0.0) {
        const double top = horizon - projection.focalLength() * 0.75;
        const Pattern gradient(cairo_pattern_create_linear(0.0, top, 0.0, horizon));
        addStop(gradient.get(), 0.0, brush.tone().of(kZenith));
        addStop(gradient.get(), 0.62, brush.tone().of(kMiddle));
        addStop(gradient.get(), 1.0, brush.tone().of(Tone::kHaze));
        cairo_set_source(context, gradient.get());
        cairo_rectangle(context, 0.0, 0.0, width, std::min(std::ceil(horizon), height));
        cairo_fill(context);
        clouds_.draw(brush, false);
    }
    if (horizon < height) {
        const Tint tint = brush.tone().of(ground_);
        const double top = std::max(std::floor(horizon), 0.0);
        cairo_set_source_rgb(context, tint.red, tint.green, tint.blue);
        cairo_rectangle(context, 0.0, top, width, height - top);
        cairo_fill(context);
    }
}

void Sky::drawHaze(Brush &brush) {
    const Projection &projection = brush.projection();
    const double horizon = std::floor(projection.horizon());
    const double height = projection.height();
    if (horizon >= height) {
        return;
    }
    // The row of a distance in the middle of the picture.
    const double slope = projection.forward().z;
    const double level = std::sqrt(std::max(0.0, 1.0 - slope * slope));
    const auto rowOf = [&](double distance) {
        const double down = -projection.cameraHeight();
        const double depth = distance * level + down * slope;
        return height / 2.0 - projection.focalLength() * (down * level - distance * slope) / std::max(depth, 0.01);
    };
    constexpr double kNearest = 45.0;
    const double bottom = rowOf(kNearest);
    if (bottom <= std::max(horizon, 0.0)) {
        return;
    }
    const Pattern gradient(cairo_pattern_create_linear(0.0, horizon, 0.0, bottom));
    const Tint tint = brush.tone().of(Tone::kHaze);
    addStop(gradient.get(), 0.0, tint, 1.0);
    for (const double distance : {4000.0, 2000.0, 1200.0, 800.0, 500.0, 320.0, 200.0, 120.0, 80.0, kNearest}) {
        const double offset = (rowOf(distance) - horizon) / (bottom - horizon);
        addStop(gradient.get(), std::clamp(offset, 0.0, 1.0), tint,
                distance <= kNearest ? 0.0 : Tone::hazeAt(distance));
    }
    const double top = std::max(horizon, 0.0);
    cairo_set_source(brush.context(), gradient.get());
    cairo_rectangle(brush.context(), 0.0, top, projection.width(), std::min(bottom, height) - top);
    cairo_fill(brush.context());
}

void Sky::drawHorizon(Brush &brush) const {
    hills_.draw(brush, false);
    skyline_.draw(brush);
}

} // namespace panel
