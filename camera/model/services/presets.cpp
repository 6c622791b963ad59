// SPDX-License-Identifier: Apache-2.0
#include "presets.h"

#include "camera_model.h"
#include "positioning.h"

namespace camera {

namespace {

const Fields<Preset> &presetFields() {
    static const Fields<Preset> fields = {
        textField("id", &Preset::id, kLongestPresetText),
        textField("name", &Preset::name, kLongestPresetText),
        integerField("number", &Preset::number, 0, kHighestPresetNumber),
        integerField("pan", &Preset::pan),
        integerField("tilt", &Preset::tilt),
        integerField("zoom", &Preset::zoom),
    };
    return fields;
}

std::optional<Problem> checkPresets(const Presets &state) {
    if (state.presets.size() > state.maximumPresets) {
        return Problem{"presets", "expected at most " + std::to_string(state.maximumPresets) +
                                      " presets (maximumPresets), found " + std::to_string(state.presets.size())};
    }
    for (std::size_t i = 0; i < state.presets.size(); ++i) {
        const Preset &preset = state.presets[i];
        const std::string path = "presets[" + std::to_string(i) + "]";
        if (preset.id.empty()) {
            return Problem{path + ".id", "expected a text that is not empty"};
        }
        for (std::size_t k = 0; k < i; ++k) {
            if (state.presets[k].id == preset.id || state.presets[k].number == preset.number) {
                const bool sameId = state.presets[k].id == preset.id;
                return Problem{path + (sameId ? ".id" : ".number"),
                               "expected a value other than that of presets[" + std::to_string(k) + "]"};
            }
        }
    }
    return std::nullopt;
}

template <typename Value>
const Preset *findPreset(const Presets &state, Value Preset::*member, const Value &value) {
    const auto found = std::find_if(state.presets.begin(), state.presets.end(),
                                    [&](const Preset &preset) { return preset.*member == value; });
    return found == state.presets.end() ? nullptr : &*found;
}

Answer getMaxPresets(const Scope<Presets> &scope) {
    return results(scope.state.maximumPresets);
}

Answer getPresetId(const Scope<Presets> &scope, std::int32_t number) {
    const Preset *preset = findPreset(scope.state, &Preset::number, number);
    return results(preset == nullptr ? std::string() : preset->id);
}

Answer moveToPreset(const Scope<Presets> &scope, const Text &presetId, double speed, std::int32_t priority,
                    std::int32_t /*flag*/) {
    const Preset *preset = presetId ? findPreset(scope.state, &Preset::id, *presetId) : nullptr;
    if (preset == nullptr) {
        return {wire::kInvalidArgument};
    }
    const auto positioning = scope.model.sibling<Positioning>(scope.index);
    if (!positioning) {
        return {wire::kNotSupported};
    }
    return moveAxes(*positioning,
                    {{{true, preset->pan, speed}, {true, preset->tilt, speed}, {true, preset->zoom, speed}}}, priority);
}

/** Returns an unused ID, for calls without an ID. */
std::string newPresetId(const Presets &state, std::int32_t number) {
    std::string id = "preset-" + std::to_string(number);
    while (findPreset(state, &Preset::id, id) != nullptr) {
        id += "-new";
    }
    return id;
}

Answer setPreset(const Scope<Presets> &scope, const Text &presetId, const Text &name, std::int32_t number,
                 std::int32_t /*flag*/) {
    Presets &state = scope.state;
    if (number < 0 || number > kHighestPresetNumber || (presetId && presetId->size() > kLongestPresetText) ||
        (name && name->size() > kLongestPresetText)) {
        return {wire::kInvalidArgument};
    }
    const auto positioning = scope.model.sibling<Positioning>(scope.index);
    if (!positioning) {
        return {wire::kNotSupported};
    }
    const bool chosen = presetId && !presetId->empty();
    const Preset preset = {chosen ? *presetId : newPresetId(state, number),
                           name.value_or(""),
                           number,
                           positioning->state.pan.position,
                           positioning->state.tilt.position,
                           positioning->state.zoom.position};
    std::vector<Preset> presets = state.presets;
    presets.erase(std::remove_if(presets.begin(), presets.end(),
                                 [&](const Preset &each) { return each.id == preset.id || each.number == number; }),
                  presets.end());
    if (presets.size() >= state.maximumPresets) {
        return {wire::kFailed};
    }
    const auto place =
        std::find_if(presets.begin(), presets.end(), [&](const Preset &each) { return each.number > number; });
    presets.insert(place, preset);
    state.presets = std::move(presets);
    return {};
}

/** Restores the stored presets; only the first ones if their largest number has decreased. */
void restartPresets(const Scope<Presets> &scope, const Presets &start) {
    scope.state.presets = start.presets;
    const std::size_t kept = std::min<std::size_t>(start.presets.size(), scope.state.maximumPresets);
    scope.state.presets.resize(kept);
}

} // namespace

const Definition<Presets> &Presets::definition() {
    static const Definition<Presets> definition = {
        "presets_tours",
        {integerField("maximumPresets", &Presets::maximumPresets, 0, kMostPresets),
         listField("presets", &Presets::presets, presetFields(), kMostPresets)},
        {
            operation("get_max_presets_send", getMaxPresets),
            operation("get_preset_id_for_quarnapi_id_send", getPresetId),
            operation("move_to_preset_send", moveToPreset),
            operation("set_preset_with_current_position_send", setPreset),
        },
        checkPresets,
        std::nullopt,
        restartPresets};
    return definition;
}

} // namespace camera
