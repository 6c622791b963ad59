// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Who asks: protocol version, community or user, from the command line, the environment and the user's snmp.conf.
 */
#ifndef PTZCTL_CREDENTIALS_H
#define PTZCTL_CREDENTIALS_H

#include <string>

namespace ptzctl {

/**
 * What the command line and the environment say; an empty text says nothing, and the SNMP library's configuration
 * files are asked. Passphrases come from the environment only: everybody on a machine can read a command line.
 */
struct Credentials {
    std::string version; ///< 2c or 3
    std::string community;
    std::string user;
    std::string level;          ///< noAuthNoPriv, authNoPriv or authPriv
    std::string authentication; ///< name of the protocol, such as SHA-256
    std::string privacy;        ///< name of the protocol, such as AES
    std::string authenticationPassphrase;
    std::string privacyPassphrase;
};

/**
 * Starts the SNMP library, which reads its configuration files, and puts the credentials in front of what they say. To
 * be called once in a process, before the first session.
 * @throws Failure with ExitCode::Usage when nobody says who asks, or what is said does not fit together
 */
void startLibrary(const Credentials &credentials);

/** As startLibrary(), for a receiver, which needs nobody's name. */
void startReceiver();

} // namespace ptzctl

#endif
