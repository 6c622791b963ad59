// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * What happens in a simulated camera, and what it holds, as a test sees it.
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

/** The fields of a target, such as "positioning/1". @throws std::runtime_error when the camera does not tell */
nlohmann::json targetState(const Camera &camera, const std::string &target);

/** Sets a field, or a group of fields, of a target; a refusal fails the test. */
void setField(const Camera &camera, const std::string &target, const std::string &field, const nlohmann::json &value);

/** Follows a camera's events from its construction on. */
class CameraEvents {
public:
    /** @throws std::runtime_error when the camera does not tell its events */
    explicit CameraEvents(const Camera &camera);

    /** All events so far, in their order. */
    std::vector<nlohmann::json> all() const;

    /** The events so far that have all the members of a pattern. */
    std::vector<nlohmann::json> matching(const nlohmann::json &pattern) const;

    /** Waits for an event that has all the members of a pattern. @return whether there is one */
    bool waitFor(const nlohmann::json &pattern, std::chrono::milliseconds deadline = std::chrono::seconds(10)) const;

private:
    Process process_;
};

} // namespace harness

#endif
