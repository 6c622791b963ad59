// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Relay outputs: a bit map of the first two, a command for one relay, and a table of all relays.
 */
#include <array>
#include <iterator>

#include "core_utils.h"
#include "feature_modules.h"
#include "gpio_table.h"
#include "oids.h"
#include "service.h"
#include "service_calls.h"
#include "set_phases.h"

namespace {

constexpr std::size_t kRelaysInBitmap = 2;
constexpr uint8_t kOnBit = 0x80;

std::vector<std::string> gRelays;
void *gRelayApiCookie = nullptr;
std::array<uint8_t, 2> outputControlValue{};
std::array<uint8_t, 2> savedOutputControlValue{};

// One of each for a whole request: a SET of several rows switches only the last of them.
int32_t relayStateIndex = 0; // counted from 0
uint8_t savedRelayState = 0;
uint8_t newRelayState = 0;

/** Reads the state of a relay, counted from 0. @return false after a failed call, which leaves `state` unchanged */
bool ReadState(std::size_t relay, uint8_t &state) {
    uint8_t present = 0;
    if (watched::zorva_api_relay_get_state_send(gRelayApiCookie, gRelays[relay].c_str(), &present) != 0) {
        return false;
    }
    state = present;
    return true;
}

/** Configures a relay that has no configuration yet. @return false after a failed call */
bool Configure(const char *target) {
    uint8_t c1 = 0;
    uint8_t c2 = 0;
    int32_t c3 = 0;
    uint8_t c4 = 0;
    int32_t c5 = 0;
    int32_t c6 = 0;
    int32_t c7 = 0;
    if (watched::zorva_api_relay_get_configuration_send(gRelayApiCookie, target, &c1, &c2, &c3, &c4, &c5, &c6, &c7) !=
        0) {
        return false;
    }
    return c1 != 0 ||
           watched::zorva_api_relay_set_configuration_send(gRelayApiCookie, target, 1, 0, 1, 0, 1, 1, 1) == 0;
}

/** Switches a relay, counted from 0. @return false after a failed call, which is logged */
bool Switch(const char *function, std::size_t relay, uint8_t state) {
    const char *target = gRelays[relay].c_str();
    if (!Configure(target) || watched::zorva_api_relay_set_state_send(gRelayApiCookie, target, state) != 0) {
        zorva_core_logging_log(GetLogCookie(), kLogError, "%s: MODE_COMMIT fail", function);
        return false;
    }
    return true;
}

int handle_outputStatus(netsnmp_mib_handler * /*handler*/, netsnmp_handler_registration * /*reginfo*/,
                        netsnmp_agent_request_info *reqinfo, netsnmp_request_info *requests) {
    LogEnter(__func__);
    if (reqinfo->mode != MODE_GET && reqinfo->mode != MODE_GETNEXT) {
        return LogUnknownMode(__func__, reqinfo->mode);
    }
    uint8_t bitmap = 0;
    for (std::size_t relay = 0; relay < kRelaysInBitmap && relay < gRelays.size(); ++relay) {
        uint8_t state = 0;
        if (!ReadState(relay, state)) {
            // No RESERVE2 here: the text is that of SelectRelay(), and operators' log filters match it for both.
            zorva_core_logging_log(GetLogCookie(), kLogError, "%s: MODE_SET_RESERVE2 fail", __func__);
            return SNMP_ERR_GENERR;
        }
        bitmap = static_cast<uint8_t>(bitmap | (state & 1U) << relay);
    }
    const int returned = SetRequestValue(requests, ASN_OCTET_STR, &bitmap, sizeof bitmap);
    LogDone(__func__);
    return returned;
}

using OutputControl = const WritableObject<std::array<uint8_t, 2>>;

OutputControl kOutputControl = {"handle_outputControl", savedOutputControlValue, outputControlValue};

/** Answers a GET with the pending value, which is the current one outside a SET. */
int AnswerOutputControl(OutputControl &object, netsnmp_request_info *request) {
    return SetRequestOctets(request, object.pending);
}

int CommitOutputControl(OutputControl &object, netsnmp_request_info *request) {
    object.current = object.pending;
    const auto [number, order] = OctetsOf<2>(request);
    // NTCIP wants a command for relay 0, or for one beyond the last, to succeed.
    if (!gpio::HasTarget(number, gRelays)) {
        return SNMP_ERR_NOERROR;
    }
    if (!Switch(object.handlerName, number - 1U, (order & kOnBit) != 0 ? 1 : 0)) {
        return SNMP_ERR_GENERR;
    }
    return SetRequestOctets(request, object.pending);
}

int RefuseMode(OutputControl & /*object*/, netsnmp_request_info *request, int /*mode*/) {
    return RefuseRequest(request, SNMP_ERR_GENERR, SNMP_ERR_GENERR);
}

constexpr SetPhases<OutputControl> kOutputControlPhases = {
    AnswerOutputControl, RefuseOtherTypes<ASN_OCTET_STR>, DoNothing, KeepPending, CommitOutputControl, RestorePending,
    RefuseMode};

int handle_outputControl(netsnmp_mib_handler * /*handler*/, netsnmp_handler_registration * /*reginfo*/,
                         netsnmp_agent_request_info *reqinfo, netsnmp_request_info *requests) {
    LogEnter(__func__);
    const int returned = ServePhase<kOutputControlPhases>(kOutputControl, reqinfo->mode, requests);
    if (returned == SNMP_ERR_NOERROR) {
        LogDone(__func__);
    }
    return returned;
}

using RelayState = const WritableObject<uint8_t>;

RelayState kRelayState = {"handle_relayStates", savedRelayState, newRelayState};

int AnswerCell(RelayState &object, netsnmp_request_info *request) {
    int row = 0;
    int col = 0;
    GetRowAndColFromRequest(request, row, col);
    if (col > static_cast<int>(gpio::kState)) {
        zorva_core_logging_log(GetLogCookie(), kLogError, "%s: unknown colnum (%d)", object.handlerName, col);
        return SNMP_ERR_NOERROR;
    }
    if (col != static_cast<int>(gpio::kState)) {
        return SNMP_ERR_NOERROR;
    }
    uint8_t state = 0;
    if (!gpio::HasTarget(row, gRelays) || !ReadState(static_cast<std::size_t>(row) - 1, state)) {
        return SNMP_ERR_GENERR;
    }
    if (snmp_set_var_typed_integer(request->requestvb, ASN_INTEGER, state) != 0) {
        return SNMP_ERR_GENERR;
    }
    zorva_core_logging_log(GetLogCookie(), kLogDebug, "returning relay %d state as %d", row - 1, state);
    return SNMP_ERR_NOERROR;
}

int CheckStateType(RelayState &object, netsnmp_request_info *request) {
    if (request->requestvb->type != ASN_INTEGER) {
        zorva_core_logging_log(GetLogCookie(), kLogError, "%s: MODE_SET_RESERVE1 fail", object.handlerName);
        RefuseRequest(request, SNMP_ERR_WRONGTYPE, SNMP_ERR_WRONGTYPE);
    }
    return SNMP_ERR_NOERROR;
}

/** Selects the relay for the later phases and reads its state. */
int SelectRelay(RelayState &object, netsnmp_request_info *request) {
    int row = 0;
    int col = 0;
    GetRowAndColFromRequest(request, row, col);
    if (gpio::HasTarget(row, gRelays)) {
        relayStateIndex = row - 1;
        if (ReadState(static_cast<std::size_t>(relayStateIndex), object.current)) {
            return SNMP_ERR_NOERROR;
        }
    }
    zorva_core_logging_log(GetLogCookie(), kLogError, "%s: MODE_SET_RESERVE2 fail", object.handlerName);
    return SNMP_ERR_GENERR;
}

int CommitState(RelayState &object, netsnmp_request_info *request) {
    const auto relay = static_cast<std::size_t>(relayStateIndex);
    if (relay >= gRelays.size() || !Switch(object.handlerName, relay, object.pending)) {
        return SNMP_ERR_GENERR;
    }
    return snmp_set_var_typed_integer(request->requestvb, ASN_INTEGER, object.pending) == 0 ? SNMP_ERR_NOERROR
                                                                                            : SNMP_ERR_GENERR;
}

constexpr SetPhases<RelayState> kRelayPhases = {AnswerCell,  CheckStateType, SelectRelay, KeepPending,
                                                CommitState, RestorePending, LogOtherMode};

int handle_relayStates(netsnmp_mib_handler * /*handler*/, netsnmp_handler_registration * /*reginfo*/,
                       netsnmp_agent_request_info *reqinfo, netsnmp_request_info *requests) {
    for (netsnmp_request_info *request = requests; request != nullptr; request = request->next) {
        const int returned = ServePhase<kRelayPhases>(kRelayState, reqinfo->mode, request);
        if (returned != SNMP_ERR_NOERROR) {
            return MarkFailure(request, returned);
        }
    }
    return SNMP_ERR_NOERROR;
}

// clang-format off
const snmp_variable kObjects[] = {
    {"outputStatus",  handle_outputStatus,  oid_outputStatus,  OID_LENGTH(oid_outputStatus),  HANDLER_CAN_GETANDGETNEXT},
    {"outputControl", handle_outputControl, oid_outputControl, OID_LENGTH(oid_outputControl), HANDLER_CAN_RWRITE},
};
// clang-format on

const Service kService = {"relay", "no zorva API relays", "relay",
                          gRelays, gRelayApiCookie,       zorva_api_relay_initiator_init};

void init_relayTable() {
    gpio::RegisterTable({"relayStatesTable", "relayStatesTable", handle_relayStates, oid_relay, OID_LENGTH(oid_relay),
                         HANDLER_CAN_RWRITE, true},
                        gRelays.size());
}

} // namespace

bool InitRelay(void *ipcCookie) {
    FindTargets(kService);
    if (!OpenService(__func__, ipcCookie, kService)) {
        return false;
    }
    init_relayTable();
    RegisterScalars(__func__, kObjects, std::size(kObjects));
    return true;
}

void DeinitRelay() {
    zorva_api_relay_initiator_deinit(gRelayApiCookie);
}
