// SPDX-License-Identifier: Apache-2.0
#include <array>
#include <cmath>

#include <fmt/format.h>

#include "axis_rules.h"
#include "definitions.h"
#include "expected.h"
#include "families.h"
#include "object_oids.h"

namespace ptzctl::check {

namespace {

using ptz::Mode;
using std::chrono::milliseconds;

constexpr int kFast = 100;
constexpr int kSlow = 32;
constexpr milliseconds kTimeout{2000};
constexpr milliseconds kLongTimeout{10000}; ///< longer than a witness waits for rest, so that it proves the stop

/** An axis with its witness. */
struct Stage {
    Context &context;
    MoveGuard &guard;
    Sight &sight;
    const ptz::Axis &axis;
};

Detail detailOf(const Stage &stage, const Seen &seen, const std::string &what) {
    const std::array<Result, 3> results = {Result::Pass, Result::Fail, Result::Skipped};
    return axisDetail(stage.axis, results.at(static_cast<std::size_t>(seen.answer)),
                      fmt::format("{}: {}", what, seen.observation));
}

void requireDone(const Exchange &exchange) {
    if (!exchange.valid() || exchange.response->error != 0) {
        throw NotPossible("the command was not accepted: " + describeResponse(exchange));
    }
}

/** A feature that is automatic now does not take commands. */
void requireManual(const Stage &stage) {
    const std::optional<std::string> automatic = octetsOf(stage.context, "systemLensFeatureStatus");
    const bool isAutomatic = automatic && !automatic->empty() &&
                             (static_cast<unsigned char>(automatic->front()) & stage.axis.automatic) != 0;
    if (isAutomatic) {
        throw NotPossible("it is automatic now");
    }
}

/** Judges each axis that the camera has and the witness sees. */
Finding judgeSeen(Context &context, const std::function<void(const Stage &, Details &)> &judge) {
    Sight *const sight = sightOf(context);
    if (sight == nullptr) {
        return {Result::Skipped, context.moveNotes().reason, {}};
    }
    return judgeAxes(context, [&](MoveGuard &guard, const ptz::Axis &axis, Details &details) {
        const Stage stage = {context, guard, *sight, axis};
        requireManual(stage);
        const std::string blindness = sight->blindness(axis);
        if (!blindness.empty()) {
            throw NotPossible(blindness);
        }
        judge(stage, details);
    });
}

Seen moveTo(const Stage &stage, int target) {
    stage.sight.announce(fmt::format("{} goes to {}", stage.axis.title,
                                     ptz::positionText(stage.axis, static_cast<std::uint16_t>(target))));
    requireDone(stage.guard.send(stage.axis, octetsFor(Mode::Absolute, kFast, target)));
    return stage.sight.reaches(stage.axis, target);
}

Finding seeAbsolute(Context &context) {
    return judgeSeen(context, [](const Stage &stage, Details &details) {
        const Targets targets = targetsOf(stage.context, stage.axis);
        for (const int target : {targets.second, targets.first}) {
            details.push_back(detailOf(stage, moveTo(stage, target), fmt::format("absolute {}", target)));
        }
    });
}

Finding seeDelta(Context &context) {
    return judgeSeen(context, [](const Stage &stage, Details &details) {
        const Targets targets = targetsOf(stage.context, stage.axis);
        if (moveTo(stage, targets.first).answer == Seen::Answer::No) {
            throw NotPossible("it does not reach its starting point");
        }
        const int step = targets.second - targets.first;
        for (const int sign : {1, -1}) {
            const std::optional<double> before = stage.sight.position(stage.axis);
            stage.sight.announce(
                fmt::format("{} makes a small step {}", stage.axis.title,
                            sign > 0 ? stage.axis.directions.forward : stage.axis.directions.backward));
            requireDone(stage.guard.send(stage.axis, octetsFor(Mode::Delta, sign * kFast, step)));
            details.push_back(detailOf(stage, stage.sight.steps(stage.axis, before, sign * step),
                                       fmt::format("delta {}", sign * step)));
        }
    });
}

/** Starts a continuous move that a witness watches. */
Seen startRun(const Stage &stage, int speed, milliseconds timeout) {
    const std::optional<double> before = stage.sight.position(stage.axis);
    stage.sight.announce(fmt::format("{} moves {} for {} seconds at most", stage.axis.title,
                                     speed > 0 ? stage.axis.directions.forward : stage.axis.directions.backward,
                                     std::chrono::duration_cast<std::chrono::seconds>(timeout).count()));
    requireDone(stage.guard.run(stage.axis, speed, timeout));
    return stage.sight.moves(stage.axis, before, speed > 0 ? 1 : -1);
}

/** Brings an axis to where it can move in both directions. */
void prepareRun(const Stage &stage) {
    const Targets targets = targetsOf(stage.context, stage.axis);
    requireDone(stage.guard.send(stage.axis, octetsFor(Mode::Absolute, kFast, targets.second)));
    stage.sight.reaches(stage.axis, targets.second);
}

Finding seeContinuous(Context &context) {
    return judgeSeen(context, [](const Stage &stage, Details &details) {
        prepareRun(stage);
        for (const int speed : {kSlow, -kSlow}) {
            details.push_back(
                detailOf(stage, startRun(stage, speed, kTimeout), fmt::format("continuous, speed {}", speed)));
            stage.guard.send(stage.axis, octetsFor(Mode::Stop, 0, 0));
        }
    });
}

/** Judges whether a continuous move ends. */
Finding seeEnd(Context &context, milliseconds timeout, bool stops) {
    return judgeSeen(context, [=](const Stage &stage, Details &details) {
        prepareRun(stage);
        if (startRun(stage, kSlow, timeout).answer != Seen::Answer::Yes) {
            throw NotPossible("no move was seen");
        }
        if (stops) {
            requireDone(stage.guard.send(stage.axis, octetsFor(Mode::Stop, 0, 0)));
        }
        details.push_back(
            detailOf(stage, stage.sight.rests(stage.axis), stops ? "after a stop" : "after its time-out"));
    });
}

} // namespace

std::vector<Rule> motionRules() {
    const auto rule = [](const char *name, const char *expectation, const char *source,
                         std::function<Finding(Context &)> judge) {
        return Rule{name, Level::Moves, kPositions, expectation, source, std::move(judge)};
    };
    return {
        rule("motion-absolute", "an absolute move is seen to reach its target", kPositionSource, seeAbsolute),
        rule("motion-delta", "a step is seen to have its direction and its size", kPositionSource, seeDelta),
        rule("motion-continuous", "a continuous move is seen in the direction of its speed", kPositionSource,
             seeContinuous),
        rule("motion-stop", "a stop is seen to end a continuous move", kPositionSource,
             [](Context &context) { return seeEnd(context, kLongTimeout, true); }),
        rule("motion-timeout", "a continuous move is seen to end with its time-out", kTimeoutSource,
             [](Context &context) { return seeEnd(context, kTimeout, false); }),
    };
}

} // namespace ptzctl::check
