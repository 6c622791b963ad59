// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * The service `positioning`: pan, tilt and zoom.
 */
#ifndef QUARNSNMP_CAMERA_POSITIONING_H
#define QUARNSNMP_CAMERA_POSITIONING_H

#include <array>

#include "axis.h"
#include "service.h"

namespace camera {

/** Zooming beyond the optical range. */
struct DigitalZoom {
    bool enabled = false;
    std::int32_t maximum = 0;         ///< in deciX, of the digital zoom alone
    std::int32_t combinedMaximum = 0; ///< in deciX, of the optical and the digital zoom together
};

/** Time-out of a velocity command that goes on for ever. */
inline constexpr std::uint32_t kEndless = 0xFFFFFFFFU;

/** A target of the service. Pan and tilt are in millidegrees, zoom is in deciX. */
struct Positioning {
    Axis pan;
    Axis tilt;
    Axis zoom;
    DigitalZoom digitalZoom;
    std::uint32_t velocityCommandTimeout = 0; ///< in milliseconds; 0 is for ever
    std::uint32_t velocityTimeout = kEndless; ///< of the last velocity command, in milliseconds
    bool respectPriorities = false;           ///< whether a less urgent command is refused during a more urgent move

    static const Definition<Positioning> &definition();
};

inline constexpr std::size_t kAxisCount = 3;

/** Where a command sends one axis; a disabled axis goes on as it is. */
struct Destination {
    bool enabled = false;
    std::int32_t position = 0;
    double fraction = 0.0; ///< speed, of the range of speeds; more than the axis can is as fast as it can
};

/**
 * Starts moves of the enabled axes, in the order pan, tilt, zoom.
 * @param priority  the lower the number, the more urgent
 * @return kInvalidArgument when an axis cannot get there or a fraction is negative or no number, kNotSupported when a
 *         more urgent move has to be respected; no axis moves then
 */
Answer moveAxes(const Scope<Positioning> &scope, const std::array<Destination, kAxisCount> &destinations,
                std::int32_t priority);

} // namespace camera

#endif
