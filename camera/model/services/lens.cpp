#include "lens.h"

namespace camera {

const Definition<FocusStepper> &FocusStepper::definition() {
    static const Definition<FocusStepper> definition = [] {
        using Target = const Scope<FocusStepper> &;
        Fields<FocusStepper> fields;
        addBase(fields, stepperFields());
        fields.push_back(integerField("secondPosition", &FocusStepper::secondPosition));
        fields.push_back(flagField("manualMode", &FocusStepper::manualMode));
        fields.push_back(integerField("quickAutoFocusRuns", &FocusStepper::quickAutoFocusRuns));
        return Definition<FocusStepper>{
            "focus_stepper",
            fields,
            {
                operation("get_limits_send", stepperLimits<FocusStepper>),
                operation("get_manual_mode_enable_send", getManualMode<FocusStepper>),
                operation(
                    "get_position_send",
                    +[](Target target) { return results(target.state.position, target.state.secondPosition); }),
                operation("set_manual_mode_enable_send", setManualMode<FocusStepper>),
                operation("set_position_send", setStepperPosition<FocusStepper>),
                operation(
                    "start_quick_auto_focus_send",
                    +[](Target target) {
                        ++target.state.quickAutoFocusRuns;
                        return Answer{};
                    }),
            },
            [](const FocusStepper &state) { return checkStepper(state); }};
    }();
    return definition;
}

const Definition<ZoomStepper> &ZoomStepper::definition() {
    static const Definition<ZoomStepper> definition = [] {
        Fields<ZoomStepper> fields;
        addBase(fields, stepperFields());
        return Definition<ZoomStepper>{
            "zoom_stepper",
            fields,
            {
                operation("get_limits_send", stepperLimits<ZoomStepper>),
                operation(
                    "get_position_send",
                    +[](const Scope<ZoomStepper> &target) { return results(target.state.position); }),
                operation("set_position_send", setStepperPosition<ZoomStepper>),
            },
            [](const ZoomStepper &state) { return checkStepper(state); }};
    }();
    return definition;
}

const Definition<LensFocus> &LensFocus::definition() {
    static const Definition<LensFocus> definition = [] {
        using Target = const Scope<LensFocus> &;
        Fields<LensFocus> fields;
        addBase(fields, lensDriveFields<std::int32_t>());
        fields.push_back(flagField("manualMode", &LensFocus::manualMode));
        fields.push_back(integerField("autoFocusRuns", &LensFocus::autoFocusRuns));
        return Definition<LensFocus>{"lens_focus",
                                     fields,
                                     {
                                         operation(
                                             "do_auto_focus_send",
                                             +[](Target target) {
                                                 ++target.state.autoFocusRuns;
                                                 return Answer{};
                                             }),
                                         operation(
                                             "get_manual_focus_position_send",
                                             +[](Target target) {
                                                 const LensFocus &state = target.state;
                                                 return results(state.position, state.minimum, state.maximum);
                                             }),
                                         operation("get_manual_mode_enable_send", getManualMode<LensFocus>),
                                         operation(
                                             "set_manual_focus_position_send",
                                             +[](Target target, std::int32_t position) {
                                                 return moveLensDrive<std::int32_t>(target.state, position);
                                             }),
                                         operation("set_manual_mode_enable_send", setManualMode<LensFocus>),
                                         operation("set_velocity_send", runLensDrive<LensFocus>),
                                     },
                                     [](const LensFocus &state) { return checkLensDrive<std::int32_t>(state); }};
    }();
    return definition;
}

const Definition<Iris> &Iris::definition() {
    static const Definition<Iris> definition = [] {
        using Target = const Scope<Iris> &;
        Fields<Iris> fields;
        addBase(fields, lensDriveFields<std::uint32_t>());
        return Definition<Iris>{"iris",
                                fields,
                                {
                                    operation(
                                        "get_position_send",
                                        +[](Target target) {
                                            const Iris &state = target.state;
                                            return results(state.position, state.minimum, state.maximum);
                                        }),
                                    operation(
                                        "set_position_send",
                                        +[](Target target, std::uint32_t position) {
                                            return moveLensDrive<std::uint32_t>(target.state, position);
                                        }),
                                    operation("set_velocity_send", runLensDrive<Iris>),
                                },
                                [](const Iris &state) { return checkLensDrive<std::uint32_t>(state); }};
    }();
    return definition;
}

const Definition<Exposure> &Exposure::definition() {
    static const Definition<Exposure> definition = {
        "exposure",
        {flagField("manualMode", &Exposure::manualMode)},
        {
            operation("get_manual_mode_enable_send", getManualMode<Exposure>),
            operation("set_manual_mode_enable_send", setManualMode<Exposure>),
        }};
    return definition;
}

} // namespace camera
