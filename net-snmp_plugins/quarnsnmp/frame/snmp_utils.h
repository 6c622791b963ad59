// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * What every feature uses to serve objects: the record of a scalar, its registration, and the shared request routines.
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
 * One scalar object to register. The agent answers it at `oid` followed by the instance 0, also where `oid` itself
 * ends in 0 already, as those of the vendor scalars do.
 */
struct snmp_variable {
    char name[32];                 ///< object name, also the name of the registration
    Netsnmp_Node_Handler *handler; ///< answers the object's requests
    ::oid *oid;                    ///< the identifier, owned by oids/
    int32_t oidLength;             ///< number of sub-identifiers in `oid`
    int32_t modes;                 ///< HANDLER_CAN_GETANDGETNEXT or HANDLER_CAN_RWRITE
};

/**
 * Registers a scalar with the agent and remembers it for UnregisterAll(). The agent refuses an identifier that is
 * registered already; that is how the first of two features wins.
 * @return whether the agent took it; either outcome is logged
 */
bool registerScalar(snmp_variable var);

/**
 * Registers scalars in their order and logs each at info level under the function's name, whether the agent took it or
 * not.
 */
void RegisterScalars(const char *function, const snmp_variable *objects, std::size_t count);

/**
 * Registers a table data set and remembers it for UnregisterAll(), which deletes the data set too.
 * @param handler  is called after the data set's own handler, also for rows that do not exist
 * @param dataSet  belongs to the module's frame from here on; it is deleted when the agent refuses it
 * @return whether the agent took it; nothing is logged
 */
bool registerTableDataSet(const char *name, Netsnmp_Node_Handler *handler, const ::oid *identifier, std::size_t length,
                          int modes, netsnmp_table_data_set *dataSet);

/**
 * Takes every object that this module registered back from the agent. The agent does not do so itself when it unloads
 * a module, and would call into code that is gone.
 */
void UnregisterAll();

/**
 * Answers a GET with a 32-bit integer of the given ASN.1 type.
 * @return SNMP_ERR_NOERROR; SNMP_ERR_GENERR for another mode, which leaves the request as it is
 */
int HandleIntMib(unsigned char asnType, int value, netsnmp_mib_handler *handler, netsnmp_handler_registration *reginfo,
                 netsnmp_agent_request_info *reqinfo, netsnmp_request_info *requests);

/**
 * Answers a GET with a text as an OCTET STRING.
 * @return SNMP_ERR_NOERROR; SNMP_ERR_GENERR for another mode, which leaves the request as it is
 */
int HandleStringMib(std::string value, netsnmp_mib_handler *handler, netsnmp_handler_registration *reginfo,
                    netsnmp_agent_request_info *reqinfo, netsnmp_request_info *requests);

/**
 * Puts a value into a request's answer.
 * @param value,length  its octets in memory; an INTEGER may have 1, 2, 4 or 8, with a sign
 * @return SNMP_ERR_NOERROR; SNMP_ERR_GENERR when the agent library does not take it
 */
int SetRequestValue(netsnmp_request_info *request, unsigned char asnType, const void *value, std::size_t length);

/** As the other one, for an INTEGER. */
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

/** Marks a request with wrongType unless its value has the type. @return SNMP_ERR_NOERROR in either case */
int CheckRequestType(netsnmp_request_info *request, unsigned char asnType);

/** As CheckRequestType(). @return SNMP_ERR_NOERROR, or SNMP_ERR_WRONGTYPE after the mark */
int RequireRequestType(netsnmp_request_info *request, unsigned char asnType);

/** Logs the start of a handler at debug level. */
inline void LogEnter(const char *function) {
    zorva_core_logging_log(GetLogCookie(), kLogDebug, "%s: Enter.", function);
}

/** Logs the end of a handler. */
inline void LogDone(const char *function, LogLevel level = kLogDebug) {
    zorva_core_logging_log(GetLogCookie(), level, "%s: Done.", function);
}

/** Logs a mode that a handler does not serve. @return SNMP_ERR_GENERR */
int LogUnknownMode(const char *function, int mode);

/**
 * Finds out which cell of a vendor table a request is for. Column identifiers of these tables have 12 sub-identifiers,
 * so the row is the 13th.
 * @param row,col  outputs: both 0 when the request names no cell
 */
void GetRowAndColFromRequest(netsnmp_request_info *request, int &row, int &col);

/**
 * Maps a value linearly from one range to another, to the nearest integer, halves away from zero. The result passes
 * through single precision, so it is exact up to 2^24 only. Values outside the first range map outside the second.
 * @param fromMin,fromMax  must differ; equal bounds have no meaningful result, though a defined one
 */
int ScaleValues(int value, int fromMin, int fromMax, int toMin, int toMax);

/** Swaps the two octets of a 16-bit value. */
unsigned short ushort_swap_endian(unsigned short value);

#endif
