// SPDX-License-Identifier: Apache-2.0
#include "fault_requests.h"

#include <algorithm>

#include "object_oids.h"
#include "position_commands.h"

namespace faults {

namespace {

using namespace harness;
using namespace position_commands;
using namespace std::string_literals;
using Calls = std::vector<Call>;

/** The module table of NTCIP 1201, above moduleNumber and the others. */
constexpr const char *kModuleTable = ".1.3.6.1.4.1.1206.4.2.6";

/** A call whose failure is logged by a text of its own, or not at all. */
Call call(const std::string &service, const std::string &operation, const std::string &log = "") {
    return {service, operation + "_send", log};
}

/** A call whose failure is logged as it is written. */
Call logged(const std::string &service, const std::string &operation, unsigned lostBits = 0) {
    return {service, operation + "_send", "Failed zorva api call: zorva_api_" + service + "_" + operation + "_send(",
            lostBits};
}

Call sensor(const std::string &service, const std::string &operation) {
    return call(service, operation, "zorva_api_" + service + "_" + operation + "_send sensor 0 failed");
}

Calls together(Calls first, const Calls &rest) {
    first.insert(first.end(), rest.begin(), rest.end());
    return first;
}

Request set(const Varbind &value, const Calls &calls = {}) {
    return {value, calls, false, recordedValue(value)};
}

/** The service that drives the focus: the plain motor goes before the stepper motor. */
std::string focusOf(const Services &services) {
    return services.count("lens_focus") != 0 ? "lens_focus" : "focus_stepper";
}

/** Calls of a GET of the objects below an OID. The module holds all other objects. */
struct ReadRule {
    std::string subtree;
    Calls calls;
    bool genErr;
};

std::vector<ReadRule> readRules(const Services &services) {
    const Call soft = logged("positioning", "get_soft_position_limits");
    const Call mechanics = logged("positioning", "get_implementation_position_limits");
    constexpr unsigned kIris = 0x80;
    constexpr unsigned kFocus = 0x40;
    constexpr unsigned kAll = 0xFF;
    return {
        {oids::rangePanLeftLimit, {soft}, false},
        {oids::rangePanRightLimit, {soft}, false},
        {oids::rangeTiltUpLimit, {soft, mechanics}, false},
        {oids::rangeTiltDownLimit, {soft, mechanics}, false},
        {oids::rangeMaximumPreset, {logged("presets_tours", "get_max_presets", kAll)}, false},
        {oids::systemLensFeatureStatus,
         {logged(focusOf(services), "get_manual_mode_enable", kFocus),
          logged("exposure", "get_manual_mode_enable", kIris)},
         false},
        {oids::inputStatus, {call("alarm", "get_state")}, true},
        {oids::outputStatus, {call("relay", "get_state", "handle_outputStatus: MODE_SET_RESERVE2 fail")}, true},
        {oids::temperature, {sensor("temperature", "get_temperature")}, true},
        {oids::power, {sensor("power", "get_power_state")}, true},
        {oids::voltage, {sensor("power", "get_voltage_state")}, true},
        {oids::alarmStatesState, {call("alarm", "get_state")}, true},
        {oids::relayStatesState, {call("relay", "get_state")}, true},
    };
}

/**
 * Commands to one axis, which the camera carries out wherever it is by then: a step of nothing, and a position that
 * every axis reaches. Those to a position and those at a velocity want other limits, so they take turns.
 */
std::vector<Request> positionCommands(const char *oid, const Calls &conversion) {
    const auto positioning = [](const char *operation) { return logged("positioning", operation); };
    Call setLimits = positioning("set_soft_velocity_limits");
    setLimits.always = false;
    const Calls speed = {positioning("get_soft_velocity_limits"), setLimits,
                         positioning("get_implementation_velocity_limits")};
    const Call soft = positioning("get_soft_position_limits");
    const Calls start = {positioning("clear_velocity_limits"), positioning("get_position"), soft};
    const Calls move =
        together(together(together(start, conversion), speed), {positioning("move_to_position_with_speed_percentage")});
    const Calls run = together(together({soft}, speed), {positioning("set_velocity_with_timeout")});
    return {set(octetString(oid, delta(64, 0)), move), set(octetString(oid, continuous(-64)), run),
            set(octetString(oid, absolute(127, 1000)), move), set(octetString(oid, continuous(64)), run),
            set(octetString(oid, stop()), {positioning("set_velocity")})};
}

/** Operations of a lens drive; an empty text for a missing operation. */
struct LensDrive {
    std::string service;
    std::string readPosition;
    std::string moveTo;
    std::string run;
};

std::vector<Request> lensCommands(const std::string &oid, const LensDrive &drive) {
    const auto calls = [&drive](const std::string &operation) {
        return operation.empty() ? Calls{} : Calls{call(drive.service, operation)};
    };
    return {set(octetString(oid, delta(1, 0x1000)), together(calls(drive.readPosition), calls(drive.moveTo))),
            set(octetString(oid, absolute(0, 0x4000)), calls(drive.moveTo)),
            set(octetString(oid, continuous(1)), calls(drive.run)), set(octetString(oid, stop()), calls(drive.run))};
}

std::vector<Request> featureCommands(const Services &services) {
    const std::string focus = focusOf(services);
    const Call startFocus = call(focus, focus == "lens_focus" ? "do_auto_focus" : "start_quick_auto_focus");
    const Call setFocus = call(focus, "set_manual_mode_enable");
    const Call setIris = call("exposure", "set_manual_mode_enable");
    const std::string control = oids::systemLensFeatureControl;
    return {set(octetString(control, "\xC0\x00"s), {setFocus, setIris}),
            set(octetString(control, "\xC0\x80"s), {setFocus, startFocus, setIris}),
            set(octetString(oids::systemLensEquipped, "\x40")), set(octetString(oids::systemLensEquipped, "\xC0"))};
}

std::vector<Request> timeoutCommands(const char *oid) {
    const Calls calls = {logged("positioning", "set_velocity_command_timeout")};
    return {set(integer(oid, 4000), calls), set(integer(oid, 5000), calls)};
}

/** A SET of the number of a preset; a GET answers one octet. */
Request preset(const std::string &oid, char number, const std::string &operation) {
    Request request = set(integer(oid, number), {logged("presets_tours", "get_preset_id_for_quarnapi_id"),
                                                 logged("presets_tours", operation)});
    request.held = recordedValue(octetString(oid, {number}));
    return request;
}

std::vector<Request> presetCommands() {
    std::vector<Request> commands;
    for (const char number : {'\x07', '\x08'}) {
        commands.push_back(preset(oids::presetStorePosition, number, "set_preset_with_current_position"));
        commands.push_back(preset(oids::presetGotoPosition, number, "move_to_preset"));
    }
    return commands;
}

/** Relays end as they begin: off. */
std::vector<Request> relayCommands() {
    const auto calls = [](const std::string &handler) {
        const std::string text = handler + ": MODE_COMMIT fail";
        Call setUp = call("relay", "set_configuration", text);
        setUp.always = false;
        return Calls{call("relay", "get_configuration", text), setUp, call("relay", "set_state", text)};
    };
    const Calls rowCalls = together({call("relay", "get_state", "handle_relayStates: MODE_SET_RESERVE2 fail")},
                                    calls("handle_relayStates"));
    std::vector<Request> commands;
    for (const char *command : {"\x01\x80", "\x02\x80"}) {
        commands.push_back(set(octetString(oids::outputControl, command), calls("handle_outputControl")));
    }
    for (const unsigned row : {1U, 2U}) {
        commands.push_back(set(integer(oids::row(oids::relayStatesState, row), 0), rowCalls));
    }
    for (Request &command : commands) {
        command.genErr = true;
        command.held.clear(); // whether the relay was switched depends
    }
    return commands;
}

std::vector<Request> rebootCommands() {
    const std::string oid = oids::rebootDevice;
    Request reboot =
        set(integer(oid, 1),
            {call("device_management", "reboot", "handle_rebootDevice: snmpset reboot - rebooting system now!!!!")});
    reboot.held = "0";
    reboot.onlyFailed = true;
    return {reboot, set(integer(oid, 7))};
}

std::vector<Request> zoomCommands(const Services &services) {
    if (services.count("positioning") == 0) {
        return lensCommands(oids::positionZoomLens, {"zoom_stepper", "get_position", "set_position", ""});
    }
    const Calls conversion = {logged("positioning", "get_soft_position_limits"),
                              logged("positioning", "get_digital_zoom_enable"),
                              logged("positioning", "get_max_optical_and_digital_zoom")};
    std::vector<Request> commands = positionCommands(oids::positionZoomLens, conversion);
    const std::vector<Request> timeouts = timeoutCommands(oids::timeoutZoom);
    commands.insert(commands.end(), timeouts.begin(), timeouts.end());
    return commands;
}

std::vector<std::vector<Request>> commandFamilies(const Services &services) {
    const std::string focus = focusOf(services);
    const LensDrive focusDrive = focus == "lens_focus" ? LensDrive{focus, "get_manual_focus_position",
                                                                   "set_manual_focus_position", "set_velocity"}
                                                       : LensDrive{focus, "get_position", "set_position", ""};
    return {positionCommands(oids::positionPan, {}),
            positionCommands(oids::positionTilt, {}),
            zoomCommands(services),
            timeoutCommands(oids::timeoutPan),
            timeoutCommands(oids::timeoutTilt),
            {set(integer(oids::rangeTrueNorthOffset, 0)), set(integer(oids::rangeTrueNorthOffset, 65535))},
            lensCommands(oids::positionFocusLens, focusDrive),
            lensCommands(oids::positionIrisLens, {"iris", "get_position", "set_position", "set_velocity"}),
            featureCommands(services),
            presetCommands(),
            relayCommands(),
            rebootCommands()};
}

/** A module does not call services that the camera does not have. */
void dropCallsWithoutService(std::vector<Request> &requests, const Services &services) {
    for (Request &request : requests) {
        const auto missing = [&services](const Call &each) { return services.count(each.service) == 0; };
        request.calls.erase(std::remove_if(request.calls.begin(), request.calls.end(), missing), request.calls.end());
    }
}

/** Rows of the library's calls. */
struct Row {
    std::string service;
    std::string operation;
};

std::vector<Row> rows() {
    return {
#define ZORVA_CALL(service, operation, ...) {#service, #operation},
#include "service_calls.def"
    };
}

} // namespace

bool Request::isGet() const {
    return varbind.type == Type::Null;
}

std::vector<std::string> allServices() {
    return {
#define ZORVA_SERVICE(service) #service,
#include "service_calls.def"
    };
}

std::vector<std::string> operationsOf(const std::string &service) {
    std::vector<std::string> operations;
    for (const Row &row : rows()) {
        if (row.service == service) {
            operations.push_back(row.operation);
        }
    }
    return operations;
}

std::vector<Request> reads(const std::vector<Varbind> &walk, const Services &services) {
    const std::vector<ReadRule> rules = readRules(services);
    std::vector<Request> requests;
    for (const Varbind &varbind : walk) {
        Request request;
        request.varbind.oid = varbind.oid;
        for (const ReadRule &rule : rules) {
            if (isBelow(varbind.oid, rule.subtree)) {
                request.calls = rule.calls;
                request.genErr = rule.genErr;
            }
        }
        requests.push_back(request);
    }
    dropCallsWithoutService(requests, services);
    return requests;
}

std::vector<Request> writes(const std::vector<Varbind> &walk, const Services &services) {
    std::set<std::string> shown;
    for (const Varbind &varbind : walk) {
        shown.insert(varbind.oid);
    }
    std::vector<Request> requests;
    std::set<std::string> written;
    for (const std::vector<Request> &family : commandFamilies(services)) {
        for (const Request &request : family) {
            if (shown.count(request.varbind.oid) != 0) {
                requests.push_back(request);
                written.insert(request.varbind.oid);
            }
        }
    }
    for (const std::string &oid : shown) {
        if (written.count(oid) == 0) {
            requests.push_back({integer(oid, 1)});
        }
    }
    dropCallsWithoutService(requests, services);
    return requests;
}

std::vector<StartFault> startFaults(const std::string &service) {
    const std::string init = "initiator_init";
    const std::vector<std::string> identity = {kModuleTable,    oids::modelNumber, oids::modelName, oids::serialNumber,
                                               oids::fwVersion, oids::swVersion,   oids::hwVersion};
    const std::vector<std::string> focus = {oids::rangeFocusLimit,         oids::timeoutFocus,
                                            oids::positionFocusLens,       oids::systemLensFeatureControl,
                                            oids::systemLensFeatureStatus, oids::systemLensEquipped};
    const std::vector<std::string> zoom = {oids::rangeZoomLimit, oids::timeoutZoom, oids::positionZoomLens};
    const auto rangeFails = [](const std::string &name, const std::string &operation) {
        const Call read = logged(name, operation);
        return StartFault{name, read.operation, read.log, {}};
    };
    const std::vector<StartFault> faults = {
        {"alarm",
         init,
         "InitAlarm: failed alarm initiator init",
         {oids::alarmStatus, oids::inputStatus, oids::registered::alarmStatesTable}},
        {"device_information", init, "InitDeviceInfo: failed dev info initiator init", identity},
        {"device_information", "get_static_information_send", "InitDeviceInfo: failed dev info:get_static_information",
         identity},
        {"device_management", init, "InitRebootInfo: failed dev info initiator init", {oids::rebootDevice}},
        {"exposure", init, ": failed exposure initiator init", {}, {{oids::systemLensFeatureStatus, "\"@\""}}},
        {"focus_stepper", init, "InitFocusStepper: failed focus_stepper initiator init", focus},
        rangeFails("focus_stepper", "get_limits"),
        {"iris",
         init,
         "InitIris: failed iris initiator init",
         {oids::rangeIrisLimit, oids::timeoutIris, oids::positionIrisLens}},
        rangeFails("iris", "get_position"),
        {"lens_focus", init, "InitFocus: failed focus initiator init", focus},
        rangeFails("lens_focus", "get_manual_focus_position"),
        {"positioning",
         init,
         "InitPositioning: failed positioning initiator init",
         zoom,
         {{oids::rangePanRightLimit, "0"},
          {oids::rangeTiltUpLimit, "0"},
          {oids::rangeTiltDownLimit, "0"},
          {oids::timeoutPan, "0"},
          {oids::timeoutTilt, "0"}}},
        rangeFails("positioning", "get_velocity_command_timeout"),
        {"power", init, "InitPower: failed power initiator init", {oids::power, oids::voltage}},
        {"presets_tours", init, "InitPresets: failed presets initiator init", {}, {{oids::rangeMaximumPreset, "0"}}},
        {"relay",
         init,
         "InitRelay: failed relay initiator init",
         {oids::outputStatus, oids::outputControl, oids::registered::relayStatesTable}},
        {"temperature", init, "InitTemperature: failed temp initiator init", {oids::temperature}},
        {"zoom_stepper", init, "InitZoomStepper: failed zoom zoom stepper initiator init", zoom},
        rangeFails("zoom_stepper", "get_limits"),
    };
    std::vector<StartFault> ofService;
    std::copy_if(faults.begin(), faults.end(), std::back_inserter(ofService),
                 [&service](const StartFault &fault) { return fault.service == service; });
    return ofService;
}

} // namespace faults
