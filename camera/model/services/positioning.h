/**
 * @file
 * The service `positioning`: pan, tilt and zoom.
 */
#ifndef QUARNSNMP_CAMERA_POSITIONING_H
#define QUARNSNMP_CAMERA_POSITIONING_H

#include "service.h"

namespace camera {

/** Limits set by the user, which count while they are enabled. */
struct SoftLimits {
    bool enabled = false;
    std::int32_t minimum = 0;
    std::int32_t maximum = 0;
};

/** One axis. Pan and tilt are in millidegrees, zoom is in deciX; velocities and speeds are per second. */
struct Axis {
    std::int32_t position = 0;
    std::int32_t minimum = 0;
    std::int32_t maximum = 0;
    bool endless = false;      ///< beyond one end of the range the axis comes in again at the other
    std::int32_t velocity = 0; ///< of the last velocity command; negative is left, down or out
    std::int32_t minimumSpeed = 0;
    std::int32_t maximumSpeed = 0;
    SoftLimits softPosition;
    SoftLimits softSpeed;
};

/** Zooming beyond the optical range. */
struct DigitalZoom {
    bool enabled = false;
    std::int32_t maximum = 0;         ///< in deciX, of the digital zoom alone
    std::int32_t combinedMaximum = 0; ///< in deciX, of the optical and the digital zoom together
};

/** Time-out of a velocity command that goes on for ever. */
inline constexpr std::uint32_t kEndless = 0xFFFFFFFFU;

/** A target of the service. */
struct Positioning {
    Axis pan;
    Axis tilt;
    Axis zoom;
    DigitalZoom digitalZoom;
    std::uint32_t velocityCommandTimeout = 0; ///< in milliseconds; 0 is for ever
    std::uint32_t velocityTimeout = kEndless; ///< of the last velocity command, in milliseconds

    static const Definition<Positioning> &definition();
};

/** What a command wants of one axis; a disabled axis goes on as it is. */
struct AxisMove {
    bool enabled = false;
    std::int32_t position = 0;
};

/** Moves the enabled axes; kInvalidArgument, and no move at all, when one of them cannot get there. */
Answer moveAxes(Positioning &positioning, const AxisMove &pan, const AxisMove &tilt, const AxisMove &zoom);

} // namespace camera

#endif
