// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Relay outputs: a bit map of the first two, a command for any of them, and a table of all of them.
 */
#include <algorithm>
#include <array>
#include <iterator>

#include "core_utils.h"
#include "feature_modules.h"
#include "gpio_table.h"
#include "oids.h"
#include "service.h"

namespace {

constexpr std::size_t kRelaysInBitmap = 2;
constexpr uint8_t kOnBit = 0x80;

using OutputControl = std::array<uint8_t, 2>;

std::vector<std::string> gRelays;
void *gRelayApiCookie = nullptr;
OutputControl outputControlValue{};
OutputControl savedOutputControlValue{};

// One of each for a whole request: a SET that writes several rows switches the last one of them only.
int32_t relayStateIndex = 0; // from 0
uint8_t savedRelayState = 0;
uint8_t newRelayState = 0;

/** @return whether the service told the state, which is unchanged otherwise */
bool ReadState(std::size_t relay, uint8_t &state) {
    uint8_t present = 0;
    if (zorva_api_relay_get_state_send(gRelayApiCookie, gRelays[relay].c_str(), &present) != 0) {
        return false;
    }
    state = present;
    return true;
}

/** Sets a relay up if nobody has done so yet. @return whether the service did what it was asked */
bool Configure(const char *target) {
    uint8_t c1 = 0;
    uint8_t c2 = 0;
    int32_t c3 = 0;
    uint8_t c4 = 0;
    int32_t c5 = 0;
    int32_t c6 = 0;
    int32_t c7 = 0;
    if (zorva_api_relay_get_configuration_send(gRelayApiCookie, target, &c1, &c2, &c3, &c4, &c5, &c6, &c7) != 0) {
        return false;
    }
    return c1 != 0 || zorva_api_relay_set_configuration_send(gRelayApiCookie, target, 1, 0, 1, 0, 1, 1, 1) == 0;
}

/** Switches a relay. @param relay counted from 0 @return whether that succeeded; a failure is logged */
bool Switch(const char *function, std::size_t relay, uint8_t state) {
    const char *target = gRelays[relay].c_str();
    if (!Configure(target) || zorva_api_relay_set_state_send(gRelayApiCookie, target, state) != 0) {
        zorva_core_logging_log(GetLogCookie(), kLogError, "%s: MODE_COMMIT fail", function);
        return false;
    }
    return true;
}

int handle_outputStatus(netsnmp_mib_handler * /*handler*/, netsnmp_handler_registration * /*reginfo*/,
                        netsnmp_agent_request_info *reqinfo, netsnmp_request_info *requests) {
    zorva_core_logging_log(GetLogCookie(), kLogDebug, "%s: Enter.", __func__);
    if (reqinfo->mode != MODE_GET && reqinfo->mode != MODE_GETNEXT) {
        return LogUnknownMode(__func__, reqinfo->mode);
    }
    uint8_t bitmap = 0;
    for (std::size_t relay = 0; relay < kRelaysInBitmap && relay < gRelays.size(); ++relay) {
        uint8_t state = 0;
        if (!ReadState(relay, state)) {
            // The text is that of the table's read before a SET; log filters look for the one text.
            zorva_core_logging_log(GetLogCookie(), kLogError, "%s: MODE_SET_RESERVE2 fail", __func__);
            return SNMP_ERR_GENERR;
        }
        bitmap = static_cast<uint8_t>(bitmap | (state & 1U) << relay);
    }
    const int returned = SetRequestValue(requests, ASN_OCTET_STR, &bitmap, sizeof bitmap);
    zorva_core_logging_log(GetLogCookie(), kLogDebug, "%s: Done.", __func__);
    return returned;
}

/** The first two octets of a request's value; those that it does not have are 0. */
OutputControl OutputControlOf(const netsnmp_request_info *request) {
    OutputControl octets{};
    const netsnmp_variable_list *value = request->requestvb;
    if (value->val.string != nullptr) {
        std::copy_n(value->val.string, std::min(octets.size(), value->val_len), octets.begin());
    }
    return octets;
}

int CommitOutputControl(const char *function, netsnmp_request_info *request) {
    savedOutputControlValue = outputControlValue;
    const auto [number, order] = OutputControlOf(request);
    // Neither relay 0 nor one beyond the last exists, and NTCIP wants such a command to succeed.
    if (!gpio::HasTarget(number, gRelays)) {
        return SNMP_ERR_NOERROR;
    }
    if (!Switch(function, number - 1U, (order & kOnBit) != 0 ? 1 : 0)) {
        return SNMP_ERR_GENERR;
    }
    return SetRequestValue(request, ASN_OCTET_STR, outputControlValue.data(), outputControlValue.size());
}

int AnswerOutputControl(const char *function, int mode, netsnmp_request_info *request) {
    switch (mode) {
    case MODE_GET:
        return SetRequestValue(request, ASN_OCTET_STR, outputControlValue.data(), outputControlValue.size());
    case MODE_GETNEXT:
    case MODE_SET_RESERVE2:
    case MODE_SET_FREE:
        return SNMP_ERR_NOERROR;
    case MODE_SET_RESERVE1:
        return request->requestvb->type == ASN_OCTET_STR
                   ? SNMP_ERR_NOERROR
                   : RefuseRequest(request, SNMP_ERR_WRONGTYPE, SNMP_ERR_WRONGTYPE);
    case MODE_SET_ACTION:
        outputControlValue = OutputControlOf(request);
        return SNMP_ERR_NOERROR;
    case MODE_SET_COMMIT:
        return CommitOutputControl(function, request);
    case MODE_SET_UNDO:
        outputControlValue = savedOutputControlValue;
        return SNMP_ERR_NOERROR;
    default:
        return RefuseRequest(request, SNMP_ERR_GENERR, SNMP_ERR_GENERR);
    }
}

int handle_outputControl(netsnmp_mib_handler * /*handler*/, netsnmp_handler_registration * /*reginfo*/,
                         netsnmp_agent_request_info *reqinfo, netsnmp_request_info *requests) {
    zorva_core_logging_log(GetLogCookie(), kLogDebug, "%s: Enter.", __func__);
    const int returned = AnswerOutputControl(__func__, reqinfo->mode, requests);
    if (returned == SNMP_ERR_NOERROR) {
        zorva_core_logging_log(GetLogCookie(), kLogDebug, "%s: Done.", __func__);
    }
    return returned;
}

int AnswerCell(const char *function, netsnmp_request_info *request, int row, int col) {
    if (col > static_cast<int>(gpio::kState)) {
        zorva_core_logging_log(GetLogCookie(), kLogError, "%s: unknown colnum (%d)", function, col);
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

void CheckStateType(const char *function, netsnmp_request_info *request) {
    if (request->requestvb->type != ASN_INTEGER) {
        zorva_core_logging_log(GetLogCookie(), kLogError, "%s: MODE_SET_RESERVE1 fail", function);
        RefuseRequest(request, SNMP_ERR_WRONGTYPE, SNMP_ERR_WRONGTYPE);
    }
}

int SelectRelay(const char *function, int row) {
    if (gpio::HasTarget(row, gRelays)) {
        relayStateIndex = row - 1;
        if (ReadState(static_cast<std::size_t>(relayStateIndex), savedRelayState)) {
            return SNMP_ERR_NOERROR;
        }
    }
    zorva_core_logging_log(GetLogCookie(), kLogError, "%s: MODE_SET_RESERVE2 fail", function);
    return SNMP_ERR_GENERR;
}

int CommitState(const char *function, netsnmp_request_info *request) {
    const auto relay = static_cast<std::size_t>(relayStateIndex);
    if (relay >= gRelays.size() || !Switch(function, relay, newRelayState)) {
        return SNMP_ERR_GENERR;
    }
    return snmp_set_var_typed_integer(request->requestvb, ASN_INTEGER, newRelayState) == 0 ? SNMP_ERR_NOERROR
                                                                                           : SNMP_ERR_GENERR;
}

int AnswerTableMode(const char *function, int mode, netsnmp_request_info *request) {
    int row = 0;
    int col = 0;
    GetRowAndColFromRequest(request, row, col);
    switch (mode) {
    case MODE_GET:
        return AnswerCell(function, request, row, col);
    case MODE_SET_RESERVE1:
        CheckStateType(function, request);
        return SNMP_ERR_NOERROR;
    case MODE_SET_RESERVE2:
        return SelectRelay(function, row);
    case MODE_SET_ACTION:
        newRelayState = static_cast<uint8_t>(*request->requestvb->val.integer);
        return SNMP_ERR_NOERROR;
    case MODE_SET_COMMIT:
        return CommitState(function, request);
    case MODE_SET_FREE:
        return SNMP_ERR_NOERROR;
    case MODE_SET_UNDO:
        newRelayState = savedRelayState;
        return SNMP_ERR_NOERROR;
    default:
        return LogUnknownMode(function, mode);
    }
}

int handle_relayStates(netsnmp_mib_handler * /*handler*/, netsnmp_handler_registration * /*reginfo*/,
                       netsnmp_agent_request_info *reqinfo, netsnmp_request_info *requests) {
    if (reqinfo->mode == MODE_GETNEXT) {
        return SNMP_ERR_NOERROR;
    }
    for (netsnmp_request_info *request = requests; request != nullptr; request = request->next) {
        const int returned = AnswerTableMode(__func__, reqinfo->mode, request);
        if (returned != SNMP_ERR_NOERROR) {
            return returned;
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
