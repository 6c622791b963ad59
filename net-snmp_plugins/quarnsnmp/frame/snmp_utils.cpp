// SPDX-License-Identifier: Apache-2.0
#include "snmp_utils.h"

#include <algorithm>
#include <cmath>
#include <exception>
#include <limits>
#include <memory>
#include <vector>

#include "core_utils.h"
#include "service_health.h"

namespace {

// Column OIDs of the vendor tables have 12 sub-identifiers; the index follows.
constexpr std::size_t kRowIndex = 12;
constexpr std::size_t kCellLength = kRowIndex + 1;

/** An object that the agent has accepted. */
struct Registered {
    netsnmp_handler_registration *registration;
    netsnmp_table_data_set *dataSet; ///< null for a scalar
};

std::vector<Registered> gRegistrations;

/**
 * Entry point of all objects. Calls the object's own handler, which the registration carries. Catches exceptions, which
 * would end the agent, a C program. Declares the calls of a GET as reads. Marks the varbind of a failed request if
 * there is only one.
 */
int CallHandler(netsnmp_mib_handler *handler, netsnmp_handler_registration *reginfo,
                netsnmp_agent_request_info *reqinfo, netsnmp_request_info *requests) {
    const char *problem = "exception of unknown type";
    int returned = SNMP_ERR_GENERR;
    SetReading(reqinfo->mode == MODE_GET || reqinfo->mode == MODE_GETNEXT);
    try {
        const auto objectHandler = reinterpret_cast<Netsnmp_Node_Handler *>(handler->myvoid);
        returned = objectHandler(handler, reginfo, reqinfo, requests);
    } catch (const std::exception &error) {
        zorva_core_logging_log(GetLogCookie(), kLogError, "%s: %s", reginfo->handlerName, error.what());
    } catch (...) {
        zorva_core_logging_log(GetLogCookie(), kLogError, "%s: %s", reginfo->handlerName, problem);
    }
    SetReading(false);
    if (returned != SNMP_ERR_NOERROR && requests->next == nullptr) {
        MarkFailure(requests, returned);
    }
    return returned;
}

/** Returns the nearest int of a number. Larger numbers become the largest int, smaller the smallest, and NaN 0. */
int NearestInt(float value) {
    constexpr float kBeyondMax = 2147483648.0F;
    const float rounded = std::round(value);
    if (std::isnan(rounded)) {
        return 0;
    }
    if (rounded >= kBeyondMax) {
        return std::numeric_limits<int>::max();
    }
    if (rounded < -kBeyondMax) {
        return std::numeric_limits<int>::min();
    }
    return static_cast<int>(rounded);
}

} // namespace

namespace {

/** Creates a registration whose requests go through CallHandler(). @return null without memory */
netsnmp_handler_registration *CreateRegistration(const char *name, Netsnmp_Node_Handler *handler, const oid *objectOid,
                                                 std::size_t oidLength, int modes) {
    netsnmp_handler_registration *registration =
        netsnmp_create_handler_registration(name, CallHandler, objectOid, oidLength, modes);
    if (registration != nullptr) {
        registration->handler->myvoid = reinterpret_cast<void *>(handler);
    }
    return registration;
}

/** Returns true for the OID of a cell, existing or not: table, entry 1, column, index. */
bool IsCellOid(const netsnmp_variable_list &varbind, netsnmp_handler_registration &table) {
    const std::size_t entry = table.rootoid_len;
    const std::size_t column = entry + 1;
    const netsnmp_table_registration_info *columns = netsnmp_find_table_registration_info(&table);
    return columns != nullptr && varbind.name_length > column + 1 && varbind.name[entry] == 1 &&
           varbind.name[column] >= columns->min_column && varbind.name[column] <= columns->max_column;
}

/**
 * Refuses a SET of an OID that is not a cell, before the agent's table helpers see it. The helpers refuse such a
 * varbind too, but if the request has further varbinds of the table, they go on with it and read beyond the end of its
 * OID. The whole request fails, so the helpers need not see the other varbinds either.
 */
int RejectNonCells(netsnmp_mib_handler *handler, netsnmp_handler_registration *reginfo,
                   netsnmp_agent_request_info *reqinfo, netsnmp_request_info *requests) {
    bool allAreCells = true;
    if (MODE_IS_SET(reqinfo->mode)) {
        for (netsnmp_request_info *request = requests; request != nullptr; request = request->next) {
            if (!IsCellOid(*request->requestvb, *reginfo)) {
                RefuseRequest(request, SNMP_ERR_NOCREATION, SNMP_ERR_NOERROR);
                allAreCells = false;
            }
        }
    }
    return allAreCells ? netsnmp_call_next_handler(handler, reginfo, reqinfo, requests) : SNMP_ERR_NOERROR;
}

/** Puts RejectNonCells() before the helpers of a registered table. @return false without memory */
bool GuardTable(netsnmp_handler_registration *table) {
    netsnmp_mib_handler *guard = netsnmp_create_handler("quarnsnmp_cells", RejectNonCells);
    if (guard != nullptr && netsnmp_inject_handler(table, guard) == SNMPERR_SUCCESS) {
        return true;
    }
    netsnmp_handler_free(guard);
    return false;
}

/** Reserves memory for a record, so that an accepted registration can always be recorded. */
void ReserveRecord() {
    gRegistrations.reserve(gRegistrations.size() + 1);
}

} // namespace

bool registerScalar(snmp_variable var) {
    ReserveRecord();
    netsnmp_handler_registration *registration =
        CreateRegistration(var.name, var.handler, var.oid, static_cast<std::size_t>(var.oidLength), var.modes);
    // The agent frees a refused registration.
    if (registration != nullptr && netsnmp_register_scalar(registration) == MIB_REGISTERED_OK) {
        gRegistrations.push_back({registration, nullptr});
        zorva_core_logging_log(GetLogCookie(), kLogDebug, "%s: Registration for %s OID OK", __func__, var.name);
        return true;
    }
    zorva_core_logging_log(GetLogCookie(), kLogError, "%s: Registration for %s OID not OK", __func__, var.name);
    return false;
}

bool registerTableDataSet(const char *name, Netsnmp_Node_Handler *handler, const ::oid *tableOid, std::size_t oidLength,
                          int modes, netsnmp_table_data_set *dataSet) {
    ReserveRecord();
    netsnmp_handler_registration *registration = CreateRegistration(name, handler, tableOid, oidLength, modes);
    // The agent would allocate one itself, and leak it if it refuses the registration.
    std::unique_ptr<netsnmp_table_registration_info, decltype(&netsnmp_table_registration_info_free)> info(
        SNMP_MALLOC_TYPEDEF(netsnmp_table_registration_info), &netsnmp_table_registration_info_free);
    if (registration != nullptr && info != nullptr &&
        netsnmp_register_table_data_set(registration, dataSet, info.get()) == MIB_REGISTERED_OK) {
        static_cast<void>(info.release()); // the agent owns it now
        // NOLINTNEXTLINE(clang-analyzer-unix.Malloc): the analyzer does not see the new owner
        gRegistrations.push_back({registration, dataSet});
        return GuardTable(registration);
    }
    netsnmp_delete_table_data_set(dataSet);
    return false;
}

void RegisterScalars(const char *function, const snmp_variable *objects, std::size_t count) {
    for (std::size_t i = 0; i < count; ++i) {
        registerScalar(objects[i]);
        zorva_core_logging_log(GetLogCookie(), kLogInfo, "%s: registerScalar=%s", function, objects[i].name);
    }
}

void UnregisterAll() {
    for (const Registered &each : gRegistrations) {
        netsnmp_unregister_handler(each.registration);
        if (each.dataSet != nullptr) {
            netsnmp_delete_table_data_set(each.dataSet);
        }
    }
    gRegistrations.clear();
}

int HandleIntMib(unsigned char asnType, int value, netsnmp_mib_handler * /*handler*/,
                 netsnmp_handler_registration * /*reginfo*/, netsnmp_agent_request_info *reqinfo,
                 netsnmp_request_info *requests) {
    if (reqinfo->mode != MODE_GET) {
        return SNMP_ERR_GENERR;
    }
    return SetRequestValue(requests, asnType, &value, sizeof value);
}

int HandleStringMib(std::string value, netsnmp_mib_handler * /*handler*/, netsnmp_handler_registration * /*reginfo*/,
                    netsnmp_agent_request_info *reqinfo, netsnmp_request_info *requests) {
    if (reqinfo->mode != MODE_GET) {
        return SNMP_ERR_GENERR;
    }
    return SetRequestValue(requests, ASN_OCTET_STR, value.data(), value.size());
}

int SetRequestValue(netsnmp_request_info *request, unsigned char asnType, const void *value, std::size_t length) {
    return snmp_set_var_typed_value(request->requestvb, asnType, value, length) == 0 ? SNMP_ERR_NOERROR
                                                                                     : SNMP_ERR_GENERR;
}

void CopyRequestOctets(const netsnmp_request_info *request, uint8_t *octets, std::size_t size) {
    const netsnmp_variable_list *value = request->requestvb;
    if (value->val.string != nullptr) {
        std::copy_n(value->val.string, std::min(size, value->val_len), octets);
    }
}

int MarkFailure(netsnmp_request_info *request, int error) {
    if (error != SNMP_ERR_NOERROR && request->status == SNMP_ERR_NOERROR) {
        netsnmp_set_request_error(request->agent_req_info, request, error);
    }
    return error;
}

int RefuseRequest(netsnmp_request_info *request, int error, int returned) {
    netsnmp_set_request_error(request->agent_req_info, request, error);
    return returned;
}

int CheckRequestType(netsnmp_request_info *request, unsigned char asnType) {
    return request->requestvb->type == asnType ? SNMP_ERR_NOERROR
                                               : RefuseRequest(request, SNMP_ERR_WRONGTYPE, SNMP_ERR_NOERROR);
}

int RequireRequestType(netsnmp_request_info *request, unsigned char asnType) {
    return request->requestvb->type == asnType ? SNMP_ERR_NOERROR
                                               : RefuseRequest(request, SNMP_ERR_WRONGTYPE, SNMP_ERR_WRONGTYPE);
}

int CheckLength(const char *function, const char *name, const char *noun, std::size_t length,
                netsnmp_request_info *request) {
    const int returned = RequireRequestType(request, ASN_OCTET_STR);
    const std::size_t present = request->requestvb->val_len;
    if (returned != SNMP_ERR_NOERROR || present == length) {
        return returned;
    }
    zorva_core_logging_log(GetLogCookie(), kLogError, "%s: %s%s not %zu-bytes, val_len=%zu", function, name, noun,
                           length, present);
    return RefuseRequest(request, SNMP_ERR_WRONGVALUE, SNMP_ERR_WRONGVALUE);
}

int LogUnknownMode(const char *function, int mode) {
    zorva_core_logging_log(GetLogCookie(), kLogError, "%s: unknown mode (%d)", function, mode);
    return SNMP_ERR_GENERR;
}

void GetRowAndColFromRequest(netsnmp_request_info *request, int &row, int &col) {
    row = 0;
    col = 0;
    const netsnmp_table_request_info *info = netsnmp_extract_table_info(request);
    const netsnmp_variable_list *cell = request->requestvb;
    if (info == nullptr || cell->name_length < kCellLength) {
        return;
    }

    // Numbers, as names depend on the agent's MIB files and output options.
    const int format = netsnmp_ds_get_int(NETSNMP_DS_LIBRARY_ID, NETSNMP_DS_LIB_OID_OUTPUT_FORMAT);
    netsnmp_ds_set_int(NETSNMP_DS_LIBRARY_ID, NETSNMP_DS_LIB_OID_OUTPUT_FORMAT, NETSNMP_OID_OUTPUT_NUMERIC);
    char text[256];
    const int textLength = snprint_objid(text, sizeof text, cell->name, kCellLength);
    netsnmp_ds_set_int(NETSNMP_DS_LIBRARY_ID, NETSNMP_DS_LIB_OID_OUTPUT_FORMAT, format);

    ::oid parsed[kCellLength];
    std::size_t parsedLength = kCellLength;
    if (textLength < 0 || snmp_parse_oid(text, parsed, &parsedLength) == nullptr || parsedLength != kCellLength) {
        return;
    }
    row = static_cast<int>(parsed[kRowIndex]);
    col = static_cast<int>(info->colnum);
}

int ScaleValues(int value, int fromMin, int fromMax, int toMin, int toMax) {
    const double scaled = (static_cast<double>(value) - static_cast<double>(fromMin)) *
                              (static_cast<double>(toMax) - static_cast<double>(toMin)) /
                              (static_cast<double>(fromMax) - static_cast<double>(fromMin)) +
                          static_cast<double>(toMin);
    return NearestInt(static_cast<float>(scaled));
}

unsigned short ushort_swap_endian(unsigned short value) {
    return static_cast<unsigned short>((value << 8U) | (value >> 8U));
}
