// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Registration of objects and shared request routines, for all features.
 */
#ifndef QUARNSNMP_SNMP_UTILS_H
#define QUARNSNMP_SNMP_UTILS_H

#include <array>
#include <cstdint>
#include <string>
#include <type_traits>

#include "core_utils.h"
#include "net_snmp.h"

/**
 * A scalar object to register. The agent serves it at `oid` followed by the instance 0. The OIDs of vendor scalars end
 * in 0 already, so these objects have two zeros.
 */
struct snmp_variable {
    char name[32];                 ///< name of the object and of its registration
    Netsnmp_Node_Handler *handler; ///< serves the requests
    ::oid *oid;                    ///< static array of oids/
    int32_t oidLength;             ///< number of sub-identifiers in `oid`
    int32_t modes;                 ///< HANDLER_CAN_GETANDGETNEXT or HANDLER_CAN_RWRITE
};

/**
 * Registers a scalar with the agent, and records it for UnregisterAll(). The agent refuses an OID that is already
 * registered, so the first of two features wins. Either outcome is logged.
 * @return true if the agent accepted it
 */
bool registerScalar(snmp_variable var);

/**
 * Registers scalars in their order. Logs each one at info level, also a refused one.
 * @param function  name of the calling function, for the log
 */
void RegisterScalars(const char *function, const snmp_variable *objects, std::size_t count);

/**
 * Registers a table data set, and records it for UnregisterAll(), which deletes the data set too. Nothing is logged.
 * @param handler  is called after the handler of the data set, also for missing rows
 * @param dataSet  the frame takes ownership, and deletes it if the agent refuses it
 * @return true if the agent accepted it
 */
bool registerTableDataSet(const char *name, Netsnmp_Node_Handler *handler, const ::oid *tableOid, std::size_t oidLength,
                          int modes, netsnmp_table_data_set *dataSet);

/**
 * Unregisters all objects of this module. The agent does not do so when it unloads a module, and would call unmapped
 * code.
 */
void UnregisterAll();

/**
 * Answers a GET with a 32-bit integer of the given ASN.1 type. Leaves requests of other modes unchanged.
 * @return SNMP_ERR_NOERROR; SNMP_ERR_GENERR for another mode
 */
int HandleIntMib(unsigned char asnType, int value, netsnmp_mib_handler *handler, netsnmp_handler_registration *reginfo,
                 netsnmp_agent_request_info *reqinfo, netsnmp_request_info *requests);

/**
 * Answers a GET with a text as an OCTET STRING. Leaves requests of other modes unchanged.
 * @return SNMP_ERR_NOERROR; SNMP_ERR_GENERR for another mode
 */
int HandleStringMib(std::string value, netsnmp_mib_handler *handler, netsnmp_handler_registration *reginfo,
                    netsnmp_agent_request_info *reqinfo, netsnmp_request_info *requests);

/**
 * Answers a request with a value.
 * @param value,length  octets of the value in memory; 1, 2, 4 or 8 for an INTEGER, which has a sign
 * @return SNMP_ERR_NOERROR; SNMP_ERR_GENERR if the agent library refuses the value
 */
int SetRequestValue(netsnmp_request_info *request, unsigned char asnType, const void *value, std::size_t length);

/** Answers a request with an INTEGER. @return as SetRequestValue() */
template <typename Value>
int SetRequestInteger(netsnmp_request_info *request, Value value) {
    static_assert(std::is_integral_v<Value>);
    return SetRequestValue(request, ASN_INTEGER, &value, sizeof value);
}

/** Answers a request with an OCTET STRING of fixed length. @return as SetRequestValue() */
template <std::size_t size>
int SetRequestOctets(netsnmp_request_info *request, const std::array<uint8_t, size> &octets) {
    return SetRequestValue(request, ASN_OCTET_STR, octets.data(), octets.size());
}

/** Copies the first `size` octets of a request's OCTET STRING, or as many as it has, to `octets`. */
void CopyRequestOctets(const netsnmp_request_info *request, uint8_t *octets, std::size_t size);

/** Returns the first octets of a request's OCTET STRING, with 0 for missing ones. */
template <std::size_t size>
std::array<uint8_t, size> OctetsOf(const netsnmp_request_info *request) {
    std::array<uint8_t, size> octets{};
    CopyRequestOctets(request, octets.data(), octets.size());
    return octets;
}

/**
 * Marks a request with an SNMP error, which the manager gets.
 * @return `returned`, which may be another error
 */
int RefuseRequest(netsnmp_request_info *request, int error, int returned);

/**
 * Marks a request that failed with its error, so that the manager learns which of its varbinds it was. A mark that is
 * there already stays.
 * @return `error`
 */
int MarkFailure(netsnmp_request_info *request, int error);

/** Marks a request with wrongType unless its value has the type. @return SNMP_ERR_NOERROR in either case */
int CheckRequestType(netsnmp_request_info *request, unsigned char asnType);

/** Marks like CheckRequestType(). @return SNMP_ERR_NOERROR, or SNMP_ERR_WRONGTYPE after a mark */
int RequireRequestType(netsnmp_request_info *request, unsigned char asnType);

/**
 * Checks type and length of an OCTET STRING. A wrong length is logged, and marked with wrongValue.
 * @param name,noun  name of the object in the log, in two parts
 * @return SNMP_ERR_NOERROR, or the error of the mark
 */
int CheckLength(const char *function, const char *name, const char *noun, std::size_t length,
                netsnmp_request_info *request);

/** Logs the start of a handler at debug level. */
inline void LogEnter(const char *function) {
    zorva_core_logging_log(GetLogCookie(), kLogDebug, "%s: Enter.", function);
}

/** Logs the end of a handler. */
inline void LogDone(const char *function, LogLevel level = kLogDebug) {
    zorva_core_logging_log(GetLogCookie(), level, "%s: Done.", function);
}

/** Logs an unknown mode. @return SNMP_ERR_GENERR */
int LogUnknownMode(const char *function, int mode);

/**
 * Reads row and column of a vendor table from the OID of a request. Column OIDs of these tables have 12
 * sub-identifiers, so the row is the 13th.
 * @param row,col  outputs; both 0 if the OID is not that of a cell
 */
void GetRowAndColFromRequest(netsnmp_request_info *request, int &row, int &col);

/**
 * Maps a value linearly from one range to another. Rounds to the nearest integer, and halves away from zero. The result
 * has single precision, so it is exact only up to 2^24. Values outside the first range map outside the second.
 * @param fromMin,fromMax  must differ; equal bounds give a defined result without a meaning
 */
int ScaleValues(int value, int fromMin, int fromMax, int toMin, int toMax);

/** Swaps the two octets of a 16-bit value. The objects do not need it: positions have their low-order octet first. */
unsigned short ushort_swap_endian(unsigned short value);

#endif
