// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * The services that drive the lens: `focus_stepper`, `zoom_stepper`, `lens_focus`, `iris` and, for who drives the iris,
 * `exposure`.
 */
#ifndef QUARNSNMP_CAMERA_LENS_H
#define QUARNSNMP_CAMERA_LENS_H

#include "auto_focus.h"

namespace camera {

/** A target of `focus_stepper`. */
struct FocusStepper : StepperMotor, AutoFocus {
    std::int32_t secondPosition = 0;
    std::uint32_t quickAutoFocusRuns = 0;

    static const Definition<FocusStepper> &definition();
};

/** A target of `zoom_stepper`. */
struct ZoomStepper : StepperMotor {
    static const Definition<ZoomStepper> &definition();
};

/** A target of `lens_focus`. */
struct LensFocus : LensDrive<std::int32_t>, AutoFocus {
    std::uint32_t autoFocusRuns = 0;

    static const Definition<LensFocus> &definition();
};

/** A target of `iris`; without a target of `exposure` of the same number it is always in manual mode. */
struct Iris : LensDrive<std::uint32_t> {
    std::uint32_t automaticPosition = 0; ///< where automatic exposure has it

    static const Definition<Iris> &definition();
};

/** A target of `exposure`, which drives the iris of the same number in automatic mode. */
struct Exposure {
    bool manualMode = false;

    static const Definition<Exposure> &definition();
};

} // namespace camera

#endif
