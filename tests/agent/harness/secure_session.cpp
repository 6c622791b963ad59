// SPDX-License-Identifier: Apache-2.0
#include "secure_session.h"

#include <cstdlib>
#include <stdexcept>

#include "netsnmp_types.h"

namespace harness {

namespace {

/** Makes the library ready for SNMPv3, without the user's and the machine's configuration. */
void startUserSecurity() {
    static const bool started = [] {
        netsnmp_ds_set_boolean(NETSNMP_DS_LIBRARY_ID, NETSNMP_DS_LIB_DONT_READ_CONFIGS, 1);
        netsnmp_ds_set_boolean(NETSNMP_DS_LIBRARY_ID, NETSNMP_DS_LIB_DONT_PERSIST_STATE, 1);
        setenv("MIBS", "", 1);
        init_snmp("harness");
        return true;
    }();
    static_cast<void>(started);
}

int libraryLevel(SecurityLevel level) {
    switch (level) {
    case SecurityLevel::NoAuthNoPriv:
        return SNMP_SEC_LEVEL_NOAUTH;
    case SecurityLevel::AuthNoPriv:
        return SNMP_SEC_LEVEL_AUTHNOPRIV;
    case SecurityLevel::AuthPriv:
        break;
    }
    return SNMP_SEC_LEVEL_AUTHPRIV;
}

/** Makes a key from a passphrase. @param key as long as the library has it; becomes the key @param length its length */
void makeKey(const std::string &passphrase, u_char *key, std::size_t &length) {
    length = USM_AUTH_KU_LEN;
    if (generate_Ku(usmHMAC192SHA256AuthProtocol, OID_LENGTH(usmHMAC192SHA256AuthProtocol),
                    reinterpret_cast<const u_char *>(passphrase.data()), passphrase.size(), key,
                    &length) != SNMPERR_SUCCESS) {
        throw std::runtime_error("no key can be made from the passphrase '" + passphrase + "'");
    }
}

} // namespace

std::string creationOf(const User &user, const std::string &engine) {
    return "createUser " + (engine.empty() ? "" : "-e " + engine + " ") + user.name + " SHA-256 \"" +
           user.authentication + "\" AES \"" + user.privacy + "\"";
}

void *openSecureSession(const std::string &peer, const User &user, std::chrono::microseconds timeout) {
    startUserSecurity();
    netsnmp_session wanted;
    snmp_sess_init(&wanted);
    std::string peername = "udp:" + peer;
    std::string name = user.name;
    wanted.version = SNMP_VERSION_3;
    wanted.peername = peername.data();
    wanted.retries = 0;
    wanted.timeout = static_cast<long>(timeout.count());
    wanted.securityName = name.data();
    wanted.securityNameLen = name.size();
    wanted.securityModel = SNMP_SEC_MODEL_USM;
    wanted.securityLevel = libraryLevel(user.level);
    // A message of a lower level goes without the keys that it does not need, as from a manager without these keys.
    if (user.level != SecurityLevel::NoAuthNoPriv) {
        wanted.securityAuthProto = usmHMAC192SHA256AuthProtocol;
        wanted.securityAuthProtoLen = OID_LENGTH(usmHMAC192SHA256AuthProtocol);
        makeKey(user.authentication, wanted.securityAuthKey, wanted.securityAuthKeyLen);
    }
    if (user.level == SecurityLevel::AuthPriv) {
        wanted.securityPrivProto = usmAESPrivProtocol;
        wanted.securityPrivProtoLen = OID_LENGTH(usmAESPrivProtocol);
        makeKey(user.privacy, wanted.securityPrivKey, wanted.securityPrivKeyLen);
    }
    return snmp_sess_open(&wanted);
}

void closeSecureSession(void *session) {
    const netsnmp_session *opened = snmp_sess_session(session);
    usmUser *user = usm_get_user(opened->securityEngineID, opened->securityEngineIDLen, opened->securityName);
    if (user != nullptr) {
        usm_remove_user(user);
        usm_free_user(user);
    }
    snmp_sess_close(session);
}

} // namespace harness
