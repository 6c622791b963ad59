// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Who a manager is with SNMPv3.
 */
#ifndef QUARNSNMP_HARNESS_USER_H
#define QUARNSNMP_HARNESS_USER_H

#include <string>

namespace harness {

/** How much of SNMPv3's security a message has. */
enum class SecurityLevel { NoAuthNoPriv, AuthNoPriv, AuthPriv };

/** A user with passphrases for SHA-256 and AES-128, of at least 8 characters each. */
struct User {
    std::string name;
    std::string authentication;
    std::string privacy;
    SecurityLevel level = SecurityLevel::AuthPriv; ///< of the messages that a manager sends as this user
};

/**
 * The line that creates a user in a program's persistent data.
 * @param engine  identifier of the engine that the user belongs to, as 0x…; empty for the program's own
 */
std::string creationOf(const User &user, const std::string &engine = "");

} // namespace harness

#endif
