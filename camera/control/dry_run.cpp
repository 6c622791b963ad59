// SPDX-License-Identifier: Apache-2.0
#include "dry_run.h"

#include <algorithm>

#include "json_text.h"
#include "wire.h"

namespace camera {

namespace {

/** Returns the service that a command names, in "service" or as a part of "target"; empty without a name. */
std::string serviceOf(const nlohmann::json &command) {
    if (!command.is_object()) {
        return {};
    }
    const nlohmann::json name = command.value(command.contains("target") ? "target" : "service", nlohmann::json());
    const std::string text = name.is_string() ? name.get<std::string>() : "";
    return text.substr(0, text.find('/'));
}

} // namespace

bool SimulatedServices::isUp(const std::string &service) const {
    return down_.count(service) == 0;
}

void SimulatedServices::takeDown(const std::string &service) {
    down_.insert(service);
}

std::optional<std::string> SimulatedServices::bringUp(const std::string &service) {
    down_.erase(service);
    return std::nullopt;
}

DryRun::DryRun(CameraModel &camera, bool skipMissingServices)
    : model_(camera.copy()), skipMissingServices_(skipMissingServices),
      supervisor_(*model_, services_, [](const std::string & /*line*/) {}), handler_(*model_, faults_, supervisor_) {}

std::string DryRun::execute(std::string_view line) {
    const std::string skipped = skippedService(parseLine(line));
    if (!skipped.empty()) {
        return wire::encode({{"ok", true}, {"skipped", skipped}});
    }
    ControlReply reply = handler_.execute(line);
    if (reply.mode != ControlMode::commands) {
        return wire::encode({{"ok", false}, {"error", "a dry run has no such command"}});
    }
    return std::move(reply.line);
}

std::string DryRun::skippedService(const nlohmann::json &command) const {
    const std::string service = serviceOf(command);
    const std::vector<std::string> known = knownServices();
    const bool missing =
        model_->service(service) == nullptr && std::find(known.begin(), known.end(), service) != known.end();
    return skipMissingServices_ && missing ? service : "";
}

} // namespace camera
