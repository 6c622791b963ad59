// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * SNMPv3 users of notifications.
 */
#ifndef CLIENT_SNMP_NOTIFICATION_USER_H
#define CLIENT_SNMP_NOTIFICATION_USER_H

#include <string>

#include "library.h"

namespace snmp {

/**
 * Adds the user whose signed and encrypted notifications are accepted. The keys of a notification belong to the engine
 * that sends it. SHA-256 and AES are the default protocols.
 * @param credentials  the user, its protocols and its passphrases
 * @param engine       engine ID of the sender, 5 to 32 octets
 * @param sources      advice of the Failure when the library rejects the user: where the program reads the credentials
 * @throws Failure with Cause::Usage
 */
void addNotificationUser(const Credentials &credentials, const std::string &engine, const std::string &sources);

} // namespace snmp

#endif
