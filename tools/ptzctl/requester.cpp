// SPDX-License-Identifier: Apache-2.0
#include "requester.h"

#include <algorithm>
#include <array>
#include <numeric>

#include <fmt/format.h>

#include "failure.h"
#include "objects.h"

namespace ptzctl {

namespace {

constexpr long kTooBig = 1;
constexpr std::size_t kObjectsPerRequest = 16;
constexpr std::size_t kMostRows = 64;

struct ErrorRecord {
    long status;
    const char *name;
    const char *advice;
};

constexpr const char *kLocked = "this community or user may not do this; ask whoever keeps the agent's configuration";
constexpr const char *kAbsent = "the camera does not have this object, or does not show it to this community or user";
constexpr const char *kWrongKind =
    "the camera expects another kind of value; is it really a camera with these objects?";
constexpr const char *kBadValue = "the camera does not take this value; `ptzctl limits` shows what it can do";
constexpr const char *kTrouble = "the camera could not do it; look at its log, and at `ptzctl status`";

constexpr std::array<ErrorRecord, 18> kErrors = {{
    {kTooBig, "tooBig", "the camera cannot put this much into one answer; ask for less"},
    {2, "noSuchName", kAbsent},
    {3, "badValue", kBadValue},
    {4, "readOnly", kLocked},
    {5, "genErr", kTrouble},
    {6, "noAccess", kLocked},
    {7, "wrongType", kWrongKind},
    {8, "wrongLength", kWrongKind},
    {9, "wrongEncoding", kWrongKind},
    {10, "wrongValue", kBadValue},
    {11, "noCreation", kAbsent},
    {12, "inconsistentValue", kBadValue},
    {13, "resourceUnavailable", kTrouble},
    {14, "commitFailed", kTrouble},
    {15, "undoFailed", kTrouble},
    {16, "authorizationError", "the camera wants a higher security level or another user; see --level and --user"},
    {17, "notWritable", "the object can only be read, or this community or user may not write it"},
    {18, "inconsistentName", kAbsent},
}};

Variable nameOnly(const std::string &identifier) {
    return {identifier, Type::Null, 0, ""};
}

Failure misfit(const std::string &what) {
    return {ExitCode::BadAnswer, what, "the answer is not used; is there something between here and the camera?"};
}

/** The number of the varbind that an error is about, from 0. @throws Failure when the answer does not say */
std::size_t refusedPlace(const Reply &reply, std::size_t count) {
    // When a command fails while it is carried out, agents name no varbind; of one there is no doubt.
    if (reply.errorIndex == 0 && count == 1) {
        return 0;
    }
    if (reply.errorIndex < 1 || static_cast<std::size_t>(reply.errorIndex) > count) {
        const Refusal refusal = refusalOf(reply.error);
        throw Failure(ExitCode::Refused, "the camera answered " + refusal.name, refusal.advice);
    }
    return static_cast<std::size_t>(reply.errorIndex) - 1;
}

void requireSameObjects(const std::vector<Variable> &asked, const std::vector<Variable> &answered) {
    if (asked.size() != answered.size()) {
        throw misfit(fmt::format("the camera answered {} values to a request for {}", answered.size(), asked.size()));
    }
    for (std::size_t i = 0; i < asked.size(); ++i) {
        if (asked[i].identifier != answered[i].identifier) {
            throw misfit("the camera answered " + nameOf(answered[i].identifier) + " to a request for " +
                         nameOf(asked[i].identifier));
        }
    }
}

Reading checked(const Variable &value) {
    if (value.type == Type::NoSuchObject || value.type == Type::NoSuchInstance) {
        return {value, "the camera does not have it", true};
    }
    if (!hasValue(value.type)) {
        return {value, "the camera answered " + typeName(value.type), false};
    }
    const Object *const object = objectAt(value.identifier);
    return {value, object != nullptr ? whyNotOf(*object, value) : "", false};
}

/** Reads those of the identifiers that `places` names, and puts what comes into the readings of the same places. */
void readSome(Requester &camera, const std::vector<std::string> &identifiers, std::vector<std::size_t> places,
              std::vector<Reading> &readings) {
    while (!places.empty()) {
        std::vector<Variable> asked;
        asked.reserve(places.size());
        for (const std::size_t place : places) {
            asked.push_back(nameOnly(identifiers[place]));
        }
        const Reply reply = camera.exchange(Request::Get, asked);
        if (reply.error == kTooBig && places.size() > 1) {
            const auto half = places.begin() + static_cast<std::ptrdiff_t>(places.size() / 2);
            readSome(camera, identifiers, {places.begin(), half}, readings);
            places.erase(places.begin(), half);
        } else if (reply.error != 0) {
            const std::size_t refused = refusedPlace(reply, places.size());
            const Refusal refusal = refusalOf(reply.error);
            readings[places[refused]] = {asked[refused], refusal.name + ": " + refusal.advice, false};
            places.erase(places.begin() + static_cast<std::ptrdiff_t>(refused));
        } else {
            requireSameObjects(asked, reply.variables);
            for (std::size_t i = 0; i < places.size(); ++i) {
                readings[places[i]] = checked(reply.variables[i]);
            }
            return;
        }
    }
}

} // namespace

Refusal refusalOf(long error) {
    const auto *const found =
        std::find_if(kErrors.begin(), kErrors.end(), [&](const ErrorRecord &record) { return record.status == error; });
    if (found == kErrors.end()) {
        return {fmt::format("error status {}", error), "SNMP has no such error"};
    }
    return {found->name, found->advice};
}

std::vector<Reading> readAll(Requester &camera, const std::vector<std::string> &identifiers) {
    std::vector<Reading> readings(identifiers.size());
    for (std::size_t start = 0; start < identifiers.size(); start += kObjectsPerRequest) {
        std::vector<std::size_t> places(std::min(kObjectsPerRequest, identifiers.size() - start));
        std::iota(places.begin(), places.end(), start);
        readSome(camera, identifiers, places, readings);
    }
    return readings;
}

Variable readOne(Requester &camera, const std::string &identifier) {
    Reading reading = readAll(camera, {identifier}).front();
    if (!reading.ok()) {
        throw Failure(ExitCode::Refused, nameOf(identifier) + ": " + reading.problem);
    }
    return reading.value;
}

std::vector<Reading> readColumn(Requester &camera, const std::string &column) {
    std::vector<Reading> rows;
    std::string last = column;
    while (rows.size() < kMostRows) {
        const Reply reply = camera.exchange(Request::GetNext, {nameOnly(last)});
        if (reply.error != 0) {
            const Refusal refusal = refusalOf(reply.error);
            rows.push_back({nameOnly(last), refusal.name + ": " + refusal.advice, false});
            return rows;
        }
        if (reply.variables.size() != 1) {
            throw misfit(fmt::format("the camera answered {} values to a request for 1", reply.variables.size()));
        }
        const Variable &next = reply.variables.front();
        if (next.type == Type::EndOfMibView || !isBelow(next.identifier, column)) {
            return rows;
        }
        if (parseIdentifier(next.identifier) <= parseIdentifier(last)) {
            throw misfit("the camera answered " + next.identifier + " as what follows " + last);
        }
        rows.push_back(checked(next));
        last = next.identifier;
    }
    return rows;
}

void writeAll(Requester &camera, const std::vector<Variable> &values) {
    const Reply reply = camera.exchange(Request::Set, values);
    if (reply.error != 0) {
        const std::size_t refused = refusedPlace(reply, values.size());
        const Refusal refusal = refusalOf(reply.error);
        throw Failure(ExitCode::Refused,
                      fmt::format("the camera refused {} = {}: {}", nameOf(values[refused].identifier),
                                  valueText(values[refused]), refusal.name),
                      refusal.advice);
    }
    requireSameObjects(values, reply.variables);
}

} // namespace ptzctl
