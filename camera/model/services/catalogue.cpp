// SPDX-License-Identifier: Apache-2.0
#include <map>

#include "device.h"
#include "lens.h"
#include "positioning.h"
#include "presets.h"

namespace camera {

namespace {

using Maker = std::unique_ptr<Service> (*)();

template <typename... States>
std::map<std::string, Maker> makers() {
    return {{States::definition().service,
             []() -> std::unique_ptr<Service> { return std::make_unique<ServiceOf<States>>(); }}...};
}

const std::map<std::string, Maker> &catalogue() {
    static const std::map<std::string, Maker> all =
        makers<AlarmInput, DeviceInformation, DeviceManagement, Exposure, FocusStepper, Iris, LensFocus, Positioning,
               Power, Presets, Relay, Temperature, ZoomStepper>();
    return all;
}

} // namespace

std::vector<std::string> knownServices() {
    std::vector<std::string> names;
    for (const auto &entry : catalogue()) {
        names.push_back(entry.first);
    }
    return names;
}

std::unique_ptr<Service> makeService(const std::string &name) {
    const auto found = catalogue().find(name);
    return found == catalogue().end() ? nullptr : found->second();
}

} // namespace camera
