// SPDX-License-Identifier: Apache-2.0
#include "check/move_guard.h"

#include <algorithm>
#include <iostream>

#include <fmt/format.h>

#include "object_table.h"
#include "position_command.h"

namespace ptzctl::check {

namespace {

constexpr int kStopAttempts = 4;

const std::string &stopOctets() {
    static const std::string octets(ptz::kCommandSize, '\0');
    return octets;
}

Request setRequest(const snmp::Varbind &varbind) {
    Request request;
    request.verb = Verb::Set;
    request.varbinds = {varbind};
    return request;
}

bool isDone(const Exchange &exchange) {
    return exchange.valid() && exchange.response->error == 0;
}

} // namespace

MoveGuard::MoveGuard(Context &context) : context_(context) {
    for (const ptz::Axis &axis : ptz::axes()) {
        if (context.value(axis.positionOid).present()) {
            axes_.push_back(&axis);
        }
    }
    for (const ptz::Axis *axis : axes_) {
        send(*axis, stopOctets());
    }
}

MoveGuard::~MoveGuard() {
    // The axis that moves first, since lost responses delay the others. One request for each axis: a camera that
    // refuses the stop of one would refuse them all in a common request.
    std::stable_partition(axes_.begin(), axes_.end(), [this](const ptz::Axis *axis) { return axis == running_; });
    for (const ptz::Axis *axis : axes_) {
        try {
            const Request request = setRequest(snmp::octetString(axis->positionOid, stopOctets()));
            const Exchange &exchange = context_.sendAnyway(request, kStopAttempts);
            if (!isDone(exchange)) {
                context_.moveNotes().troubles.push_back(
                    fmt::format("{}: {}; it may still move", describe(request), describeResponse(exchange)));
            }
        } catch (const std::exception &) {
            continue; // the other axes must stop all the same
        }
    }
}

const Exchange &MoveGuard::send(const ptz::Axis &axis, const std::string &octets) {
    return context_.set({snmp::octetString(axis.positionOid, octets)});
}

std::string MoveGuard::limit(const ptz::Axis &axis, std::chrono::milliseconds timeout) {
    const Value &before = context_.value(axis.timeoutOid);
    if (!before.present() || before.varbind.type != snmp::Type::Integer) {
        return "it has no time-out";
    }
    // Cameras that answer -1 for no time-out take 0 for it.
    context_.restoreLater(snmp::integer(axis.timeoutOid, std::max<std::int64_t>(before.varbind.number, 0)));
    const Exchange &exchange = context_.set({snmp::integer(axis.timeoutOid, timeout.count())});
    if (!isDone(exchange)) {
        return "its time-out cannot be set: " + describeResponse(exchange);
    }
    const Value now = context_.get(axis.timeoutOid);
    return now.present() && now.varbind.number == timeout.count() ? "" : "its time-out is not the one that was set";
}

const Exchange &MoveGuard::run(const ptz::Axis &axis, int speed, std::chrono::milliseconds timeout) {
    if (!isDone(send(axis, stopOctets()))) {
        throw NotPossible("no continuous move: the camera does not take a stop");
    }
    const std::string reason = limit(axis, timeout);
    if (!reason.empty()) {
        throw NotPossible("no continuous move: " + reason);
    }
    running_ = &axis;
    return send(axis, ptz::encode({ptz::Mode::Continuous, speed, 0}, ptz::ByteOrder::HighFirst));
}

Sight *sightOf(Context &context) {
    MoveNotes &notes = context.moveNotes();
    const Options &options = context.options();
    if (notes.sight || !notes.reason.empty()) {
        return notes.sight.get();
    }
    if (!options.cameraDirectory.empty()) {
        notes.sight = simulatedSight(options.cameraDirectory);
    } else if (options.ask) {
        notes.sight = personSight(std::cin, std::cerr);
    } else {
        notes.reason = "SNMP does not show motion: use --ask or --camera";
    }
    return notes.sight.get();
}

std::string objectOf(const ptz::Axis &axis) {
    return ptz::instanceAt(axis.positionOid).name;
}

} // namespace ptzctl::check
