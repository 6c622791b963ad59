// SPDX-License-Identifier: Apache-2.0
#include "camera_requests.h"

#include <algorithm>
#include <iterator>
#include <numeric>

#include <fmt/format.h>

#include "error_status.h"
#include "failure.h"
#include "oid_text.h"

namespace ptz {

namespace {

using snmp::Cause;
using snmp::Failure;
using snmp::Response;
using snmp::Varbind;

constexpr std::size_t kObjectsPerRequest = 16;
constexpr std::size_t kMostRows = 64;

Failure badResponse(const std::string &what) {
    return {Cause::BadResponse, what, "the answer was discarded; check for a device between here and the camera"};
}

/** Returns the place of the varbind with the error, from 0. @throws Failure when the response does not tell it */
std::size_t refusedPlace(const Response &response, std::size_t count) {
    // An agent names no varbind when a command fails during its execution. With a single one there is no doubt.
    if (response.errorIndex == 0 && count == 1) {
        return 0;
    }
    if (response.errorIndex < 1 || static_cast<std::size_t>(response.errorIndex) > count) {
        const snmp::ErrorDescription error = snmp::describeError(response.error);
        throw Failure(Cause::Refused, "the camera answered " + error.name, error.advice);
    }
    return static_cast<std::size_t>(response.errorIndex) - 1;
}

/** Checks the number of varbinds. @throws Failure for another number than expected */
void requireCount(const Response &response, std::size_t count) {
    if (response.varbinds.size() != count) {
        throw badResponse(
            fmt::format("the camera answered {} values to a request for {}", response.varbinds.size(), count));
    }
}

/** Checks the OID of a varbind. @throws Failure for another one than requested */
void requireInstance(const Varbind &answered, const Instance &requested) {
    if (answered.oid != requested.oid) {
        throw badResponse("the camera answered " + instanceAt(answered.oid).name + " to a request for " +
                          requested.name);
    }
}

Reading failed(const Instance &instance, long error) {
    const snmp::ErrorDescription description = snmp::describeError(error);
    return {instance, snmp::nameOnly(instance.oid), description.name + ": " + description.advice, false};
}

Reading checked(const Instance &instance, const Varbind &value) {
    if (value.type == snmp::Type::NoSuchObject || value.type == snmp::Type::NoSuchInstance) {
        return {instance, value, "the camera does not have it", true};
    }
    if (!snmp::hasValue(value.type)) {
        return {instance, value, "the camera answered " + snmp::typeName(value.type), false};
    }
    return {instance, value, instance.object != nullptr ? validate(*instance.object, value) : "", false};
}

/** Reads the instances at some places, and puts each reading at the same place. */
void readPlaces(snmp::Requester &camera, const std::vector<Instance> &instances, std::vector<std::size_t> places,
                std::vector<Reading> &readings) {
    while (!places.empty()) {
        std::vector<Varbind> varbinds;
        std::transform(places.begin(), places.end(), std::back_inserter(varbinds),
                       [&](std::size_t place) { return snmp::nameOnly(instances[place].oid); });
        const Response response = camera.exchange(snmp::Operation::Get, varbinds);
        if (response.error == snmp::kTooBig && places.size() > 1) {
            const auto half = places.begin() + static_cast<std::ptrdiff_t>(places.size() / 2);
            readPlaces(camera, instances, {places.begin(), half}, readings);
            places.erase(places.begin(), half);
        } else if (response.error != 0) {
            const std::size_t refused = refusedPlace(response, places.size());
            readings[places[refused]] = failed(instances[places[refused]], response.error);
            places.erase(places.begin() + static_cast<std::ptrdiff_t>(refused));
        } else {
            requireCount(response, places.size());
            for (std::size_t i = 0; i < places.size(); ++i) {
                requireInstance(response.varbinds[i], instances[places[i]]);
                readings[places[i]] = checked(instances[places[i]], response.varbinds[i]);
            }
            return;
        }
    }
}

} // namespace

std::vector<Reading> readAll(snmp::Requester &camera, const std::vector<Instance> &instances) {
    std::vector<Reading> readings(instances.size());
    for (std::size_t start = 0; start < instances.size(); start += kObjectsPerRequest) {
        std::vector<std::size_t> places(std::min(kObjectsPerRequest, instances.size() - start));
        std::iota(places.begin(), places.end(), start);
        readPlaces(camera, instances, places, readings);
    }
    return readings;
}

Reading read(snmp::Requester &camera, const Instance &instance) {
    return readAll(camera, {instance}).front();
}

Reading require(snmp::Requester &camera, const Instance &instance) {
    Reading reading = read(camera, instance);
    if (!reading.ok()) {
        throw Failure(Cause::Refused, instance.name + ": " + reading.problem);
    }
    return reading;
}

std::vector<Reading> readColumn(snmp::Requester &camera, const std::string &column) {
    std::vector<Reading> rows;
    std::string last = column;
    while (rows.size() < kMostRows) {
        const Response response = camera.exchange(snmp::Operation::GetNext, {snmp::nameOnly(last)});
        if (response.error != 0) {
            rows.push_back(failed(instanceAt(last), response.error));
            return rows;
        }
        requireCount(response, 1);
        const Varbind &next = response.varbinds.front();
        if (next.type == snmp::Type::EndOfMibView || !snmp::isBelow(next.oid, column)) {
            return rows;
        }
        if (!snmp::comesBefore(last, next.oid)) {
            throw badResponse("the camera answered " + snmp::withoutDot(next.oid) + " as the successor of " +
                              snmp::withoutDot(last));
        }
        rows.push_back(checked(instanceAt(next.oid), next));
        last = next.oid;
    }
    return rows;
}

void writeAll(snmp::Requester &camera, const std::vector<Assignment> &assignments) {
    std::vector<Varbind> varbinds;
    std::transform(assignments.begin(), assignments.end(), std::back_inserter(varbinds),
                   [](const Assignment &assignment) { return assignment.value; });
    const Response response = camera.exchange(snmp::Operation::Set, varbinds);
    if (response.error != 0) {
        const Assignment &refused = assignments[refusedPlace(response, assignments.size())];
        const snmp::ErrorDescription error = snmp::describeError(response.error);
        throw Failure(Cause::Refused,
                      fmt::format("the camera refused {} = {}: {}", refused.instance.name,
                                  snmp::valueText(refused.value), error.name),
                      error.advice);
    }
    requireCount(response, assignments.size());
    for (std::size_t i = 0; i < assignments.size(); ++i) {
        requireInstance(response.varbinds[i], assignments[i].instance);
    }
}

} // namespace ptz
