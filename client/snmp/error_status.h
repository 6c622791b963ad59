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
inline constexpr long kNoAccess = 6;
inline constexpr long kWrongType = 7;
inline constexpr long kWrongLength = 8;
inline constexpr long kWrongEncoding = 9;
inline constexpr long kWrongValue = 10;
inline constexpr long kNoCreation = 11;
inline constexpr long kInconsistentValue = 12;
inline constexpr long kAuthorizationError = 16;
inline constexpr long kNotWritable = 17;
inline constexpr long kInconsistentName = 18;

/** Name and advice of an error status. */
struct ErrorDescription {
    std::string name;   ///< such as "notWritable"
    std::string advice; ///< a clause without a full stop
};

ErrorDescription describeError(long status);

} // namespace snmp

#endif
