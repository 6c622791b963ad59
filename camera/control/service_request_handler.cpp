// SPDX-License-Identifier: Apache-2.0
#include "service_request_handler.h"

#include <algorithm>
#include <iterator>

#include "json_text.h"
#include "wire.h"

namespace camera {

namespace {

std::string answerLine(const Answer &answer) {
    nlohmann::json line = nlohmann::json::array({answer.status});
    if (answer.status == wire::kSuccess) {
        line.insert(line.end(), answer.results.begin(), answer.results.end());
    }
    return wire::encode(line);
}

std::string failureLine(std::int32_t status) {
    return wire::encode(nlohmann::json::array({status}));
}

bool isInitiatorRequest(const std::string &operation) {
    return std::find(std::begin(kInitiatorRequests), std::end(kInitiatorRequests), operation) !=
           std::end(kInitiatorRequests);
}

/** Returns true for a request of the form `[operation, target, argument...]`. */
bool isServiceRequest(const nlohmann::json &request) {
    return request.is_array() && request.size() >= kRequestHead && request[0].is_string() &&
           (request[1].is_string() || request[1].is_null());
}

/** Returns true for a request of the form `["get_target_ids", service]`. */
bool isDirectoryRequest(const nlohmann::json &request) {
    return request.is_array() && request.size() == 2 && request[0] == kDirectoryRequest && request[1].is_string();
}

} // namespace

Reply ServiceRequestHandler::handleService(const std::string &service, std::string_view line) {
    const nlohmann::json request = parseLine(line);
    if (!isServiceRequest(request)) {
        return {failureLine(wire::kInvalidArgument)};
    }
    const Faults::Effect effect = takeFaults(service, request);
    const auto &operation = request[0].get_ref<const std::string &>();
    if (effect.status) {
        if (!isInitiatorRequest(operation)) {
            model_.publishCommand(service, request, *effect.status);
        }
        return {failureLine(*effect.status), effect.delay};
    }
    if (isInitiatorRequest(operation)) {
        const bool wellFormed = request.size() == kRequestHead && request[1].is_null();
        return {failureLine(wellFormed ? wire::kSuccess : wire::kInvalidArgument), effect.delay};
    }
    return {answerLine(model_.call(service, request)), effect.delay};
}

Reply ServiceRequestHandler::handleDirectory(std::string_view line) {
    const nlohmann::json request = parseLine(line);
    if (!isDirectoryRequest(request)) {
        return {failureLine(wire::kInvalidArgument)};
    }
    const Faults::Effect effect = takeFaults(wire::kDirectorySocket, request);
    if (effect.status) {
        return {failureLine(*effect.status), effect.delay};
    }
    return {answerLine(targetIds(request[1].get_ref<const std::string &>())), effect.delay};
}

Faults::Effect ServiceRequestHandler::takeFaults(const std::string &service, const nlohmann::json &request) {
    Faults::Effect effect = faults_.take(service, request[0].get_ref<const std::string &>());
    if (effect.status || effect.delay.count() > 0) {
        nlohmann::json members = {{"service", service}, {"operation", request[0]}};
        if (effect.status) {
            members["status"] = *effect.status;
        }
        if (effect.delay.count() > 0) {
            members["milliseconds"] = effect.delay.count();
        }
        model_.events().publish("fault", std::move(members));
    }
    return effect;
}

Answer ServiceRequestHandler::targetIds(const std::string &service) const {
    if (model_.service(service) == nullptr) {
        return {};
    }
    if (!services_.isUp(service)) {
        return {wire::kServiceDown};
    }
    return {wire::kSuccess, model_.targetIds(service)};
}

} // namespace camera
