// SPDX-License-Identifier: Apache-2.0
#include "lens_drives.h"

#include <ostream>

#include "feature_modules.h"
#include "listed_objects.h"

namespace lens_tests {

namespace {

/** As `%d` shows it. */
std::string shown(std::int64_t value) {
    return std::to_string(static_cast<std::int32_t>(static_cast<std::uint32_t>(value)));
}

std::vector<Object> focusObjects(const char *range, const char *timeout, const char *position, const char *control,
                                 const char *status, const char *equipped) {
    return {{"rangeFocusLimit", range},          {"timeoutFocus", timeout},
            {"positionFocusLens", position},     {"systemLensFeatureControl", control},
            {"systemLensFeatureStatus", status}, {"systemLensEquipped", equipped}};
}

} // namespace

std::string Object::registeredOid() const {
    return listedObject(name).oid;
}

std::string Object::instance() const {
    return listedObject(name).instance;
}

const Object &Drive::position() const {
    return objects.at(2);
}

std::string Drive::function(const std::string &operation) const {
    return std::string("zorva_api_") + service + "_" + operation;
}

std::string Drive::call(const std::string &operation, const std::string &arguments) const {
    return function(operation) + "(" + service + ", \"" + service + "/1\"" + (arguments.empty() ? "" : ", ") +
           arguments + ")";
}

std::string Drive::readRangeCall() const {
    return call(readRange, isStepper ? "&, &, &, &" : "&, &, &");
}

std::string Drive::readPositionCall() const {
    if (!isStepper) {
        return call(readPosition, "&, &, &");
    }
    // The focus stepper has a second output, which nobody needs.
    return call(readPosition, opensExposure ? "&, &" : "&");
}

std::string Drive::moveCall(std::int64_t target, std::int64_t speed) const {
    const std::string position = isUnsigned ? std::to_string(static_cast<std::uint32_t>(target)) : shown(target);
    return call(move, isStepper ? position + ", " + shown(speed) : position);
}

std::string Drive::velocityCall(int direction, int run) const {
    return call("set_velocity_send", std::to_string(direction) + ", " + std::to_string(run));
}

std::string Drive::rangeLine(const Lens &lens) const {
    const std::string start = std::string(initName) + ": " + rangeWord;
    if (isStepper) {
        return start + ", minPos=" + shown(lens.min) + ", maxPos=" + shown(lens.max) +
               ", minSpeed=" + shown(lens.minSpeed) + ", maxSpeed=" + shown(lens.maxSpeed);
    }
    return start + ", current=" + shown(lens.current) + ", min=" + shown(lens.min) + ", max=" + shown(lens.max);
}

std::string Drive::deltaLine(const Lens &lens, std::int64_t step, std::int64_t target) const {
    const std::string what = std::string(capital) + "Position->";
    return std::string(position().handler) + ": gMin" + what + shown(lens.min) + ", gMax" + what + shown(lens.max) +
           ", current" + what + " " + shown(lens.current) + ", delta" + what + shown(step) + ", calcDelta" + what +
           shown(target);
}

std::string Drive::absoluteLine(const Lens &lens, std::int64_t target) const {
    const std::string what = std::string(capital) + "Position->";
    return std::string(position().handler) + ": gMin" + what + shown(lens.min) + ", gMax" + what + shown(lens.max) +
           ", abs" + what + shown(target);
}

void PrintTo(const Drive &drive, std::ostream *stream) {
    *stream << drive.title;
}

Drive focus() {
    Drive drive{};
    drive.title = "Focus";
    drive.word = "focus";
    drive.capital = "Focus";
    drive.service = "lens_focus";
    drive.initName = "InitFocus";
    drive.init = InitFocus;
    drive.deinit = DeinitFocus;
    drive.noTargetText = "no zorva API focuses";
    drive.initiatorText = "focus";
    drive.waits = true;
    drive.opensExposure = true;
    drive.runs = true;
    drive.logsStop = true;
    drive.logsDirection = true;
    drive.readRange = "get_manual_focus_position_send";
    drive.rangeWord = "get_manual_focus_position";
    drive.readRangeText = "zorva_api_lens_focus_get_manual_focus_position_send(gFocusApiCookie, "
                          "gFocuses[kDefaultIndex].c_str(), &dummy, &gMinFocusPosition, &gMaxFocusPosition)";
    drive.readPosition = "get_manual_focus_position_send";
    drive.move = "set_manual_focus_position_send";
    drive.objects = focusObjects("handle_rangeFocusLimit", "handle_timeoutFocus", "handle_positionFocusLens",
                                 "handle_systemLensFeatureControl1", "handle_systemLensFeatureStatus1",
                                 "handle_systemLensEquipped1");
    drive.constantLines = {"focusLimit=0...", "timeoutFocus=0..."};
    return drive;
}

Drive focusStepper() {
    Drive drive = focus();
    drive.title = "FocusStepper";
    drive.service = "focus_stepper";
    drive.initName = "InitFocusStepper";
    drive.init = InitFocusStepper;
    drive.deinit = DeinitFocusStepper;
    drive.initiatorText = "focus_stepper";
    drive.isStepper = true;
    drive.runs = false;
    drive.logsDirection = false;
    drive.readRange = "get_limits_send";
    drive.rangeWord = "get_limits";
    drive.readRangeText = "zorva_api_focus_stepper_get_limits_send(gFocusApiCookie, "
                          "gFocusSteppers[kDefaultIndex].c_str(), &gMinFocusPosition, &gMaxFocusPosition, "
                          "&gMinFocusSpeed, &gMaxFocusSpeed)";
    drive.readPosition = "get_position_send";
    drive.move = "set_position_send";
    drive.objects = focusObjects("handle_rangeFocusStepperLimit", "handle_timeoutFocusStepper",
                                 "handle_positionFocusStepperLens", "handle_systemLensFeatureControl2",
                                 "handle_systemLensFeatureStatus2", "handle_systemLensEquipped2");
    return drive;
}

Drive iris() {
    Drive drive{};
    drive.title = "Iris";
    drive.word = "iris";
    drive.capital = "Iris";
    drive.service = "iris";
    drive.initName = "InitIris";
    drive.init = InitIris;
    drive.deinit = DeinitIris;
    drive.noTargetText = "no zorva API irises";
    drive.initiatorText = "iris";
    drive.waits = true;
    drive.isUnsigned = true;
    drive.runs = true;
    drive.logsStop = true;
    drive.readRange = "get_position_send";
    drive.rangeWord = "get_iris_position";
    drive.readRangeText = "zorva_api_iris_get_position_send(gApiCookie, gIrises[kDefaultIndex].c_str(), &dummy, "
                          "&gMinIrisPosition, &gMaxIrisPosition)";
    drive.readPosition = "get_position_send";
    drive.move = "set_position_send";
    drive.objects = {{"rangeIrisLimit", "handle_rangeIrisLimit"},
                     {"timeoutIris", "handle_timeoutIris"},
                     {"positionIrisLens", "handle_positionIrisLens"}};
    drive.constantLines = {"", "timeoutIris=0"};
    return drive;
}

Drive zoomStepper() {
    Drive drive{};
    drive.title = "ZoomStepper";
    drive.word = "zoom";
    drive.capital = "Zoom";
    drive.service = "zoom_stepper";
    drive.initName = "InitZoomStepper";
    drive.init = InitZoomStepper;
    drive.deinit = DeinitZoomStepper;
    drive.noTargetText = "no zorva API zoom steppers";
    drive.initiatorText = "zoom zoom stepper";
    drive.isStepper = true;
    drive.readRange = "get_limits_send";
    drive.rangeWord = "get_limits";
    drive.readRangeText = "zorva_api_zoom_stepper_get_limits_send(gApiCookie, gZoomSteppers[kDefaultIndex].c_str(), "
                          "&gMinZoomPosition, &gMaxZoomPosition, &gMinZoomSpeed, &gMaxZoomSpeed)";
    drive.readPosition = "get_position_send";
    drive.move = "set_position_send";
    drive.objects = {{"rangeZoomLimit", "handle_zoomStepperRangeZoomLimit"},
                     {"timeoutZoom", "handle_zoomStepperTimeoutZoom"},
                     {"positionZoomLens", "handle_zoomStepperPositionZoomLens"}};
    drive.constantLines = {"zoomLimit=0...", "timeoutZoom=0..."};
    return drive;
}

std::vector<Drive> allDrives() {
    return {focus(), focusStepper(), iris(), zoomStepper()};
}

} // namespace lens_tests
