// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Security levels of SNMPv3.
 */
#ifndef CLIENT_SNMP_SECURITY_LEVEL_H
#define CLIENT_SNMP_SECURITY_LEVEL_H

#include <string>

namespace snmp {

/** Security level of a message, from the lowest; that of a message with a community. The numbers are the library's. */
enum class SecurityLevel { NoAuthNoPriv = 1, AuthNoPriv = 2, AuthPriv = 3 };

/** Returns the name of a level, such as "authPriv". */
std::string levelName(SecurityLevel level);

/** Finds a level by its name. @throws std::invalid_argument for another word */
SecurityLevel levelNamed(const std::string &name);

/** Returns the level that passphrases are for. A privacy passphrase stands for AuthPriv even if the other is empty. */
SecurityLevel levelOfPassphrases(const std::string &authentication, const std::string &privacy);

} // namespace snmp

#endif
