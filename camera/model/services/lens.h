/**
 * @file
 * The services that drive the lens: `focus_stepper`, `zoom_stepper`, `lens_focus`, `iris` and, for who drives the iris,
 * `exposure`.
 */
#ifndef QUARNSNMP_CAMERA_LENS_H
#define QUARNSNMP_CAMERA_LENS_H

#include "common.h"

namespace camera {

/** A target of `focus_stepper`. */
struct FocusStepper : StepperMotor {
    std::int32_t secondPosition = 0;
    bool manualMode = false;
    std::uint32_t quickAutoFocusRuns = 0;

    static const Definition<FocusStepper> &definition();
};

/** A target of `zoom_stepper`. */
struct ZoomStepper : StepperMotor {
    static const Definition<ZoomStepper> &definition();
};

/** A target of `lens_focus`. */
struct LensFocus : LensDrive<std::int32_t> {
    bool manualMode = false;
    std::uint32_t autoFocusRuns = 0;

    static const Definition<LensFocus> &definition();
};

/** A target of `iris`. */
struct Iris : LensDrive<std::uint32_t> {
    static const Definition<Iris> &definition();
};

/** A target of `exposure`. */
struct Exposure {
    bool manualMode = false;

    static const Definition<Exposure> &definition();
};

} // namespace camera

#endif
