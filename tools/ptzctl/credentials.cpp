// SPDX-License-Identifier: Apache-2.0
#include "credentials.h"

#include <net-snmp/net-snmp-config.h>
#include <net-snmp/net-snmp-includes.h>

#include "failure.h"

namespace ptzctl {

namespace {

constexpr const char *kProgram = "ptzctl";

std::string libraryText(int which) {
    const char *const text = netsnmp_ds_get_string(NETSNMP_DS_LIBRARY_ID, which);
    return text != nullptr ? text : "";
}

void setText(int which, const std::string &text) {
    if (!text.empty()) {
        netsnmp_ds_set_string(NETSNMP_DS_LIBRARY_ID, which, text.c_str());
    }
}

/** Gives the library a line of its configuration files. */
void configure(const std::string &name, const std::string &value) {
    std::string line = name + " " + value;
    netsnmp_config(line.data());
}

void startQuietly() {
    // Names are this program's own, so that nobody needs MIB files; and a client has nothing to remember.
    netsnmp_setenv("MIBS", "", 1);
    netsnmp_ds_set_boolean(NETSNMP_DS_LIBRARY_ID, NETSNMP_DS_LIB_DISABLE_PERSISTENT_LOAD, 1);
    netsnmp_ds_set_boolean(NETSNMP_DS_LIBRARY_ID, NETSNMP_DS_LIB_DISABLE_PERSISTENT_SAVE, 1);
    // Mistakes in the configuration are told, and not the directories that the library makes.
    netsnmp_register_loghandler(NETSNMP_LOGHANDLER_STDERR, LOG_WARNING);
    init_snmp(kProgram);
    // From here on what goes wrong is told by this program, once.
    snmp_disable_log();
    netsnmp_register_loghandler(NETSNMP_LOGHANDLER_NONE, LOG_DEBUG);
}

int chosenVersion(const Credentials &credentials) {
    if (!credentials.version.empty()) {
        return credentials.version == "3" ? NETSNMP_DS_SNMP_VERSION_3 : NETSNMP_DS_SNMP_VERSION_2c;
    }
    if (!credentials.community.empty() || !credentials.user.empty()) {
        return credentials.user.empty() ? NETSNMP_DS_SNMP_VERSION_2c : NETSNMP_DS_SNMP_VERSION_3;
    }
    const int configured = netsnmp_ds_get_int(NETSNMP_DS_LIBRARY_ID, NETSNMP_DS_LIB_SNMPVERSION);
    if (configured != 0) {
        return configured;
    }
    return libraryText(NETSNMP_DS_LIB_SECNAME).empty() ? NETSNMP_DS_SNMP_VERSION_2c : NETSNMP_DS_SNMP_VERSION_3;
}

void requireProtocol(const std::string &what, const std::string &name, int type) {
    if (!name.empty() && type < 0) {
        throw Failure(ExitCode::Usage, "the SNMP library has no " + what + " '" + name + "'");
    }
}

} // namespace

void startReceiver() {
    startQuietly();
}

void startLibrary(const Credentials &credentials) {
    startQuietly();
    setText(NETSNMP_DS_LIB_COMMUNITY, credentials.community);
    setText(NETSNMP_DS_LIB_SECNAME, credentials.user);
    setText(NETSNMP_DS_LIB_AUTHPASSPHRASE, credentials.authenticationPassphrase);
    setText(NETSNMP_DS_LIB_PRIVPASSPHRASE, credentials.privacyPassphrase);
    requireProtocol("authentication protocol", credentials.authentication,
                    usm_lookup_auth_type(credentials.authentication.c_str()));
    requireProtocol("privacy protocol", credentials.privacy, usm_lookup_priv_type(credentials.privacy.c_str()));
    for (const auto &[name, value] :
         {std::pair<const char *, const std::string &>{"defSecurityLevel", credentials.level},
          {"defAuthType", credentials.authentication},
          {"defPrivType", credentials.privacy}}) {
        if (!value.empty()) {
            configure(name, value);
        }
    }
    const int version = chosenVersion(credentials);
    if (version == NETSNMP_DS_SNMP_VERSION_1) {
        throw Failure(ExitCode::Usage, "snmp.conf asks for SNMPv1, which this program does not speak",
                      "use --snmp-version 2c or 3");
    }
    netsnmp_ds_set_int(NETSNMP_DS_LIBRARY_ID, NETSNMP_DS_LIB_SNMPVERSION, version);
    const bool secure = version == NETSNMP_DS_SNMP_VERSION_3;
    if (libraryText(secure ? NETSNMP_DS_LIB_SECNAME : NETSNMP_DS_LIB_COMMUNITY).empty()) {
        throw Failure(
            ExitCode::Usage, secure ? "SNMPv3 needs a user" : "nobody says who asks",
            "use --community or --user, PTZCTL_COMMUNITY or PTZCTL_USER, or defCommunity or defSecurityName in "
            "~/.snmp/snmp.conf");
    }
}

} // namespace ptzctl
