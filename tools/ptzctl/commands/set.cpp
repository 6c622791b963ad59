// SPDX-License-Identifier: Apache-2.0
#include "set.h"

#include <algorithm>
#include <iterator>
#include <utility>

#include "value_text.h"

namespace ptzctl {

namespace {

using ptz::Assignment;
using ptz::Reading;
using snmp::Cause;
using snmp::Failure;

/** Objects that the camera has accepted, and their values before; an empty list without those. */
struct Accepted {
    std::vector<Assignment> assignments;
    std::vector<Reading> before;
};

/** An object that the camera has not accepted. */
struct Failed {
    ptz::Instance instance;
    Failure failure;
};

std::vector<ptz::Instance> instancesOf(const std::vector<Assignment> &assignments) {
    std::vector<ptz::Instance> instances;
    std::transform(assignments.begin(), assignments.end(), std::back_inserter(instances),
                   [](const Assignment &assignment) { return assignment.instance; });
    return instances;
}

/** Tests whether the value after a command is the one sent. A reading with a problem proves nothing. */
bool isAsSent(const Assignment &sent, const Reading &after) {
    return !after.ok() || ptz::hasValueWritten(after.value, sent.value);
}

/** Writes the value after a command. One that only repeats the command tells no more than its acceptance. */
std::string afterText(const Assignment &sent, const Reading &after, const Settings &settings) {
    const bool isEcho = after.ok() && isAsSent(sent, after) && after.instance.object != nullptr &&
                        ptz::holdsLastCommand(*after.instance.object);
    return isEcho ? "accepted" : readingText(after, settings);
}

void report(Context &context, const Accepted &accepted, const std::vector<Reading> &after) {
    const Settings &settings = context.settings;
    const bool hasBefore = !accepted.before.empty();
    std::vector<std::vector<std::string>> rows = {{""}};
    if (hasBefore) {
        rows[0].push_back(settings.style.heading("before"));
    }
    rows[0].insert(rows[0].end(), {settings.style.heading("sent"), settings.style.heading("after")});
    for (std::size_t i = 0; i < after.size(); ++i) {
        const Assignment &sent = accepted.assignments[i];
        const auto &[instance, value] = sent;
        nlohmann::ordered_json &data = context.report.data["written"][instance.name];
        rows.push_back({instance.name});
        if (hasBefore) {
            rows.back().push_back(readingText(accepted.before[i], settings));
            data["before"] = readingJson(accepted.before[i], settings);
        }
        rows.back().push_back(valueText(instance, value, settings));
        rows.back().push_back(afterText(sent, after[i], settings));
        data["sent"] = readingJson({instance, value, "", false}, settings);
        data["after"] = readingJson(after[i], settings);
        data["verified"] = after[i].ok() && isAsSent(sent, after[i]) && !ptz::holdsLastCommand(*instance.object);
    }
    context.report.text += alignedRows(rows);
}

/** Returns the failure of a command whose value afterwards is another one. */
std::optional<Failure> deviation(Context &context, const Accepted &accepted, const std::vector<Reading> &after) {
    for (std::size_t i = 0; i < after.size(); ++i) {
        if (!isAsSent(accepted.assignments[i], after[i])) {
            return Failure(Cause::Refused,
                           "the camera accepted the command but did not carry it out: " + after[i].instance.name +
                               " is " + readingText(after[i], context.settings),
                           "its log has the reason, unless another manager has written in the meantime");
        }
    }
    return std::nullopt;
}

/** Reads the accepted objects and reports them. @return the failure, if any */
std::optional<Failure> showAfter(Context &context, const Accepted &accepted) {
    const std::vector<ptz::Instance> instances = instancesOf(accepted.assignments);
    std::vector<Reading> after;
    try {
        after = ptz::readAll(context.camera, instances);
    } catch (const Failure &failure) {
        std::transform(instances.begin(), instances.end(), std::back_inserter(after), [&](const auto &instance) {
            return Reading{instance, snmp::nameOnly(instance.oid), failure.what(), false};
        });
        report(context, accepted, after);
        return silentAfterCommand(failure);
    }
    report(context, accepted, after);
    return deviation(context, accepted, after);
}

/** Writes objects in one request and, if it fails, each by itself. */
void tryWrite(Context &context, const std::vector<Assignment> &assignments, const ptz::Delivery &delivery,
              Accepted &accepted, std::vector<Failed> &failed) {
    try {
        const ptz::Written written = ptz::writeAll(context.camera, assignments, delivery);
        accepted.assignments.insert(accepted.assignments.end(), assignments.begin(), assignments.end());
        accepted.before.insert(accepted.before.end(), written.before.begin(), written.before.end());
    } catch (const Failure &failure) {
        if (assignments.size() == 1) {
            failed.push_back({assignments.front().instance, failure});
            return;
        }
        if (failure.cause() != Cause::Refused) {
            throw;
        }
        for (const Assignment &assignment : assignments) {
            tryWrite(context, {assignment}, delivery, accepted, failed);
        }
    }
}

/** Reports the objects that the camera does not have. @return the failure of the first one that it has, if any */
std::optional<Failure> failureOfPresent(Context &context, const std::vector<Failed> &failed) {
    std::optional<Failure> first;
    for (const auto &[instance, failure] : failed) {
        const bool isRefused = failure.cause() == Cause::Refused;
        if (isRefused && ptz::readQuickly(context.camera, {instance}).front().missing) {
            context.report.text += "The camera does not have " + instance.name + ".\n";
        } else if (!first) {
            first = failure;
        }
    }
    return first;
}

} // namespace

Failure silentAfterCommand(const Failure &failure) {
    return {failure.cause(), std::string("the camera accepted the command; then ") + failure.what(), failure.advice()};
}

void writeAndShow(Context &context, const std::vector<Assignment> &assignments) {
    const ptz::Written written =
        ptz::writeAll(context.camera, assignments, ptz::Delivery{context.settings.readsBefore, 1});
    if (const std::optional<Failure> failure = showAfter(context, {assignments, written.before})) {
        throw Failure(*failure);
    }
}

void writeAndShowResponse(Context &context, const Assignment &assignment) {
    const ptz::Written written =
        ptz::writeAll(context.camera, {assignment}, ptz::Delivery{context.settings.readsBefore, 1});
    const Accepted accepted = {{assignment}, written.before};
    const std::vector<Reading> &after = written.answered;
    report(context, accepted, after);
    if (!after.front().ok()) {
        throw Failure(Cause::BadResponse, after.front().instance.name + ": " + after.front().problem,
                      "the camera may have carried out the command");
    }
    if (const std::optional<Failure> failure = deviation(context, accepted, after)) {
        throw Failure(*failure);
    }
}

void writePresent(Context &context, const std::vector<Assignment> &assignments, const ptz::Delivery &delivery) {
    Accepted accepted;
    std::vector<Failed> failed;
    tryWrite(context, assignments, delivery, accepted, failed);
    std::optional<Failure> failure = failureOfPresent(context, failed);
    if (!accepted.assignments.empty()) {
        const std::optional<Failure> later = showAfter(context, accepted);
        failure = failure ? failure : later;
    } else if (!failure) {
        failure = Failure(Cause::Refused, "the camera has none of these axes", "`ptzctl status` lists the axes it has");
    }
    if (failure) {
        throw Failure(*failure);
    }
}

} // namespace ptzctl
