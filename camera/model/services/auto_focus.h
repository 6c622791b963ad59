// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Automatic focus: control of a focus drive that keeps the picture sharp in automatic mode.
 *
 * A run searches for a time, drives to the sharp position, and settles exactly there. In automatic mode, the drive is
 * always either settled at the sharp position or in a run. Manual mode has no runs.
 */
#ifndef QUARNSNMP_CAMERA_AUTO_FOCUS_H
#define QUARNSNMP_CAMERA_AUTO_FOCUS_H

#include "lens_drives.h"

namespace camera {

/** State of automatic focus. */
struct AutoFocus {
    bool manualMode = false;
    std::int32_t sharpPosition = 0; ///< position of the sharp picture; depends on the scene
    std::uint32_t searchTime = 0;   ///< duration of a run's search, in milliseconds
    bool focusing = false;          ///< true during a run
    double searchEnd = kNever;      ///< end of the search, in seconds since the camera started; kNever afterwards
};

/** Returns the field records of automatic focus. */
const Fields<AutoFocus> &autoFocusFields();

/** Focus drive and its automatic control at one time. Both must be up to date. */
struct FocusMoment {
    Drive<std::int32_t> &drive;
    AutoFocus &focus;
    DriveLimits limits;
    double now;
    DriveReport report;
};

/** Returns the present moment of a target. Must not outlive the scope. */
template <typename State>
FocusMoment focusMoment(const Scope<State> &scope) {
    return {scope.state, scope.state, limitsOf(scope.state), scope.model.now(), reporter(scope)};
}

/** Starts a run, which replaces a present run or move. Requires automatic mode. */
void startFocusRun(const FocusMoment &moment);

/** Applies the mode: ends a run in manual mode; starts or redirects a run if necessary in automatic mode. */
void applyFocusMode(const FocusMoment &moment);

/** Ends the run and stops the drive where it is. */
void stopFocus(const FocusMoment &moment);

/** Updates drive and run to the moment, and reports the timed events up to then. */
void advanceFocus(const FocusMoment &moment);

/** Returns the time of the next timed event; kNever without one. */
double nextFocusTime(const Drive<std::int32_t> &drive, const AutoFocus &focus);

} // namespace camera

#endif
