// SPDX-License-Identifier: Apache-2.0
#include <algorithm>
#include <set>
#include <utility>

#include "control_desk.h"
#include "scenario.h"
#include "wire.h"

namespace camera {

namespace {

using nlohmann::json;

/** Services that have no sockets. */
class NoSockets final : public ServiceSwitch {
public:
    bool isUp(const std::string &service) const override {
        return down_.count(service) == 0;
    }
    void takeDown(const std::string &service) override {
        down_.insert(service);
    }
    std::optional<std::string> bringUp(const std::string &service) override {
        down_.erase(service);
        return std::nullopt;
    }

private:
    std::set<std::string> down_;
};

/** What of a target's state can be set; the rest would be refused as read-only. */
json settablePart(const Service &service, const json &state) {
    json values = json::object();
    for (const FieldSummary &field : service.fields()) {
        std::string path = "/" + field.key;
        std::replace(path.begin(), path.end(), '.', '/');
        const json::json_pointer place(path);
        if (field.settable && state.contains(place)) {
            values[place] = state[place];
        }
    }
    return values;
}

/** Makes services with the targets that a camera's state shows. */
Services copyOf(const json &state) {
    Services services;
    for (const auto &item : state.at("services").items()) {
        std::unique_ptr<Service> service = makeService(item.key());
        const json &targets = item.value().at("targets");
        for (std::size_t i = 0; service != nullptr && i < targets.size(); ++i) {
            const json &target = targets.at(targetId(item.key(), i));
            if (const std::optional<Problem> problem = service->addTarget(settablePart(*service, target))) {
                throw FileError("the camera's state cannot be understood: " + targetId(item.key(), i) + " " +
                                toString(*problem));
            }
        }
        if (service != nullptr) {
            services.emplace(item.key(), std::move(service));
        }
    }
    return services;
}

/** The service that a command is about; empty when it is about none. */
std::string serviceOf(const json &command) {
    const char *key = command.contains("target") ? "target" : "service";
    const json text = command.value(key, json());
    return text.is_string() ? text.get<std::string>().substr(0, text.get<std::string>().find('/')) : "";
}

/** A camera that nobody sees, for trying commands. */
class Rehearsal {
public:
    explicit Rehearsal(const json &state)
        : model_("rehearsal", "", copyOf(state), [] { return 0.0; }),
          keeper_(model_, sockets_, [](const std::string & /*line*/) {}), desk_(model_, faults_, keeper_) {}

    /** Whether a service is one that cameras can have, and that this one does not. */
    bool isMissing(const std::string &service) const {
        const std::vector<std::string> known = knownServices();
        return model_.service(service) == nullptr && std::find(known.begin(), known.end(), service) != known.end();
    }

    json execute(const json &command) {
        return wire::decode(desk_.execute(wire::encode(command)).line);
    }

private:
    CameraModel model_;
    NoSockets sockets_;
    Faults faults_;
    ServiceKeeper keeper_;
    ControlDesk desk_;
};

} // namespace

void rehearse(Scenario &scenario, const json &state) {
    Rehearsal rehearsal(state);
    for (std::size_t i = 0; i < scenario.steps.size(); ++i) {
        for (ScenarioCommand &each : scenario.steps[i].commands) {
            const std::string service = serviceOf(each.command);
            if (scenario.skipMissingServices && rehearsal.isMissing(service)) {
                each.missingService = service;
                continue;
            }
            expectCarriedOut(scenario, i, rehearsal.execute(each.command));
        }
    }
}

} // namespace camera
