// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * What a picture of the scene depends on, from the state of the camera.
 */
#ifndef QUARNSNMP_PANEL_VIEW_H
#define QUARNSNMP_PANEL_VIEW_H

#include <string>
#include <vector>

#include "camera_state.h"

namespace panel {

/** Direction, lens and surroundings of the camera at one time. */
struct View {
    std::string name;          ///< of the camera, for the stamp
    bool fixed = false;        ///< the camera has no pan and tilt; the scene says where it looks
    double bearing = 0.0;      ///< in degrees, clockwise from north
    double tilt = 0.0;         ///< in degrees, upwards
    double zoom = 1.0;         ///< magnification
    double fieldOfView = 60.0; ///< horizontal, at a magnification of 1, in degrees
    double defocus = 0.0;      ///< radius of the blur as a fraction of the picture's width; 0 for a sharp picture
    double exposure = 1.0;     ///< light on the sensor; 1 for a normal brightness
    std::vector<bool> inputs;  ///< active alarm inputs
    std::vector<bool> relays;  ///< energised relays
};

/** Returns the view of a camera. Services that the camera does not have leave their defaults. */
View viewOf(const CameraState &state);

} // namespace panel

#endif
