// SPDX-License-Identifier: Apache-2.0
#include "camera_requests.h"

#include <algorithm>
#include <chrono>
#include <iterator>
#include <optional>
#include <utility>

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

constexpr std::ptrdiff_t kObjectsPerRequest = 16;
constexpr std::size_t kMostRows = 64;

Failure badResponse(const std::string &what) {
    return {Cause::BadResponse, what, "the answer was discarded; check for a device between here and the camera"};
}

/** Returns the place of the varbind with the error, from 0. @return nothing when the response does not tell it */
std::optional<std::size_t> refusedPlace(const Response &response, std::size_t count) {
    // With a single varbind there is no doubt.
    if (count == 1) {
        return 0;
    }
    const bool isPlace = response.errorIndex >= 1 && static_cast<std::size_t>(response.errorIndex) <= count;
    return isPlace ? std::optional(static_cast<std::size_t>(response.errorIndex) - 1) : std::nullopt;
}

/** Makes the failure of a request with an error that belongs to none of its varbinds. */
Failure refusal(const Response &response) {
    const snmp::ErrorDescription error = snmp::describeError(response.error);
    return {Cause::Refused, "the camera answered " + error.name, error.advice};
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
    if (!snmp::hasValue(value.type) || !snmp::isDefined(value.type)) {
        return {instance, value, "the camera answered " + snmp::typeName(value.type), false};
    }
    const std::string deviation = instance.object != nullptr ? validate(*instance.object, value) : "";
    return {instance, value, deviation.empty() ? "" : "the camera answered " + deviation, false};
}

std::vector<Varbind> namesOf(const std::vector<Instance> &instances) {
    std::vector<Varbind> names;
    std::transform(instances.begin(), instances.end(), std::back_inserter(names),
                   [](const Instance &instance) { return snmp::nameOnly(instance.oid); });
    return names;
}

/** Converts a response to readings. @throws Failure unless it has exactly the requested instances */
std::vector<Reading> readingsOf(const Response &response, const std::vector<Instance> &instances) {
    requireCount(response, instances.size());
    std::vector<Reading> readings;
    for (std::size_t i = 0; i < instances.size(); ++i) {
        requireInstance(response.varbinds[i], instances[i]);
        readings.push_back(checked(instances[i], response.varbinds[i]));
    }
    return readings;
}

/** Returns readings without values. */
std::vector<Reading> unread(const std::vector<Instance> &instances, const std::string &problem) {
    std::vector<Reading> readings;
    std::transform(instances.begin(), instances.end(), std::back_inserter(readings), [&](const Instance &instance) {
        return Reading{instance, snmp::nameOnly(instance.oid), problem, false};
    });
    return readings;
}

/** Converts a response that may be missing, unusable or an error. */
std::vector<Reading> readingsOrProblem(const std::optional<Response> &response,
                                       const std::vector<Instance> &instances) {
    if (!response) {
        return unread(instances, "no answer in time");
    }
    if (response->error != 0) {
        return unread(instances, snmp::describeError(response->error).name);
    }
    try {
        return readingsOf(*response, instances);
    } catch (const Failure &failure) {
        return unread(instances, failure.what());
    }
}

std::vector<Reading> readSome(snmp::Requester &camera, const std::vector<Instance> &instances);

/** Reads the instances around one that the camera refused. */
std::vector<Reading> readAround(snmp::Requester &camera, std::vector<Instance> instances, std::size_t place,
                                long error) {
    const auto offset = static_cast<std::ptrdiff_t>(place);
    const Reading refused = failed(instances[place], error);
    instances.erase(instances.begin() + offset);
    std::vector<Reading> readings = instances.empty() ? std::vector<Reading>() : readSome(camera, instances);
    readings.insert(readings.begin() + offset, refused);
    return readings;
}

/** Reads instances. Halves a request that fails, until the failing instance is alone or the agent names it. */
std::vector<Reading> readSome(snmp::Requester &camera, const std::vector<Instance> &instances) {
    const Response response = camera.exchange(snmp::Operation::Get, namesOf(instances), snmp::kReadPatience);
    if (response.error == 0) {
        return readingsOf(response, instances);
    }
    const bool isTooBig = response.error == snmp::kTooBig && instances.size() > 1;
    const std::optional<std::size_t> place = refusedPlace(response, instances.size());
    if (place && !isTooBig) {
        return readAround(camera, instances, *place, response.error);
    }
    if (response.error == snmp::kAuthorizationError) {
        throw refusal(response);
    }
    const auto half = instances.begin() + static_cast<std::ptrdiff_t>(instances.size() / 2);
    std::vector<Reading> readings = readSome(camera, {instances.begin(), half});
    const std::vector<Reading> rest = readSome(camera, {half, instances.end()});
    readings.insert(readings.end(), rest.begin(), rest.end());
    return readings;
}

/** Returns the name of a column. */
std::string nameOf(const std::string &column) {
    return snmp::parentOf(instanceAt(column + ".1").name);
}

/** Reads the row that a walk cannot reach because its successor cannot be read. @return nothing beyond the last row */
std::optional<Reading> readRowAfter(snmp::Requester &camera, const std::string &column, const std::string &last) {
    const std::uint32_t row = last == column ? 0 : snmp::parseOid(last).back();
    const Reading reading = read(camera, instanceAt(column + "." + std::to_string(row + 1)));
    return reading.missing ? std::nullopt : std::optional(reading);
}

} // namespace

std::vector<Reading> readAll(snmp::Requester &camera, const std::vector<Instance> &instances) {
    std::vector<Reading> readings;
    for (auto start = instances.begin(); start != instances.end();) {
        const auto end = start + std::min<std::ptrdiff_t>(kObjectsPerRequest, instances.end() - start);
        const std::vector<Reading> some = readSome(camera, {start, end});
        readings.insert(readings.end(), some.begin(), some.end());
        start = end;
    }
    return readings;
}

std::vector<Reading> readQuickly(snmp::Requester &camera, const std::vector<Instance> &instances) {
    constexpr snmp::Patience kQuick = {1, std::chrono::seconds(1)};
    try {
        return readingsOrProblem(camera.exchange(snmp::Operation::Get, namesOf(instances), kQuick), instances);
    } catch (const Failure &failure) {
        return unread(instances, failure.what());
    }
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
    for (;; last = rows.back().instance.oid) {
        if (rows.size() > kMostRows) {
            throw badResponse(fmt::format("the camera answered more than {} rows of {}", kMostRows, nameOf(column)));
        }
        const Response response =
            camera.exchange(snmp::Operation::GetNext, {snmp::nameOnly(last)}, snmp::kReadPatience);
        if (response.error == snmp::kAuthorizationError) {
            throw refusal(response);
        }
        if (response.error != 0) {
            const std::optional<Reading> row = readRowAfter(camera, column, last);
            if (!row) {
                return rows;
            }
            rows.push_back(*row);
            continue;
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
    }
}

Written writeAll(snmp::Requester &camera, const std::vector<Assignment> &assignments, const Delivery &delivery) {
    std::vector<Varbind> varbinds;
    std::vector<Instance> instances;
    for (const Assignment &assignment : assignments) {
        varbinds.push_back(assignment.value);
        instances.push_back(assignment.instance);
    }
    snmp::WriteResponse responses;
    if (delivery.attempts == 1) {
        responses = camera.write(delivery.readsBefore ? namesOf(instances) : std::vector<Varbind>(), varbinds);
    } else {
        responses.written = camera.exchange(snmp::Operation::Set, varbinds, {delivery.attempts, {}});
    }
    const Response &response = responses.written;
    if (response.error != 0) {
        const std::optional<std::size_t> place = refusedPlace(response, assignments.size());
        if (!place) {
            throw refusal(response);
        }
        const Assignment &refused = assignments[*place];
        const snmp::ErrorDescription error = snmp::describeError(response.error);
        throw Failure(Cause::Refused,
                      fmt::format("the camera refused {} = {}: {}", refused.instance.name,
                                  snmp::valueText(refused.value), error.name),
                      error.advice);
    }
    Written result;
    result.answered = readingsOf(response, instances);
    if (delivery.readsBefore) {
        result.before = readingsOrProblem(responses.before, instances);
    }
    return result;
}

} // namespace ptz
