// SPDX-License-Identifier: Apache-2.0
#include "snmp_utils.h"

#include <algorithm>
#include <cmath>
#include <exception>
#include <limits>
#include <memory>
#include <vector>

#include "core_utils.h"

namespace {

// Column identifiers of the vendor tables have 12 sub-identifiers; the first index sub-identifier follows them.
constexpr std::size_t kRowIndex = 12;
constexpr std::size_t kCellLength = kRowIndex + 1;

/** What the agent has of this module. */
struct Registered {
    netsnmp_handler_registration *registration;
    netsnmp_table_data_set *dataSet; ///< of a table; null for a scalar
};

std::vector<Registered> gRegistrations;

/**
 * Every object's entry point: calls the object's own handler, which the registration carries, and keeps exceptions
 * out of the agent, which is C and would end.
 */
int CallHandler(netsnmp_mib_handler *handler, netsnmp_handler_registration *reginfo,
                netsnmp_agent_request_info *reqinfo, netsnmp_request_info *requests) {
    const char *problem = "exception of unknown type";
    try {
        const auto objectHandler = reinterpret_cast<Netsnmp_Node_Handler *>(handler->myvoid);
        return objectHandler(handler, reginfo, reqinfo, requests);
    } catch (const std::exception &error) {
        zorva_core_logging_log(GetLogCookie(), kLogError, "%s: %s", reginfo->handlerName, error.what());
    } catch (...) {
        zorva_core_logging_log(GetLogCookie(), kLogError, "%s: %s", reginfo->handlerName, problem);
    }
    return SNMP_ERR_GENERR;
}

/** Nearest int of a single-precision number; what is beyond an int becomes the nearest int, and NaN becomes 0. */
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

/** A registration whose requests go through CallHandler(); null without memory. */
netsnmp_handler_registration *CreateRegistration(const char *name, Netsnmp_Node_Handler *handler, const oid *identifier,
                                                 std::size_t length, int modes) {
    netsnmp_handler_registration *registration =
        netsnmp_create_handler_registration(name, CallHandler, identifier, length, modes);
    if (registration != nullptr) {
        registration->handler->myvoid = reinterpret_cast<void *>(handler);
    }
    return registration;
}

/** Whether a name is that of a cell, existing or not: table, entry 1, column, index. */
bool NamesCell(const netsnmp_variable_list &variable, netsnmp_handler_registration &table) {
    const std::size_t entry = table.rootoid_len;
    const std::size_t column = entry + 1;
    const netsnmp_table_registration_info *columns = netsnmp_find_table_registration_info(&table);
    return columns != nullptr && variable.name_length > column + 1 && variable.name[entry] == 1 &&
           variable.name[column] >= columns->min_column && variable.name[column] <= columns->max_column;
}

/**
 * Stands before the agent's table helpers and keeps SETs of what is no cell from them. The helpers refuse such a
 * variable, but when the request has others in the table, they go on with it nevertheless, and read beyond the end of
 * its name. As the whole request fails, the other variables need not reach the helpers either.
 */
int RejectNonCells(netsnmp_mib_handler *handler, netsnmp_handler_registration *reginfo,
                   netsnmp_agent_request_info *reqinfo, netsnmp_request_info *requests) {
    bool allNameCells = true;
    if (MODE_IS_SET(reqinfo->mode)) {
        for (netsnmp_request_info *request = requests; request != nullptr; request = request->next) {
            if (!NamesCell(*request->requestvb, *reginfo)) {
                RefuseRequest(request, SNMP_ERR_NOCREATION, SNMP_ERR_NOERROR);
                allNameCells = false;
            }
        }
    }
    return allNameCells ? netsnmp_call_next_handler(handler, reginfo, reqinfo, requests) : SNMP_ERR_NOERROR;
}

/** Puts RejectNonCells() before the helpers of a registered table. @return whether there was memory for it */
bool GuardTable(netsnmp_handler_registration *table) {
    netsnmp_mib_handler *guard = netsnmp_create_handler("quarnsnmp_cells", RejectNonCells);
    if (guard != nullptr && netsnmp_inject_handler(table, guard) == SNMPERR_SUCCESS) {
        return true;
    }
    netsnmp_handler_free(guard);
    return false;
}

/** Makes room, so that remembering what the agent has taken cannot fail. */
void PrepareToRemember() {
    gRegistrations.reserve(gRegistrations.size() + 1);
}

} // namespace

bool registerScalar(snmp_variable var) {
    PrepareToRemember();
    netsnmp_handler_registration *registration =
        CreateRegistration(var.name, var.handler, var.oid, static_cast<std::size_t>(var.oidLength), var.modes);
    // A refused registration is freed by the agent.
    if (registration != nullptr && netsnmp_register_scalar(registration) == MIB_REGISTERED_OK) {
        gRegistrations.push_back({registration, nullptr});
        zorva_core_logging_log(GetLogCookie(), kLogDebug, "%s: Registration for %s OID OK", __func__, var.name);
        return true;
    }
    zorva_core_logging_log(GetLogCookie(), kLogError, "%s: Registration for %s OID not OK", __func__, var.name);
    return false;
}

bool registerTableDataSet(const char *name, Netsnmp_Node_Handler *handler, const ::oid *identifier, std::size_t length,
                          int modes, netsnmp_table_data_set *dataSet) {
    PrepareToRemember();
    netsnmp_handler_registration *registration = CreateRegistration(name, handler, identifier, length, modes);
    // The agent would make one itself, and lose it when it refuses the registration.
    std::unique_ptr<netsnmp_table_registration_info, decltype(&netsnmp_table_registration_info_free)> info(
        SNMP_MALLOC_TYPEDEF(netsnmp_table_registration_info), &netsnmp_table_registration_info_free);
    if (registration != nullptr && info != nullptr &&
        netsnmp_register_table_data_set(registration, dataSet, info.get()) == MIB_REGISTERED_OK) {
        static_cast<void>(info.release()); // it is the agent's now
        // NOLINTNEXTLINE(clang-analyzer-unix.Malloc): as that, which cannot be seen here
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

    // Numbers only: names depend on the MIB files that the agent happens to load, and on its output options.
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
