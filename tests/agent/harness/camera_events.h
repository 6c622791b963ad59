// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Events and state of a simulated camera.
 */
#ifndef QUARNSNMP_HARNESS_CAMERA_EVENTS_H
#define QUARNSNMP_HARNESS_CAMERA_EVENTS_H

#include <chrono>
#include <string>
#include <vector>

#include <nlohmann/json.hpp>

#include "camera.h"

namespace harness {

using namespace support;

/** Returns the fields of a target, such as "positioning/1". @throws std::runtime_error if the request fails */
nlohmann::json targetState(const Camera &camera, const std::string &target);

/** Sets a field, or a group of fields, of a target; a refusal fails the test. */
void setField(const Camera &camera, const std::string &target, const std::string &field, const nlohmann::json &value);

/** Events of a camera since the construction of the object. */
class CameraEvents {
public:
    /** @throws std::runtime_error if the camera does not report events */
    explicit CameraEvents(const Camera &camera);

    /** All events so far, in their order. */
    std::vector<nlohmann::json> all() const;

    /** The events so far that have all the members of a pattern. */
    std::vector<nlohmann::json> matching(const nlohmann::json &pattern) const;

    /** Waits for an event that has all members of a pattern. @return false after the deadline */
    bool waitFor(const nlohmann::json &pattern, std::chrono::milliseconds deadline = std::chrono::seconds(10)) const;

private:
    Process process_;
};

} // namespace harness

#endif
