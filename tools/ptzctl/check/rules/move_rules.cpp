// SPDX-License-Identifier: Apache-2.0
#include <algorithm>
#include <array>

#include <fmt/format.h>

#include "axis_rules.h"
#include "definitions.h"
#include "error_status.h"
#include "families.h"
#include "object_oids.h"
#include "octets_text.h"

namespace ptzctl::check {

namespace {

using ptz::ByteOrder;
using ptz::Mode;
using std::chrono::milliseconds;

constexpr int kSpeed = 32;
constexpr milliseconds kShortTime{1000};

/** A command that each axis must accept or refuse. */
struct Command {
    const char *what;
    std::string octets;
};

std::vector<Command> refusedModes() {
    // Those who look at two bits only read a stop.
    return {{"mode 4", {4, 0, 0, 0}}, {"mode 252", {'\xFC', 0, 0, 0}}};
}

std::vector<Command> refusedSpeeds() {
    return {{"a stop with speed 1", {0, 1, 0, 0}}, {"a stop with speed -1", {0, '\xFF', 0, 0}}};
}

Finding judgeStop(Context &context) {
    return judgeAxes(context, [](MoveGuard &guard, const ptz::Axis &axis, Details &details) {
        details.push_back(judgeAccepted(axis, guard.send(axis, octetsFor(Mode::Stop, 0, 0)), "a stop"));
    });
}

Finding judgeStopOfAll(Context &context) {
    const MoveGuard guard(context);
    std::vector<snmp::Varbind> varbinds;
    for (const ptz::Axis *axis : guard.axes()) {
        varbinds.push_back(snmp::octetString(axis->positionOid, octetsFor(Mode::Stop, 0, 0)));
    }
    if (varbinds.size() < 2) {
        return {Result::NotEquipped, "the camera has fewer than two axes", {}};
    }
    const Exchange &exchange = context.set(varbinds);
    const std::string what = fmt::format("a SET of {} stops", varbinds.size());
    Detail detail = judgeAccepted(*guard.axes().front(), exchange, what);
    return {detail.result, std::move(detail.observation), {}};
}

/** Judges commands that must be refused. Only pan and tilt know which positions they have. */
Finding judgeRefusals(Context &context, const std::vector<Command> &commands, bool onlyTurning) {
    return judgeAxes(context, [&](MoveGuard &guard, const ptz::Axis &axis, Details &details) {
        for (const Command &command : commands) {
            if (turns(axis) || !onlyTurning) {
                details.push_back(judgeRefused(axis, guard.send(axis, command.octets), command.what));
            }
        }
    });
}

Finding judgePositionRange(Context &context) {
    std::vector<Command> commands;
    // In either byte order beyond the circle.
    for (const int position : {kCircle, 0xFFFF}) {
        commands.push_back(
            {position == kCircle ? "position 36000" : "position 65535", octetsFor(Mode::Absolute, kSpeed, position)});
    }
    return judgeRefusals(context, commands, true);
}

Finding judgePositionType(Context &context) {
    return judgeAxes(context, [&](MoveGuard & /*guard*/, const ptz::Axis &axis, Details &details) {
        details.push_back(judgeRefused(axis, context.set({snmp::integer(axis.positionOid, 0)}), "an INTEGER"));
    });
}

Finding judgeAbsolute(Context &context) {
    return judgeAxes(context, [&](MoveGuard &guard, const ptz::Axis &axis, Details &details) {
        const Targets targets = targetsOf(context, axis);
        for (const int target : {targets.second, targets.first}) {
            details.push_back(judgeAccepted(axis, guard.send(axis, octetsFor(Mode::Absolute, kSpeed, target)),
                                            fmt::format("absolute {}", target)));
        }
    });
}

Finding judgeDelta(Context &context) {
    return judgeAxes(context, [&](MoveGuard &guard, const ptz::Axis &axis, Details &details) {
        const Targets targets = targetsOf(context, axis);
        const int step = targets.second - targets.first;
        for (const int speed : {kSpeed, -kSpeed}) {
            details.push_back(judgeAccepted(axis, guard.send(axis, octetsFor(Mode::Delta, speed, step)),
                                            fmt::format("delta {} with speed {}", step, speed)));
        }
    });
}

Finding judgeContinuous(Context &context) {
    return judgeAxes(context, [&](MoveGuard &guard, const ptz::Axis &axis, Details &details) {
        for (const int speed : {kSpeed, -kSpeed, ptz::kSlowest}) {
            details.push_back(judgeAccepted(axis, guard.run(axis, speed, kShortTime),
                                            fmt::format("continuous with speed {}", speed)));
            guard.send(axis, octetsFor(Mode::Stop, 0, 0));
        }
    });
}

/** Judges what an axis answers after a command: the command, or a position as a command. */
Detail judgeAnswer(Context &context, const ptz::Axis &axis, const std::string &sent) {
    const Value value = context.get(axis.positionOid);
    if (!value.present() || value.varbind.type != snmp::Type::Octets) {
        return axisDetail(axis, Result::Fail, "no octets after a command");
    }
    const std::string &octets = value.varbind.octets;
    const std::string text = snmp::hexText(octets);
    if (octets == sent) {
        return axisDetail(axis, Result::Pass, "answers the command");
    }
    try {
        ptz::decode(octets, ByteOrder::HighFirst);
        return axisDetail(axis, Result::Pass, "answers " + text);
    } catch (const std::invalid_argument &error) {
        return axisDetail(axis, Result::Fail, fmt::format("answers {}: {}", text, error.what()));
    }
}

Finding judgeReadBack(Context &context) {
    return judgeAxes(context, [&](MoveGuard &guard, const ptz::Axis &axis, Details &details) {
        const std::string sent = octetsFor(Mode::Absolute, kSpeed, targetsOf(context, axis).first);
        const Exchange &exchange = guard.send(axis, sent);
        if (!exchange.valid() || exchange.response->error != 0) {
            throw NotPossible("the camera does not take an absolute move");
        }
        details.push_back(judgeAnswer(context, axis, sent));
    });
}

Finding judgeAtomic(Context &context) {
    const MoveGuard guard(context);
    if (guard.axes().size() < 2) {
        return {Result::NotEquipped, "the camera has fewer than two axes", {}};
    }
    const ptz::Axis &first = *guard.axes()[0];
    const ptz::Axis &second = *guard.axes()[1];
    const Targets targets = targetsOf(context, first);
    const Value before = context.get(first.positionOid);
    const int target =
        before.varbind.octets == octetsFor(Mode::Absolute, kSpeed, targets.first) ? targets.second : targets.first;
    const std::string octets = octetsFor(Mode::Absolute, kSpeed, target);
    const Exchange &exchange = context.set({snmp::octetString(first.positionOid, octets),
                                            snmp::octetString(second.positionOid, refusedModes().front().octets)});
    if (!exchange.valid()) {
        throw Undecided(describeResponse(exchange));
    }
    if (exchange.response->error == 0) {
        return {Result::Skipped, "the camera accepts mode 4", {}};
    }
    const Value after = context.get(first.positionOid);
    if (after.varbind.octets == octets) {
        return {Result::Fail,
                fmt::format("{} took its command although {} was refused", objectOf(first), objectOf(second)),
                {}};
    }
    return {Result::Pass,
            fmt::format("refused with {}, and nothing changed", snmp::describeError(exchange.response->error).name),
            {}};
}

Finding judgePresetRange(Context &context) {
    const MoveGuard guard(context);
    if (!context.value(oids::presetGotoPosition).present()) {
        return {Result::NotEquipped, "absent", {}};
    }
    Details details;
    for (const int preset : {256, 1000}) {
        const Exchange &exchange = context.set({snmp::integer(oids::presetGotoPosition, preset)});
        Detail detail = judgeRefused(ptz::axes().front(), exchange, fmt::format("preset {}", preset));
        detail.object = "presetGotoPosition";
        details.push_back(detail);
    }
    return summarize(std::move(details));
}

} // namespace

std::vector<Rule> moveRules() {
    const auto rule = [](const char *name, const char *object, const char *expectation, const char *source,
                         std::function<Finding(Context &)> judge) {
        return Rule{name, Level::Moves, object, expectation, source, std::move(judge)};
    };
    return {
        rule("move-stop", kPositions, "each axis takes a stop", kPositionSource, judgeStop),
        rule("move-stop-all", kPositions, "one SET stops all axes", kPositionSource, judgeStopOfAll),
        rule("move-mode", kPositions, "a mode above 3 is refused", kPositionSource,
             [](Context &context) { return judgeRefusals(context, refusedModes(), false); }),
        rule("move-stop-speed", kPositions, "a stop with a speed is refused", kPositionSource,
             [](Context &context) { return judgeRefusals(context, refusedSpeeds(), false); }),
        rule("move-range", "positionPan, positionTilt", "a position of 360.00 degrees and more is refused",
             kPositionSource, judgePositionRange),
        rule("move-type", kPositions, "a value that is not an OCTET STRING is refused", kPositionSource,
             judgePositionType),
        rule("move-atomic", "positionPan, positionTilt", "a SET with a refused command executes none of its commands",
             "RFC 3416, 4.2.5", judgeAtomic),
        rule("move-byte-order", "positionPan, positionTilt", "the high octet of a position comes first",
             kPositionSource, judgeByteOrder),
        rule("move-absolute", kPositions, "each axis takes absolute moves to and fro", kPositionSource, judgeAbsolute),
        rule("move-answer", kPositions, "after a command a GET answers it or a position in its form", kPositionSource,
             judgeReadBack),
        rule("move-delta", kPositions, "each axis takes steps in both directions", kPositionSource, judgeDelta),
        rule("move-continuous", kPositions, "each axis with a time-out takes continuous moves, the speed -128 included",
             kPositionSource, judgeContinuous),
        rule("preset-recall-range", "presetGotoPosition", "a preset outside 0 to 255 is refused", kPresetSource,
             judgePresetRange),
        rule("preset-recall", "presetGotoPosition", "the camera takes the number of a preset and answers it",
             kPresetSource, [](Context &context) { return judgePreset(context, oids::presetGotoPosition); }),
    };
}

} // namespace ptzctl::check
