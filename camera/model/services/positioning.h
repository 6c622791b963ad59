// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Service `positioning`: pan, tilt and zoom.
 */
#ifndef QUARNSNMP_CAMERA_POSITIONING_H
#define QUARNSNMP_CAMERA_POSITIONING_H

#include <array>

#include "axis.h"
#include "optics.h"
#include "service.h"

namespace camera {

/** Digital zoom beyond the optical range. */
struct DigitalZoom {
    bool enabled = false;
    std::int32_t maximum = 0;         ///< in deciX, of the digital zoom alone
    std::int32_t combinedMaximum = 0; ///< in deciX, of the optical and the digital zoom together
};

/** Time-out value of an endless velocity command. */
inline constexpr std::uint32_t kEndless = 0xFFFFFFFFU;

/** Target of `positioning`. Pan and tilt are in millidegrees, zoom is in deciX. */
struct Positioning {
    Axis pan;
    Axis tilt;
    Axis zoom;
    DigitalZoom digitalZoom;
    std::int32_t fieldOfView = kUsualFieldOfView; ///< horizontal, at a magnification of 1, in millidegrees
    std::uint32_t velocityCommandTimeout = 0;     ///< in milliseconds; 0 for none
    std::uint32_t velocityTimeout = kEndless;     ///< of the last velocity command, in milliseconds
    bool respectPriorities = false;               ///< refuses commands less urgent than the present move

    static const Definition<Positioning> &definition();
};

inline constexpr std::size_t kAxisCount = 3;

/** Destination of one axis; a disabled axis continues its present move. */
struct Destination {
    bool enabled = false;
    std::int32_t position = 0;
    double fraction = 0.0; ///< fraction of the range of speeds; above 1 for the highest speed
};

/**
 * Starts moves of the enabled axes, in the order pan, tilt, zoom.
 * @param priority  lower numbers are more urgent
 * @return kInvalidArgument for an unreachable position or an invalid fraction, kNotSupported if a more urgent move
 * takes precedence; in both cases, no axis moves
 */
Answer moveAxes(const Scope<Positioning> &scope, const std::array<Destination, kAxisCount> &destinations,
                std::int32_t priority);

} // namespace camera

#endif
