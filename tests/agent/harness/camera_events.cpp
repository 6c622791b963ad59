// SPDX-License-Identifier: Apache-2.0
#include "camera_events.h"

#include <algorithm>
#include <iterator>
#include <stdexcept>

#include <gtest/gtest.h>

#include "eventually.h"
#include "settings.h"

namespace harness {

namespace {

bool matches(const nlohmann::json &event, const nlohmann::json &pattern) {
    return std::all_of(pattern.items().begin(), pattern.items().end(), [&event](const auto &item) {
        return event.contains(item.key()) && event[item.key()] == item.value();
    });
}

} // namespace

nlohmann::json targetState(const Camera &camera, const std::string &target) {
    const CommandResult result = camera.control("state");
    if (!result.status.clean()) {
        throw std::runtime_error("the camera does not tell its state: " + result.errors);
    }
    const std::string service = target.substr(0, target.find('/'));
    return nlohmann::json::parse(result.output).at("services").at(service).at("targets").at(target);
}

void setField(const Camera &camera, const std::string &target, const std::string &field, const nlohmann::json &value) {
    const CommandResult result = camera.control("set", target, field, value.dump());
    EXPECT_TRUE(result.status.clean()) << result.errors;
}

CameraEvents::CameraEvents(const Camera &camera)
    : process_({{controlPath(), "--directory", camera.directory(), "follow"}}) {
    // The camera does not announce that it has begun to report events; a reported change shows it.
    int change = 0;
    const bool told = eventually(std::chrono::seconds(10), [&] {
        change = change % 200 + 1;
        setField(camera, "device_information/1", "flag", change);
        return !all().empty();
    });
    if (!told) {
        throw std::runtime_error("the camera does not tell its events");
    }
}

std::vector<nlohmann::json> CameraEvents::all() const {
    const std::vector<std::string> lines = process_.output().lines();
    std::vector<nlohmann::json> events;
    std::transform(lines.begin(), lines.end(), std::back_inserter(events),
                   [](const std::string &line) { return nlohmann::json::parse(line); });
    return events;
}

std::vector<nlohmann::json> CameraEvents::matching(const nlohmann::json &pattern) const {
    std::vector<nlohmann::json> events = all();
    events.erase(std::remove_if(events.begin(), events.end(),
                                [&pattern](const nlohmann::json &event) { return !matches(event, pattern); }),
                 events.end());
    return events;
}

bool CameraEvents::waitFor(const nlohmann::json &pattern, std::chrono::milliseconds deadline) const {
    return eventually(deadline, [&] { return !matching(pattern).empty(); });
}

} // namespace harness
