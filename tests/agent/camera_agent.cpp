// SPDX-License-Identifier: Apache-2.0
#include "camera_agent.h"

#include <algorithm>
#include <iterator>

#include "object_oids.h"
#include "settings.h"

namespace harness {

namespace {

/** Waits until the camera has got the commands so far: a subagent executes a SET after the answer, and in order. */
void awaitExecution(const Agent &agent, Manager &manager) {
    if (agent.isolated()) {
        manager.get(oids::rangeTrueNorthOffset);
    }
}

} // namespace

AgentOptions withCamera(AgentOptions options, const Camera &camera) {
    const AgentOptions module = withModule(camera.directory());
    options.module = module.module;
    options.cameraDirectory = module.cameraDirectory;
    options.environment.insert(module.environment.begin(), module.environment.end());
    return options;
}

AgentOptions withFastClock() {
    AgentOptions options;
    options.fakeTime = "+0 x60";
    return options;
}

std::string modelName(const Agent &agent) {
    const Result result = Manager(agent.peer()).get(oids::modelName);
    return result.ok() && result.single().type == Type::Octets ? result.single().octets : "";
}

std::vector<std::string> objectsWithoutServices() {
    return {oids::rangeMaximumPreset,
            oids::rangePanLeftLimit,
            oids::rangePanRightLimit,
            oids::rangePanHomePosition,
            oids::rangeTrueNorthOffset,
            oids::rangeTiltUpLimit,
            oids::rangeTiltDownLimit,
            oids::rangeMinimumPanStepAngle,
            oids::rangeMinimumTiltStepAngle,
            oids::timeoutPan,
            oids::timeoutTilt,
            oids::presetGotoPosition,
            oids::presetStorePosition,
            oids::positionPan,
            oids::positionTilt};
}

std::vector<std::string> oidsOf(const std::vector<Varbind> &varbinds) {
    std::vector<std::string> result;
    std::transform(varbinds.begin(), varbinds.end(), std::back_inserter(result),
                   [](const Varbind &varbind) { return varbind.oid; });
    return result;
}

std::size_t threadsWithoutModule() {
    return agentPrefix().empty() ? 1 : 2;
}

std::size_t threadsWithModule() {
    return threadsWithoutModule() + 1;
}

CameraAgent::CameraAgent(const std::string &camera, const AgentOptions &agent)
    : camera_(camera), agent_(withCamera(agent, camera_)), manager_(agent_.peer()) {}

std::string CameraAgent::get(const std::string &oid) {
    return recordedValue(manager_.get(oid).single());
}

std::vector<Varbind> CameraAgent::walk() {
    std::vector<Varbind> all = manager_.walk(oids::kNtcipSubtree);
    const std::vector<Varbind> vendor = manager_.walk(oids::kVendorSubtree);
    all.insert(all.end(), vendor.begin(), vendor.end());
    return all;
}

void CameraAgent::set(const std::string &oid, const std::string &octets) {
    const Result result = manager_.set({octetString(oid, octets)});
    EXPECT_TRUE(result.ok()) << oid << ": " << result;
    awaitExecution(agent_, manager_);
}

void CameraAgent::setInteger(const std::string &oid, std::int64_t value) {
    const Result result = manager_.set(oid, Type::Integer, value);
    EXPECT_TRUE(result.ok()) << oid << ": " << result;
    awaitExecution(agent_, manager_);
}

std::size_t CameraAgent::logged(const std::string &text) const {
    return agent_.moduleLog().count(text);
}

std::vector<std::string> CameraAgent::finishedOperations(const CameraEvents &events) const {
    setField(camera_, "device_information/1", "serial", "finished");
    EXPECT_TRUE(events.waitFor({{"event", "changed"}, {"fields", {{"serial", "finished"}}}}));
    return operations(events);
}

std::vector<std::string> operations(const CameraEvents &events) {
    std::vector<std::string> names;
    for (const nlohmann::json &event : events.matching({{"event", "command"}})) {
        names.push_back(event.at("operation"));
    }
    return names;
}

} // namespace harness
