// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Angles of a camera's picture.
 */
#ifndef QUARNSNMP_PANEL_VIEW_ANGLES_H
#define QUARNSNMP_PANEL_VIEW_ANGLES_H

namespace panel {

/** Direction of the camera, and angles of its picture, in degrees. */
struct ViewAngles {
    double pan = 0.0;
    double tilt = 0.0; ///< negative below the horizon
    double horizontal = 60.0;
    double vertical = 36.0;
    double lowestTilt = -90.0;
    double highestTilt = 90.0;
};

/** Direction in degrees. */
struct Direction {
    double pan;  ///< 0 to below 360
    double tilt; ///< -90 to 90
};

/** Returns the angle of a picture that is magnified. @param angle  at a magnification of 1, in degrees */
double magnifiedAngle(double angle, double magnification);

/** Returns the other angle of a picture. @param ratio  that side of the picture divided by this one */
double angleOfSide(double angle, double ratio);

/**
 * Returns the direction of a point in the picture. A tilt beyond the limits of the camera is limited.
 * @param x  from the left, as a fraction of the width
 * @param y  from the top, as a fraction of the height
 */
Direction directionAt(const ViewAngles &view, double x, double y);

} // namespace panel

#endif
