// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Vectors. In a scene, x points east, y north and z up, in metres; bearings are in degrees, clockwise from north.
 */
#ifndef QUARNSNMP_PANEL_GEOMETRY_H
#define QUARNSNMP_PANEL_GEOMETRY_H

#include <cmath>

namespace panel {

inline constexpr double kPi = 3.14159265358979323846;

inline double radians(double degrees) {
    return degrees * kPi / 180.0;
}

struct Vec2 {
    double x = 0.0;
    double y = 0.0;
};

inline Vec2 operator+(const Vec2 &a, const Vec2 &b) {
    return {a.x + b.x, a.y + b.y};
}
inline Vec2 operator-(const Vec2 &a, const Vec2 &b) {
    return {a.x - b.x, a.y - b.y};
}
inline Vec2 operator*(const Vec2 &a, double factor) {
    return {a.x * factor, a.y * factor};
}
inline double dot(const Vec2 &a, const Vec2 &b) {
    return a.x * b.x + a.y * b.y;
}
/** Positive if b is to the left of a. */
inline double cross(const Vec2 &a, const Vec2 &b) {
    return a.x * b.y - a.y * b.x;
}
inline double length(const Vec2 &a) {
    return std::sqrt(dot(a, a));
}

struct Vec3 {
    double x = 0.0;
    double y = 0.0;
    double z = 0.0;
};

inline Vec3 operator+(const Vec3 &a, const Vec3 &b) {
    return {a.x + b.x, a.y + b.y, a.z + b.z};
}
inline Vec3 operator-(const Vec3 &a, const Vec3 &b) {
    return {a.x - b.x, a.y - b.y, a.z - b.z};
}
inline Vec3 operator*(const Vec3 &a, double factor) {
    return {a.x * factor, a.y * factor, a.z * factor};
}
inline double dot(const Vec3 &a, const Vec3 &b) {
    return a.x * b.x + a.y * b.y + a.z * b.z;
}
inline double length(const Vec3 &a) {
    return std::sqrt(dot(a, a));
}

inline Vec3 at(const Vec2 &point, double height) {
    return {point.x, point.y, height};
}

/** Returns the unit vector of a bearing. */
inline Vec2 direction(double bearing) {
    return {std::sin(radians(bearing)), std::cos(radians(bearing))};
}

/** Returns the vector to the right of a direction. */
inline Vec2 rightOf(const Vec2 &forward) {
    return {forward.y, -forward.x};
}

/** Returns the bearing of a vector, from -180 to 180 degrees. */
inline double bearingOf(const Vec2 &vector) {
    return std::atan2(vector.x, vector.y) * 180.0 / kPi;
}

} // namespace panel

#endif
