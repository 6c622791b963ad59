// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Opening an SNMPv3 session in the SNMP library.
 */
#ifndef QUARNSNMP_HARNESS_SECURE_SESSION_H
#define QUARNSNMP_HARNESS_SECURE_SESSION_H

#include <chrono>
#include <string>

#include "user.h"

namespace harness {

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
