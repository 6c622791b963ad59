// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Automatic focus: what brings a focus drive to where the picture is sharp, and keeps it there while the mode is
 * automatic.
 *
 * A run searches for a time, drives to the sharp position, and settles exactly there. In automatic mode the drive is
 * always settled at the sharp position or in a run; in manual mode there are no runs.
 */
#ifndef QUARNSNMP_CAMERA_AUTO_FOCUS_H
#define QUARNSNMP_CAMERA_AUTO_FOCUS_H

#include "lens_drives.h"

namespace camera {

/** What automatic focus knows and does. */
struct AutoFocus {
    bool manualMode = false;
    std::int32_t sharpPosition = 0; ///< where the picture is sharp; another scene has another one
    std::uint32_t searchTime = 0;   ///< how long a run searches before it drives, in milliseconds
    bool focusing = false;          ///< whether there is a run
    double searchEnd = kNever;      ///< when the run drives, in seconds since the camera started; kNever once it does
};

/** Automatic focus's records. */
const Fields<AutoFocus> &autoFocusFields();

/** A focus drive with its automatic at one moment, to which both must have been brought. */
struct FocusMoment {
    Drive<std::int32_t> &drive;
    AutoFocus &focus;
    DriveLimits limits;
    double now;
    DriveReport report;
};

/** The present moment of a target; must not outlive the scope. */
template <typename State>
FocusMoment focusMoment(const Scope<State> &scope) {
    return {scope.state, scope.state, limitsOf(scope.state), scope.model.now(), reporter(scope)};
}

/** Starts a run, which takes the place of the one before and of any move. The mode must be automatic. */
void startFocusRun(const FocusMoment &moment);

/** Does what the mode asks for: ends a run in manual mode, sees to a sharp picture in automatic mode. */
void applyFocusMode(const FocusMoment &moment);

/** Stops drive and run where they are. */
void stopFocus(const FocusMoment &moment);

/** Brings drive and run on to the moment, and reports what happened by itself until then. */
void advanceFocus(const FocusMoment &moment);

/** When the next thing happens by itself; else kNever. */
double nextFocusTime(const Drive<std::int32_t> &drive, const AutoFocus &focus);

} // namespace camera

#endif
