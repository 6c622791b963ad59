// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Optics of the lens. No call of the services returns them; they belong to the picture.
 */
#ifndef QUARNSNMP_CAMERA_OPTICS_H
#define QUARNSNMP_CAMERA_OPTICS_H

#include "fields.h"

namespace camera {

/** Default horizontal field of view at a magnification of 1, in millidegrees. */
inline constexpr std::int32_t kUsualFieldOfView = 60000;

/** Magnification of 1, in deciX. */
inline constexpr std::int32_t kNoMagnification = 10;

/** Default magnification of a zoom stepper at the end of its range, in deciX. */
inline constexpr std::int32_t kUsualMagnification = 100;

/** Makes the field `fieldOfView`. A flat picture shows less than half a circle. */
template <typename State>
Field<State> fieldOfViewField(std::int32_t State::*member) {
    constexpr std::int32_t kNarrowest = 100;
    constexpr std::int32_t kWidest = 120000;
    return integerField("fieldOfView", member, kNarrowest, kWidest);
}

} // namespace camera

#endif
