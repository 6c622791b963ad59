// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Alarm inputs: a bit map of the first four, and a table of all of them. Each request reads the states anew.
 */
#include <iterator>

#include "core_utils.h"
#include "feature_modules.h"
#include "gpio_table.h"
#include "oids.h"
#include "service.h"
#include "service_calls.h"

namespace {

constexpr std::size_t kInputsInBitmap = 4;

std::vector<std::string> gAlarms;
void *gAlarmApiCookie = nullptr;
uint8_t gInputBitmap = 0;       // bit n is the last known state of input n
const uint8_t kAlarmBitmap = 0; // the camera raises no alarms of its own

/** Reads the state of an input, counted from 0. @return false after a failed call, which leaves `state` unchanged */
bool ReadState(std::size_t input, int32_t &state) {
    int32_t present = 0;
    if (watched::zorva_api_alarm_get_state_send(gAlarmApiCookie, gAlarms[input].c_str(), &present) != 0) {
        return false;
    }
    state = present;
    return true;
}

/** Updates the bit map. @return false at the first failed call; the bits from there on are unchanged */
bool ReadBitmap() {
    for (std::size_t input = 0; input < kInputsInBitmap && input < gAlarms.size(); ++input) {
        int32_t state = 0;
        if (!ReadState(input, state)) {
            return false;
        }
        const bool active = (static_cast<uint32_t>(state) & 1U) != 0;
        const auto bit = static_cast<uint8_t>(1U << input);
        gInputBitmap = static_cast<uint8_t>(active ? gInputBitmap | bit : gInputBitmap & ~bit);
        zorva_core_logging_log(GetLogCookie(), kLogDebug, "returning alarm %d state as %s", static_cast<int>(input),
                               active ? "TRUE" : "FALSE");
    }
    return true;
}

/** Serves a bit map. @param refresh updates it, and returns false to fail the request */
int HandleBitmap(const char *function, const uint8_t &bitmap, bool (*refresh)(),
                 const netsnmp_agent_request_info *reqinfo, netsnmp_request_info *requests) {
    LogEnter(function);
    if (reqinfo->mode != MODE_GET && reqinfo->mode != MODE_GETNEXT) {
        return LogUnknownMode(function, reqinfo->mode);
    }
    if (!refresh()) {
        return SNMP_ERR_GENERR;
    }
    const int returned = SetRequestValue(requests, ASN_OCTET_STR, &bitmap, sizeof bitmap);
    zorva_core_logging_log(GetLogCookie(), kLogDebug, "%s: Exit.", function);
    return returned;
}

int handle_inputStatus(netsnmp_mib_handler * /*handler*/, netsnmp_handler_registration * /*reginfo*/,
                       netsnmp_agent_request_info *reqinfo, netsnmp_request_info *requests) {
    return HandleBitmap(__func__, gInputBitmap, ReadBitmap, reqinfo, requests);
}

int handle_alarmStatus(netsnmp_mib_handler * /*handler*/, netsnmp_handler_registration * /*reginfo*/,
                       netsnmp_agent_request_info *reqinfo, netsnmp_request_info *requests) {
    return HandleBitmap(
        __func__, kAlarmBitmap, [] { return true; }, reqinfo, requests);
}

/** Answers the state column of a row. */
int AnswerState(netsnmp_request_info *request, int row) {
    if (!gpio::HasTarget(row, gAlarms)) {
        return SNMP_ERR_GENERR;
    }
    int32_t state = 0;
    if (!ReadState(static_cast<std::size_t>(row) - 1, state) ||
        snmp_set_var_typed_integer(request->requestvb, ASN_INTEGER, state) != 0) {
        return SNMP_ERR_GENERR;
    }
    zorva_core_logging_log(GetLogCookie(), kLogDebug, "returning alarm %d state as %d", row - 1, state);
    return SNMP_ERR_NOERROR;
}

int handle_alarmStates(netsnmp_mib_handler * /*handler*/, netsnmp_handler_registration * /*reginfo*/,
                       netsnmp_agent_request_info *reqinfo, netsnmp_request_info *requests) {
    if (reqinfo->mode == MODE_GETNEXT) {
        return SNMP_ERR_NOERROR;
    }
    if (reqinfo->mode != MODE_GET) {
        zorva_core_logging_log(GetLogCookie(), kLogError, "%s: Bad request", __func__);
        return SNMP_ERR_GENERR;
    }
    for (netsnmp_request_info *request = requests; request != nullptr; request = request->next) {
        int row = 0;
        int col = 0;
        GetRowAndColFromRequest(request, row, col);
        if (col > static_cast<int>(gpio::kState)) {
            zorva_core_logging_log(GetLogCookie(), kLogError, "%s: unknown colnum (%d)", __func__, col);
            return SNMP_ERR_NOERROR;
        }
        if (col == static_cast<int>(gpio::kState) && AnswerState(request, row) != SNMP_ERR_NOERROR) {
            return MarkFailure(request, SNMP_ERR_GENERR);
        }
    }
    return SNMP_ERR_NOERROR;
}

const snmp_variable kObjects[] = {
    {"alarmStatus", handle_alarmStatus, oid_alarmStatus, OID_LENGTH(oid_alarmStatus), HANDLER_CAN_GETANDGETNEXT},
    {"inputStatus", handle_inputStatus, oid_inputStatus, OID_LENGTH(oid_inputStatus), HANDLER_CAN_GETANDGETNEXT},
};

const Service kService = {"alarm", "no zorva API alarms", "alarm",
                          gAlarms, gAlarmApiCookie,       zorva_api_alarm_initiator_init};

void init_alarmTable() {
    gpio::RegisterTable({"AlarmTable", "alarmStatesTable", handle_alarmStates, oid_alarm, OID_LENGTH(oid_alarm),
                         HANDLER_CAN_RONLY, false},
                        gAlarms.size());
}

} // namespace

bool InitAlarm(void *ipcCookie) {
    FindTargets(kService);
    if (!OpenService(__func__, ipcCookie, kService)) {
        return false;
    }
    init_alarmTable();
    RegisterScalars(__func__, kObjects, std::size(kObjects));
    return true;
}

void DeinitAlarm() {
    if (gAlarmApiCookie != nullptr) {
        zorva_api_alarm_initiator_deinit(gAlarmApiCookie);
        gAlarmApiCookie = nullptr;
    }
}
