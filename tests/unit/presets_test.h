// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Helpers for the tests of the presets: the service's calls as the scripted core library records them, and the
 * differences of the two commands that take the number of a preset.
 */
#ifndef QUARNSNMP_PRESETS_TEST_H
#define QUARNSNMP_PRESETS_TEST_H

#include "handler_requests.h"

namespace presets {

inline const char *const kInit = "zorva_api_presets_tours_initiator_init";
inline const char *const kGetMaximum = "zorva_api_presets_tours_get_max_presets_send";
inline const char *const kFind = "zorva_api_presets_tours_get_preset_id_for_quarnapi_id_send";
inline const char *const kMove = "zorva_api_presets_tours_move_to_preset_send";
inline const char *const kStore = "zorva_api_presets_tours_set_preset_with_current_position_send";

/** A call over the open connection to the first target. */
inline std::string call(const char *function, const std::string &arguments) {
    return std::string(function) + "(presets_tours, \"presets_tours/1\", " + arguments + ")";
}
inline std::string find(long number) {
    return call(kFind, std::to_string(number) + ", &");
}
inline std::string move(const std::string &id, long /*number*/) {
    return call(kMove, "\"" + id + "\", 1, 300, 1");
}
inline std::string store(const std::string &id, long number) {
    const std::string name = "Preset " + std::to_string(static_cast<std::uint32_t>(number));
    return call(kStore, "\"" + id + "\", \"" + name + "\", " + std::to_string(number) + ", 1");
}

/** Differences of the two commands. */
struct Command : Row { // the name is the object's
    const char *instance;
    const char *carryOut; ///< function that does something with the preset
    std::string (*carryOutCall)(const std::string &id, long number);
    const char *doneText; ///< logged when that has succeeded, with the number and a blank after it
    const char *failedFind;
    const char *failedCarryOut;

    std::string handler() const {
        return "handle_" + name;
    }
};

inline const Command kGoTo{{"presetGotoPosition"},
                           oids::presetGotoPosition,
                           kMove,
                           move,
                           "move_to_preset_by_number, ",
                           "zorva_api_presets_tours_get_preset_id_for_quarnapi_id_send(gApiCookie, "
                           "gPresets[kDefaultIndex].c_str(), newGoToPresetNumber, &preset_id)",
                           "zorva_api_presets_tours_move_to_preset_send(gApiCookie, gPresets[kDefaultIndex].c_str(), "
                           "preset_id, 1.0, kPresetsToursPriorityNormal, 1)"};
inline const Command kStoreHere{
    {"presetStorePosition"},
    oids::presetStorePosition,
    kStore,
    store,
    "set_preset_with_current_position for preset ",
    "zorva_api_presets_tours_get_preset_id_for_quarnapi_id_send(gApiCookie, "
    "gPresets[kDefaultIndex].c_str(), newStorePresetNumber, &preset_id)",
    "zorva_api_presets_tours_set_preset_with_current_position_send(gApiCookie, "
    "gPresets[kDefaultIndex].c_str(), preset_id, preset_name.c_str(), newStorePresetNumber, 1)"};

class PresetsTest : public ModuleTest {
protected:
    void SetUp() override {
        openCore();
        core().targets("presets_tours", {"presets_tours/1", "presets_tours/2"});
        core().answer(kFind, {"home"});
    }
    /** Makes both numbers 0 again; without the service, so that nothing is called. */
    void TearDown() override {
        DeinitPresets();
        for (const char *instance : {kGoTo.instance, kStoreHere.instance}) {
            requests::Request zero(instance, requests::NewValue::integer(0));
            zero.runOwnHandler(MODE_SET_ACTION);
            zero.runOwnHandler(MODE_SET_COMMIT);
        }
    }

    static void start() {
        ASSERT_TRUE(InitPresets(GetIpcCookie()));
        core().clearRecord();
    }
    /** Brings the feature up on a camera whose service does not open. */
    static void startWithoutService() {
        core().fail(kInit, kRefused);
        start();
    }
};

} // namespace presets

#endif
