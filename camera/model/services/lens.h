// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Services of the lens: `focus_stepper`, `zoom_stepper`, `lens_focus`, `iris`, and `exposure`, which controls the iris.
 */
#ifndef QUARNSNMP_CAMERA_LENS_H
#define QUARNSNMP_CAMERA_LENS_H

#include "auto_focus.h"
#include "optics.h"

namespace camera {

/** Target of `focus_stepper`. */
struct FocusStepper : StepperMotor, AutoFocus {
    std::int32_t secondPosition = 0;
    std::uint32_t quickAutoFocusRuns = 0;

    static const Definition<FocusStepper> &definition();
};

/** Target of `zoom_stepper`. */
struct ZoomStepper : StepperMotor {
    std::int32_t fieldOfView = kUsualFieldOfView;     ///< horizontal, at `minimum`, in millidegrees
    std::int32_t magnification = kUsualMagnification; ///< at `maximum`, in deciX

    static const Definition<ZoomStepper> &definition();
};

/** Target of `lens_focus`. */
struct LensFocus : LensDrive<std::int32_t>, AutoFocus {
    std::uint32_t autoFocusRuns = 0;

    static const Definition<LensFocus> &definition();
};

/** Target of `iris`; always in manual mode without the target of `exposure` of the same number. */
struct Iris : LensDrive<std::uint32_t> {
    std::uint32_t automaticPosition = 0; ///< position for automatic exposure

    static const Definition<Iris> &definition();
};

/** Target of `exposure`; in automatic mode, it drives the iris of the same number. */
struct Exposure {
    bool manualMode = false;

    static const Definition<Exposure> &definition();
};

} // namespace camera

#endif
