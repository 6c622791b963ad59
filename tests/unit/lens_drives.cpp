// SPDX-License-Identifier: Apache-2.0
#include "lens_drives.h"

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
    return "zorva_api_" + service + "_" + operation;
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
    // The focus stepper has a second output, which the module does not use.
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
    const std::string start = initName + ": " + rangeWord;
    if (isStepper) {
        return start + ", minPos=" + shown(lens.min) + ", maxPos=" + shown(lens.max) +
               ", minSpeed=" + shown(lens.minSpeed) + ", maxSpeed=" + shown(lens.maxSpeed);
    }
    return start + ", current=" + shown(lens.current) + ", min=" + shown(lens.min) + ", max=" + shown(lens.max);
}

std::string Drive::deltaLine(const Lens &lens, std::int64_t step, std::int64_t target) const {
    const std::string what = capital + "Position->";
    return std::string(position().handler) + ": gMin" + what + shown(lens.min) + ", gMax" + what + shown(lens.max) +
           ", current" + what + " " + shown(lens.current) + ", delta" + what + shown(step) + ", calcDelta" + what +
           shown(target);
}

std::string Drive::absoluteLine(const Lens &lens, std::int64_t target) const {
    const std::string what = capital + "Position->";
    return std::string(position().handler) + ": gMin" + what + shown(lens.min) + ", gMax" + what + shown(lens.max) +
           ", abs" + what + shown(target);
}

namespace {

Drive driveOf(const std::string &title, const std::string &word, const std::string &service, bool (*init)(void *),
              void (*deinit)(), const std::string &plural) {
    Drive drive{};
    drive.name = title;
    drive.word = word;
    drive.capital = word;
    drive.capital[0] = static_cast<char>(drive.capital[0] - 'a' + 'A');
    drive.service = service;
    drive.initName = "Init" + title;
    drive.init = init;
    drive.deinit = deinit;
    drive.noTargetText = "no zorva API " + plural;
    drive.initiatorText = service;
    return drive;
}

/** Gives the drive its operations. The arguments follow the target in the text of a failed read of the limits. */
void operate(Drive &drive, const char *readRange, const char *readPosition, const char *move, const std::string &range,
             const std::string &targets, const std::string &arguments) {
    drive.readRange = readRange;
    drive.rangeWord = range;
    drive.readRangeText = drive.function(readRange) + "(" + targets + "[kDefaultIndex].c_str(), " + arguments + ")";
    drive.readPosition = readPosition;
    drive.move = move;
}

void operateStepper(Drive &drive, const std::string &targets) {
    drive.isStepper = true;
    drive.runs = false;
    drive.logsDirection = false;
    const std::string &what = drive.capital;
    operate(drive, "get_limits_send", "get_position_send", "set_position_send", "get_limits", targets,
            "&gMin" + what + "Position, &gMax" + what + "Position, &gMin" + what + "Speed, &gMax" + what + "Speed");
}

} // namespace

Drive focus() {
    Drive drive = driveOf("Focus", "focus", "lens_focus", InitFocus, DeinitFocus, "focuses");
    drive.initiatorText = "focus";
    drive.waits = true;
    drive.opensExposure = true;
    drive.runs = true;
    drive.logsStop = true;
    drive.logsDirection = true;
    operate(drive, "get_manual_focus_position_send", "get_manual_focus_position_send", "set_manual_focus_position_send",
            "get_manual_focus_position", "gFocusApiCookie, gFocuses", "&dummy, &gMinFocusPosition, &gMaxFocusPosition");
    drive.objects = focusObjects("handle_rangeFocusLimit", "handle_timeoutFocus", "handle_positionFocusLens",
                                 "handle_systemLensFeatureControl1", "handle_systemLensFeatureStatus1",
                                 "handle_systemLensEquipped1");
    drive.constantLines = {"focusLimit=0...", "timeoutFocus=0..."};
    return drive;
}

Drive focusStepper() {
    Drive drive = driveOf("FocusStepper", "focus", "focus_stepper", InitFocusStepper, DeinitFocusStepper, "focuses");
    drive.waits = true;
    drive.opensExposure = true;
    drive.logsStop = true;
    operateStepper(drive, "gFocusApiCookie, gFocusSteppers");
    drive.objects = focusObjects("handle_rangeFocusStepperLimit", "handle_timeoutFocusStepper",
                                 "handle_positionFocusStepperLens", "handle_systemLensFeatureControl2",
                                 "handle_systemLensFeatureStatus2", "handle_systemLensEquipped2");
    drive.constantLines = {"focusLimit=0...", "timeoutFocus=0..."};
    return drive;
}

Drive iris() {
    Drive drive = driveOf("Iris", "iris", "iris", InitIris, DeinitIris, "irises");
    drive.waits = true;
    drive.isUnsigned = true;
    drive.runs = true;
    drive.logsStop = true;
    operate(drive, "get_position_send", "get_position_send", "set_position_send", "get_iris_position",
            "gApiCookie, gIrises", "&dummy, &gMinIrisPosition, &gMaxIrisPosition");
    drive.objects = {{"rangeIrisLimit", "handle_rangeIrisLimit"},
                     {"timeoutIris", "handle_timeoutIris"},
                     {"positionIrisLens", "handle_positionIrisLens"}};
    drive.constantLines = {"", "timeoutIris=0"};
    return drive;
}

Drive zoomStepper() {
    Drive drive = driveOf("ZoomStepper", "zoom", "zoom_stepper", InitZoomStepper, DeinitZoomStepper, "zoom steppers");
    drive.initiatorText = "zoom zoom stepper";
    operateStepper(drive, "gApiCookie, gZoomSteppers");
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
