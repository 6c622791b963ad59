// SPDX-License-Identifier: Apache-2.0
#include "library.h"

#include <algorithm>
#include <utility>

#include "failure.h"
#include "netsnmp_types.h"
#include "security_level.h"

namespace snmp {

namespace {

std::string libraryText(int which) {
    const char *const text = netsnmp_ds_get_string(NETSNMP_DS_LIBRARY_ID, which);
    return text != nullptr ? text : "";
}

void setText(int which, const std::string &text) {
    if (!text.empty()) {
        netsnmp_ds_set_string(NETSNMP_DS_LIBRARY_ID, which, text.c_str());
    }
}

/** Passes a line of configuration to the library. */
void configure(const std::string &name, const std::string &value) {
    std::string line = name + " " + value;
    netsnmp_config(line.data());
}

/** Starts the library without MIB files, because the client has its own names, and without persistent data. */
void startQuietly(const char *program) {
    netsnmp_setenv("MIBS", "", 1);
    netsnmp_ds_set_boolean(NETSNMP_DS_LIBRARY_ID, NETSNMP_DS_LIB_DISABLE_PERSISTENT_LOAD, 1);
    netsnmp_ds_set_boolean(NETSNMP_DS_LIBRARY_ID, NETSNMP_DS_LIB_DISABLE_PERSISTENT_SAVE, 1);
    // Report mistakes in the configuration, but not the directories that the library creates.
    netsnmp_register_loghandler(NETSNMP_LOGHANDLER_STDERR, LOG_WARNING);
    init_snmp(program);
    // From here on the program reports errors itself, once.
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

/**
 * Chooses the security level. Passphrases of the program raise the level of the configuration files, so that they never
 * stay unused.
 */
void chooseLevel(const Credentials &credentials) {
    const int configured = netsnmp_ds_get_int(NETSNMP_DS_LIBRARY_ID, NETSNMP_DS_LIB_SECLEVEL);
    const bool hasPassphrase = !credentials.authenticationPassphrase.empty() || !credentials.privacyPassphrase.empty();
    if (!credentials.level.empty() || (configured != 0 && !hasPassphrase)) {
        return;
    }
    const std::string common = libraryText(NETSNMP_DS_LIB_PASSPHRASE);
    const SecurityLevel level = levelOfPassphrases(libraryText(NETSNMP_DS_LIB_AUTHPASSPHRASE) + common,
                                                   libraryText(NETSNMP_DS_LIB_PRIVPASSPHRASE) + common);
    netsnmp_ds_set_int(NETSNMP_DS_LIBRARY_ID, NETSNMP_DS_LIB_SECLEVEL, std::max(configured, static_cast<int>(level)));
}

void requireProtocol(const std::string &what, const std::string &name, int type) {
    if (!name.empty() && type < 0) {
        throw Failure(Cause::Usage, "the SNMP library has no " + what + " '" + name + "'");
    }
}

} // namespace

void startLibrary(const char *program, const Credentials &credentials, const std::string &sources) {
    startQuietly(program);
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
    chooseLevel(credentials);
    const int version = chosenVersion(credentials);
    if (version == NETSNMP_DS_SNMP_VERSION_1) {
        throw Failure(Cause::Usage, "snmp.conf selects SNMPv1, which this program does not support",
                      "select version 2c or 3");
    }
    netsnmp_ds_set_int(NETSNMP_DS_LIBRARY_ID, NETSNMP_DS_LIB_SNMPVERSION, version);
    const bool secure = version == NETSNMP_DS_SNMP_VERSION_3;
    if (libraryText(secure ? NETSNMP_DS_LIB_SECNAME : NETSNMP_DS_LIB_COMMUNITY).empty()) {
        throw Failure(Cause::Usage, secure ? "SNMPv3 needs a user" : "no community or user given", sources);
    }
}

void startReceiver(const char *program) {
    startQuietly(program);
}

} // namespace snmp
