// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Users of SNMPv3.
 */
#ifndef QUARNSNMP_HARNESS_USER_H
#define QUARNSNMP_HARNESS_USER_H

#include <string>

namespace harness {

/** Security level of a message. */
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
 * @param engine  ID of the user's engine, as 0x…; empty for the program's own engine
 */
std::string creationOf(const User &user, const std::string &engine = "");

} // namespace harness

#endif
