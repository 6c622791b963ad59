// SPDX-License-Identifier: Apache-2.0
#include "device.h"

#include "camera_model.h"

namespace camera {

namespace {

Answer getStaticInformation(const Scope<DeviceInformation> &scope) {
    const DeviceInformation &state = scope.state;
    return results(state.model, state.firmware, state.hardware, state.serial, state.text5, state.text6, state.text7,
                   state.text8, state.flag);
}

Answer reboot(const Scope<DeviceManagement> &scope, std::int32_t kind) {
    constexpr std::int32_t kOrdinaryRestart = 2;
    if (kind != kOrdinaryRestart) {
        return {wire::kNotSupported};
    }
    ++scope.state.reboots;
    scope.model.report(targetId(DeviceManagement::definition().service, scope.index), scope.model.now(), "reboot",
                       {{"kind", kind}, {"seconds", scope.state.rebootSeconds}});
    scope.model.restart(scope.state.rebootSeconds);
    return {};
}

const Fields<RelayConfiguration> &relayConfigurationFields() {
    using Configuration = RelayConfiguration;
    static const Fields<Configuration> fields = {
        integerField("c1", &Configuration::c1), integerField("c2", &Configuration::c2),
        integerField("c3", &Configuration::c3), integerField("c4", &Configuration::c4),
        integerField("c5", &Configuration::c5), integerField("c6", &Configuration::c6),
        integerField("c7", &Configuration::c7),
    };
    return fields;
}

Answer getRelayConfiguration(const Scope<Relay> &scope) {
    const RelayConfiguration &now = scope.state.configuration;
    return results(now.c1, now.c2, now.c3, now.c4, now.c5, now.c6, now.c7);
}

Answer setRelayConfiguration(const Scope<Relay> &scope, std::uint8_t c1, std::uint8_t c2, std::int32_t c3,
                             std::uint8_t c4, std::int32_t c5, std::int32_t c6, std::int32_t c7) {
    scope.state.configuration = {c1, c2, c3, c4, c5, c6, c7};
    return {};
}

Answer setRelayState(const Scope<Relay> &scope, std::uint8_t state) {
    if (state > 1) {
        return {wire::kInvalidArgument};
    }
    if (scope.state.configuration.c1 == 0) {
        return {wire::kNotSupported};
    }
    constexpr unsigned kEnergised = 1;
    scope.state.state = static_cast<std::uint8_t>((scope.state.state & ~kEnergised) | state);
    return {};
}

/** Restores the start state of a relay, which needs power, and keeps its configuration. */
void restartRelay(const Scope<Relay> &scope, const Relay &start) {
    scope.state.state = start.state;
}

} // namespace

const Definition<AlarmInput> &AlarmInput::definition() {
    static const Definition<AlarmInput> definition = {
        "alarm",
        {integerField("state", &AlarmInput::state)},
        {operation(
            "get_state_send", +[](const Scope<AlarmInput> &target) { return results(target.state.state); })}};
    return definition;
}

const Definition<DeviceInformation> &DeviceInformation::definition() {
    using State = DeviceInformation;
    static const Definition<State> definition = {
        "device_information",
        {nullableTextField("model", &State::model), nullableTextField("firmware", &State::firmware),
         nullableTextField("hardware", &State::hardware), nullableTextField("serial", &State::serial),
         nullableTextField("text5", &State::text5), nullableTextField("text6", &State::text6),
         nullableTextField("text7", &State::text7), nullableTextField("text8", &State::text8),
         integerField("flag", &State::flag)},
        {operation("get_static_information_send", getStaticInformation)}};
    return definition;
}

const Definition<DeviceManagement> &DeviceManagement::definition() {
    static const Definition<DeviceManagement> definition = {
        "device_management",
        {integerField("reboots", &DeviceManagement::reboots),
         integerField("rebootSeconds", &DeviceManagement::rebootSeconds, 0, kLongestReboot)},
        {operation("reboot_send", reboot)}};
    return definition;
}

const Definition<Power> &Power::definition() {
    using Target = const Scope<Power> &;
    static const Definition<Power> definition = {
        "power",
        {integerField("powerState", &Power::powerState), integerField("voltageState", &Power::voltageState)},
        {operation(
             "get_power_state_send", +[](Target target) { return results(target.state.powerState); }),
         operation(
             "get_voltage_state_send", +[](Target target) { return results(target.state.voltageState); })}};
    return definition;
}

const Definition<Relay> &Relay::definition() {
    static const Definition<Relay> definition = [] {
        Fields<Relay> fields = {integerField("state", &Relay::state)};
        addPart(fields, "configuration", &Relay::configuration, relayConfigurationFields());
        return Definition<Relay>{
            "relay",
            fields,
            {operation("get_configuration_send", getRelayConfiguration),
             operation(
                 "get_state_send", +[](const Scope<Relay> &target) { return results(target.state.state); }),
             operation("set_configuration_send", setRelayConfiguration), operation("set_state_send", setRelayState)},
            [](const Relay & /*state*/) -> std::optional<Problem> { return std::nullopt; },
            std::nullopt,
            restartRelay};
    }();
    return definition;
}

const Definition<Temperature> &Temperature::definition() {
    static const Definition<Temperature> definition = {
        "temperature",
        {integerField("temperature", &Temperature::temperature)},
        {operation(
            "get_temperature_send",
            +[](const Scope<Temperature> &target) { return results(target.state.temperature); })}};
    return definition;
}

} // namespace camera
