// SPDX-License-Identifier: Apache-2.0
#include "auto_focus.h"

#include <utility>

namespace camera {

namespace {

bool isSearching(const AutoFocus &focus) {
    return focus.searchEnd < kNever;
}

void settle(const FocusMoment &moment, double time) {
    moment.focus.focusing = false;
    moment.report(time, "focus_settled", {{"position", moment.drive.position}});
}

/** Starts the move of a run to the sharp position. */
void driveToSharp(const FocusMoment &moment, double time) {
    if (moment.drive.move || moment.drive.position != moment.focus.sharpPosition) {
        const double fastest = moment.limits.fastest / moment.limits.unitSpeed;
        command(moment.drive, moveTo(moment.focus.sharpPosition, fastest), moment.limits, time, moment.report);
    }
    if (!moment.drive.move) {
        settle(moment, time);
    }
}

/** Redirects the move of a run after a change of the sharp position or of the drive's position. */
void redirect(const FocusMoment &moment) {
    const bool onItsWay = moment.drive.move && moment.drive.move->target == moment.focus.sharpPosition;
    if (!onItsWay) {
        driveToSharp(moment, moment.now);
    }
}

} // namespace

const Fields<AutoFocus> &autoFocusFields() {
    static const Fields<AutoFocus> fields = {
        flagField("manualMode", &AutoFocus::manualMode),
        integerField("sharpPosition", &AutoFocus::sharpPosition),
        integerField("searchTime", &AutoFocus::searchTime),
        readOnlyField<AutoFocus>("focusing", "true or false", [](const AutoFocus &focus) { return focus.focusing; }),
    };
    return fields;
}

void startFocusRun(const FocusMoment &moment) {
    constexpr double kMillisecondsPerSecond = 1000.0;
    stopFocus(moment);
    moment.focus.focusing = true;
    moment.focus.searchEnd = moment.now + moment.focus.searchTime / kMillisecondsPerSecond;
    moment.report(moment.now, "focus_started", {{"position", moment.drive.position}});
    advanceFocus(moment);
}

void applyFocusMode(const FocusMoment &moment) {
    const AutoFocus &focus = moment.focus;
    if (focus.manualMode) {
        if (focus.focusing) {
            stopFocus(moment);
        }
    } else if (!focus.focusing) {
        if (moment.drive.move || moment.drive.position != focus.sharpPosition) {
            startFocusRun(moment);
        }
    } else if (!isSearching(focus)) {
        redirect(moment);
    }
}

void stopFocus(const FocusMoment &moment) {
    moment.focus.focusing = false;
    moment.focus.searchEnd = kNever;
    command(moment.drive, DriveMove{}, moment.limits, moment.now, moment.report);
}

void advanceFocus(const FocusMoment &moment) {
    if (moment.focus.searchEnd <= moment.now) {
        driveToSharp(moment, std::exchange(moment.focus.searchEnd, kNever));
    }
    const double arrival = nextTime(moment.drive);
    advance(moment.drive, moment.now, moment.report);
    if (moment.focus.focusing && arrival <= moment.now) {
        settle(moment, arrival);
    }
}

double nextFocusTime(const Drive<std::int32_t> &drive, const AutoFocus &focus) {
    return std::min(nextTime(drive), focus.searchEnd);
}

} // namespace camera
