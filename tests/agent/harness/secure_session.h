// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Users of SNMPv3, and their sessions in the SNMP library.
 */
#ifndef QUARNSNMP_HARNESS_SECURE_SESSION_H
#define QUARNSNMP_HARNESS_SECURE_SESSION_H

#include <chrono>
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

/**
 * Opens a session with an agent, and requests its engine ID before the first request. The library keeps
 * one set of keys for a user of an agent, without a lock: sessions belong to one thread, and those of one user follow
 * each other, each closed before the next one is used. An agent under test asks itself whether it answers, also as a
 * user, when it starts, reloads and ends.
 * @param peer     address of the agent, as HOST:PORT
 * @param timeout  how long to wait for an answer, to that first question too
 * @return the library's session, the caller's to close with closeSecureSession(); null when it cannot be opened
 * @throws std::runtime_error when a passphrase makes no key
 */
void *openSecureSession(const std::string &peer, const User &user, std::chrono::microseconds timeout);

/** Closes a session and makes the library forget its user's keys. */
void closeSecureSession(void *session);

} // namespace harness

#endif
