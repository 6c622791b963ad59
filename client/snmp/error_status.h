// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Error statuses of the protocol.
 */
#ifndef CLIENT_SNMP_ERROR_STATUS_H
#define CLIENT_SNMP_ERROR_STATUS_H

#include <string>

namespace snmp {

inline constexpr long kTooBig = 1;
inline constexpr long kAuthorizationError = 16;

/** Name and advice of an error status. */
struct ErrorDescription {
    std::string name;   ///< such as "notWritable"
    std::string advice; ///< a clause without a full stop
};

ErrorDescription describeError(long status);

} // namespace snmp

#endif
