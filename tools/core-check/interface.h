// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * The interface of the core library as data: the names of all functions, and the requests that only read.
 */
#ifndef QUARNSNMP_CORE_CHECK_INTERFACE_H
#define QUARNSNMP_CORE_CHECK_INTERFACE_H

#include <string>
#include <vector>

#include "zorva-core.h"

namespace core_check {

/** Outcome of a request. */
struct Reading {
    zorva_core_status status = 0;
    std::string values; ///< the outputs, separated by blanks; texts are quoted. Only with status 0
};

/** A request of a service. */
struct Request {
    const char *operation; ///< such as "get_state_send"
    const char *symbol;
    /** Makes the request with the function's address; null for a command, which this program never calls. */
    Reading (*read)(void *function, void *cookie, const char *target);
};

struct Service {
    const char *name;
    const char *openSymbol;
    const char *closeSymbol;
    std::vector<Request> requests;
};

/** The functions of the library's own. */
namespace symbols {
inline constexpr const char *kInit = "zorva_core_init";
inline constexpr const char *kDeinit = "zorva_core_deinit";
inline constexpr const char *kLoggingInit = "zorva_core_logging_init";
inline constexpr const char *kLoggingDeinit = "zorva_core_logging_deinit";
inline constexpr const char *kLoggingLog = "zorva_core_logging_log";
inline constexpr const char *kIpcInitiatorInit = "zorva_core_ipc_initiator_init";
inline constexpr const char *kIpcDeinit = "zorva_core_ipc_deinit";
inline constexpr const char *kStatusToString = "_ZN5zorva4core14statusToStringEi";
inline constexpr const char *kGetTargetIds =
    "_ZN5zorva4core12getTargetIdsEPKcRSt6vectorINSt7__cxx1112basic_stringIcSt11"
    "char_traitsIcESaIcEEESaIS9_EE";
/** The same function with the ABI that libstdc++ had before C++11. */
inline constexpr const char *kGetTargetIdsBeforeCxx11 = "_ZN5zorva4core12getTargetIdsEPKcRSt6vectorISsSaISsEE";
} // namespace symbols

/** Returns the services with their requests, in the order of the interface's table. */
const std::vector<Service> &services();

/** Returns the names of all functions that a library must export, as in its symbol table. */
std::vector<std::string> requiredSymbols();

/** Replaces control characters and non-ASCII octets by escapes. */
std::string printable(const std::string &text);

} // namespace core_check

#endif
