// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Presets. NTCIP numbers them 0 to 255, and the camera's service has text IDs. Each command first reads the ID of its
 * number. A store under a new number creates an ID.
 */
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <iterator>
#include <memory>

#include <unistd.h>

#include <boost/lexical_cast.hpp>
#include <boost/uuid/entropy_error.hpp>
#include <boost/uuid/uuid.hpp>
#include <boost/uuid/uuid_io.hpp>

#include "core_utils.h"
#include "feature_modules.h"
#include "oids.h"
#include "service.h"
#include "set_phases.h"
#include "snmp_utils.h"
#include "zorva_api_exception.h"

namespace {

constexpr long kLastPreset = 255;
constexpr int kPresetsToursPriorityNormal = 300;

std::vector<std::string> gPresets;
void *gApiCookie = nullptr;

uint8_t currentGoToPresetNumber = 0;
int32_t newGoToPresetNumber = 0;
uint8_t currentStorePresetNumber = 0;
int32_t newStorePresetNumber = 0;

/** Frees a text that malloc() allocated. */
struct FreeText {
    void operator()(char *text) const {
        free(text);
    }
};
using PresetId = std::unique_ptr<char, FreeText>;

bool IsEmpty(const PresetId &id) {
    return id == nullptr || *id == '\0';
}

/**
 * Reads the ID of newGoToPresetNumber. The failure text names this variable and operators' log filters match it, so
 * each command has a function of its own.
 * @return an empty ID for a number without a preset
 * @throws zorva::core::ZorvaApiException
 */
PresetId FindGoToPreset() {
    char *preset_id = nullptr;
    ZORVA_API_CALL(zorva_api_presets_tours_get_preset_id_for_quarnapi_id_send(gApiCookie,
        gPresets[kDefaultIndex].c_str(), newGoToPresetNumber, &preset_id));
    return PresetId(preset_id);
}

/** Reads the ID of newStorePresetNumber, as FindGoToPreset(). */
PresetId FindStorePreset() {
    char *preset_id = nullptr;
    ZORVA_API_CALL(zorva_api_presets_tours_get_preset_id_for_quarnapi_id_send(gApiCookie,
        gPresets[kDefaultIndex].c_str(), newStorePresetNumber, &preset_id));
    return PresetId(preset_id);
}

/** Moves to the preset newGoToPresetNumber. Does nothing for a number without a preset. */
void GoToPreset(const char *function) {
    const PresetId id = FindGoToPreset();
    if (IsEmpty(id)) {
        return;
    }
    const char *preset_id = id.get();
    ZORVA_API_CALL(zorva_api_presets_tours_move_to_preset_send(gApiCookie, gPresets[kDefaultIndex].c_str(),
        preset_id, 1.0, kPresetsToursPriorityNormal, 1));
    zorva_core_logging_log(GetLogCookie(), kLogInfo, "%s: move_to_preset_by_number, %d ", function,
                           newGoToPresetNumber);
}

/**
 * Creates a random UUID of version 4. The octets are those of getentropy(), because Boost's own generator makes a bare
 * system call.
 * @throws boost::uuids::entropy_error
 */
PresetId MakePresetId() {
    boost::uuids::uuid uuid{};
    if (getentropy(uuid.data, sizeof uuid.data) != 0) {
        throw boost::uuids::entropy_error(errno, "getentropy");
    }
    uuid.data[6] = static_cast<uint8_t>((uuid.data[6] & 0x0FU) | 0x40U); // version
    uuid.data[8] = static_cast<uint8_t>((uuid.data[8] & 0x3FU) | 0x80U); // variant
    return PresetId(strdup(boost::uuids::to_string(uuid).c_str()));
}

/** Stores the present position as the preset newStorePresetNumber. */
void StorePreset(const char *function) {
    PresetId id = FindStorePreset();
    if (IsEmpty(id)) {
        id = MakePresetId();
    }
    const char *preset_id = id.get();
    const std::string preset_name =
        "Preset " + boost::lexical_cast<std::string>(static_cast<uint32_t>(newStorePresetNumber));
    ZORVA_API_CALL(zorva_api_presets_tours_set_preset_with_current_position_send(gApiCookie,
        gPresets[kDefaultIndex].c_str(), preset_id, preset_name.c_str(), newStorePresetNumber, 1));
    zorva_core_logging_log(GetLogCookie(), kLogInfo, "%s: set_preset_with_current_position for preset %d ", function,
                           newStorePresetNumber);
}

/** Differences between the two preset commands. */
struct PresetCommand {
    const char *handlerName;
    uint8_t &current; ///< last committed number
    int32_t &pending; ///< number between the phases of a SET
    void (*carryOut)(const char *function);
};

const PresetCommand kGoTo = {"handle_presetGotoPosition", currentGoToPresetNumber, newGoToPresetNumber, GoToPreset};
const PresetCommand kStore = {"handle_presetStorePosition", currentStorePresetNumber, newStorePresetNumber,
                              StorePreset};

/** Answers an OCTET STRING of one octet, although a SET needs an INTEGER. This is deliberate. */
int AnswerNumber(const PresetCommand &command, netsnmp_request_info *request) {
    return SetRequestValue(request, ASN_OCTET_STR, &command.current, sizeof command.current);
}

int CheckNumber(const PresetCommand &command, netsnmp_request_info *request) {
    // Negative numbers pass. Their low 8 bits are kept, and the service gets the number itself.
    const long number = *request->requestvb->val.integer;
    if (number <= kLastPreset) {
        return SNMP_ERR_NOERROR;
    }
    zorva_core_logging_log(GetLogCookie(), kLogError, "%s: preset number (%ld) outside range 0-255",
                           command.handlerName, number);
    return RefuseRequest(request, SNMP_ERR_WRONGVALUE, SNMP_ERR_GENERR);
}

int Commit(const PresetCommand &command, netsnmp_request_info * /*request*/) {
    command.current = static_cast<uint8_t>(command.pending);
    if (gApiCookie == nullptr) {
        return SNMP_ERR_NOERROR;
    }
    try {
        command.carryOut(command.handlerName);
    } catch (const std::exception &failure) {
        LogFailure(failure);
    }
    return SNMP_ERR_NOERROR;
}

constexpr SetPhases<const PresetCommand> kPhases = {
    AnswerNumber, RefuseOtherTypes<ASN_INTEGER>, CheckNumber, KeepPending, Commit, RestorePending, LogOtherMode};

int HandlePresetCommand(const PresetCommand &command, const netsnmp_agent_request_info *reqinfo,
                        netsnmp_request_info *requests) {
    return ServeLoggedPhase<kPhases>(command.handlerName, command, reqinfo->mode, requests);
}

/** Reads the number of presets that the camera offers. @return 0 without the service and after a failed call */
uint32_t ReadMaximum(const char *function) {
    uint32_t maxPresets = 0;
    try {
        if (gApiCookie != nullptr) {
            ZORVA_API_CALL(zorva_api_presets_tours_get_max_presets_send(
                gApiCookie, gPresets[kDefaultIndex].c_str(), &maxPresets));
        }
    } catch (const std::exception &failure) {
        LogFailure(failure);
        return 0;
    }
    zorva_core_logging_log(GetLogCookie(), kLogInfo, "%s: get_max_presets, %d", function, static_cast<int>(maxPresets));
    return maxPresets;
}

int handle_rangeMaximumPreset(netsnmp_mib_handler * /*handler*/, netsnmp_handler_registration * /*reginfo*/,
                              netsnmp_agent_request_info *reqinfo, netsnmp_request_info *requests) {
    LogEnter(__func__);
    if (reqinfo->mode != MODE_GET && reqinfo->mode != MODE_GETNEXT) {
        return LogUnknownMode(__func__, reqinfo->mode);
    }
    const uint32_t maximum = ReadMaximum(__func__);
    const auto answer = static_cast<int32_t>(maximum > kLastPreset ? kLastPreset : maximum);
    const int returned = SetRequestInteger(requests, answer);
    LogDone(__func__);
    return returned;
}

int handle_presetGotoPosition(netsnmp_mib_handler * /*handler*/, netsnmp_handler_registration * /*reginfo*/,
                              netsnmp_agent_request_info *reqinfo, netsnmp_request_info *requests) {
    return HandlePresetCommand(kGoTo, reqinfo, requests);
}

int handle_presetStorePosition(netsnmp_mib_handler * /*handler*/, netsnmp_handler_registration * /*reginfo*/,
                               netsnmp_agent_request_info *reqinfo, netsnmp_request_info *requests) {
    return HandlePresetCommand(kStore, reqinfo, requests);
}

// clang-format off
const snmp_variable kObjects[] = {
    {"rangeMaximumPreset",  handle_rangeMaximumPreset,  oid_rangeMaximumPreset,  OID_LENGTH(oid_rangeMaximumPreset),  HANDLER_CAN_GETANDGETNEXT},
    {"presetGotoPosition",  handle_presetGotoPosition,  oid_presetGotoPosition,  OID_LENGTH(oid_presetGotoPosition),  HANDLER_CAN_RWRITE},
    {"presetStorePosition", handle_presetStorePosition, oid_presetStorePosition, OID_LENGTH(oid_presetStorePosition), HANDLER_CAN_RWRITE},
};
// clang-format on

const Service kService = {
    "presets_tours", "no zorva API presets", "presets", gPresets, gApiCookie, zorva_api_presets_tours_initiator_init};

} // namespace

bool InitPresets(void *ipcCookie) {
    // Before the discovery, as the objects exist without the service too.
    RegisterScalars(__func__, kObjects, std::size(kObjects));
    FindTargets(kService);
    OpenService(__func__, ipcCookie, kService);
    return true;
}

void DeinitPresets() {
    if (gApiCookie != nullptr) {
        zorva_api_presets_tours_initiator_deinit(gApiCookie);
        gApiCookie = nullptr;
    }
}
