// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Start of the SNMP library with credentials from the program and from the user's snmp.conf.
 */
#ifndef CLIENT_SNMP_LIBRARY_H
#define CLIENT_SNMP_LIBRARY_H

#include <string>

namespace snmp {

/** Credentials of the program. For an empty text the SNMP library's configuration files apply. */
struct Credentials {
    std::string version; ///< 2c or 3
    std::string community;
    std::string user;
    std::string level; ///< noAuthNoPriv, authNoPriv or authPriv; without it the level that the passphrases are for
    std::string authentication; ///< name of the protocol, such as SHA-256
    std::string privacy;        ///< name of the protocol, such as AES
    std::string authenticationPassphrase;
    std::string privacyPassphrase;
};

/**
 * Starts the SNMP library, which reads its configuration files, and sets the credentials, which take precedence. To be
 * called once in a process, before the first session.
 * @param program      name of the program, which is also that of its own configuration file
 * @param credentials  for all sessions of the process
 * @param sources      advice of the Failure without a community or user: where the program reads them
 * @throws Failure with Cause::Usage for missing or contradictory credentials
 */
void startLibrary(const char *program, const Credentials &credentials, const std::string &sources);

/** Starts the SNMP library for a receiver, which needs no credentials. */
void startReceiver(const char *program);

} // namespace snmp

#endif
