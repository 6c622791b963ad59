// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Advice of errors about credentials: where the program reads them.
 */
#ifndef PTZCTL_SOURCES_OF_CREDENTIALS_H
#define PTZCTL_SOURCES_OF_CREDENTIALS_H

namespace ptzctl {

inline constexpr const char *kSourcesOfCredentials =
    "use --community or --user, PTZCTL_COMMUNITY or PTZCTL_USER, or defCommunity or defSecurityName in "
    "~/.snmp/snmp.conf";
inline constexpr const char *kSourcesOfPassphrases =
    "passphrases have at least 8 characters and come from PTZCTL_AUTH_PASSPHRASE and PTZCTL_PRIVACY_PASSPHRASE, or "
    "from defAuthPassphrase and defPrivPassphrase in snmp.conf";

} // namespace ptzctl

#endif
