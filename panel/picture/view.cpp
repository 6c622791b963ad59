// SPDX-License-Identifier: Apache-2.0
#include "view.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

namespace panel {

namespace {

constexpr double kMillidegrees = 1000.0;
constexpr double kDeciX = 10.0;

/** Returns the place of a position in the range of a drive, from 0 to 1. */
double placeOf(std::int64_t position, const DriveState &drive) {
    const double range = static_cast<double>(drive.maximum) - static_cast<double>(drive.minimum);
    if (range <= 0.0) {
        return 0.0;
    }
    return std::clamp((static_cast<double>(position) - static_cast<double>(drive.minimum)) / range, 0.0, 1.0);
}

/**
 * Returns the light through an iris relative to its automatic position. The light follows the area of the opening; a
 * closed iris still lets a little light through.
 */
double exposureOf(const IrisState &iris) {
    constexpr double kLeak = 0.02;
    const auto light = [&](std::int64_t position) {
        const double opening = placeOf(position, iris);
        return kLeak + opening * opening;
    };
    return light(iris.position) / light(iris.automaticPosition);
}

/** Returns the blur of a lens. The depth of field shrinks with the focal length. */
double defocusOf(const FocusState &focus, double zoom) {
    constexpr double kStrength = 0.025;
    const double distance = std::abs(placeOf(focus.position, focus) - placeOf(focus.sharpPosition, focus));
    return kStrength * distance * std::sqrt(zoom);
}

} // namespace

View viewOf(const CameraState &state) {
    View view;
    view.name = state.name;
    view.fixed = !state.positioning;
    if (state.positioning) {
        view.bearing = static_cast<double>(state.positioning->pan.position) / kMillidegrees;
        view.tilt = static_cast<double>(state.positioning->tilt.position) / kMillidegrees;
        view.zoom = static_cast<double>(state.positioning->zoom.position) / kDeciX;
        view.fieldOfView = static_cast<double>(state.positioning->fieldOfView) / kMillidegrees;
    } else if (state.zoomStepper) {
        const double longest = static_cast<double>(state.zoomStepper->magnification) / kDeciX;
        view.zoom = 1.0 + (longest - 1.0) * placeOf(state.zoomStepper->position, *state.zoomStepper);
        view.fieldOfView = static_cast<double>(state.zoomStepper->fieldOfView) / kMillidegrees;
    }
    view.zoom = std::max(view.zoom, 0.1);
    if (state.lensFocus || state.focusStepper) {
        view.defocus = defocusOf(state.lensFocus ? *state.lensFocus : *state.focusStepper, view.zoom);
    }
    if (state.iris) {
        view.exposure = exposureOf(*state.iris);
    }
    for (const std::int64_t input : state.inputs) {
        view.inputs.push_back(input == 1);
    }
    for (const std::int64_t relay : state.relays) {
        view.relays.push_back((relay & 1) != 0);
    }
    return view;
}

} // namespace panel
