// SPDX-License-Identifier: Apache-2.0
#include "agent_names.h"

#include <array>
#include <cstring>

#include <arpa/inet.h>
#include <netinet/in.h>

namespace watch {

namespace {

struct Name {
    long number;
    const char *text;
};

constexpr std::array<Name, 4> kOperations = {{
    {SNMP_MSG_GET, "GET"},
    {SNMP_MSG_GETNEXT, "GETNEXT"},
    {SNMP_MSG_GETBULK, "GETBULK"},
    {SNMP_MSG_SET, "SET"},
}};

constexpr std::array<Name, 9> kPhases = {{
    {MODE_GET, "get"},
    {MODE_GETNEXT, "getnext"},
    {MODE_GETBULK, "getnext"},
    {MODE_SET_RESERVE1, "reserve1"},
    {MODE_SET_RESERVE2, "reserve2"},
    {MODE_SET_ACTION, "action"},
    {MODE_SET_COMMIT, "commit"},
    {MODE_SET_FREE, "undo"},
    {MODE_SET_UNDO, "undo"},
}};

constexpr std::array<Name, 12> kTypes = {{
    {ASN_INTEGER, "Integer32"},
    {ASN_OCTET_STR, "OctetString"},
    {ASN_OBJECT_ID, "ObjectIdentifier"},
    {ASN_NULL, "Null"},
    {ASN_IPADDRESS, "IpAddress"},
    {ASN_COUNTER, "Counter32"},
    {ASN_GAUGE, "Gauge32"},
    {ASN_TIMETICKS, "TimeTicks"},
    {ASN_OPAQUE, "Opaque"},
    {ASN_COUNTER64, "Counter64"},
    {SNMP_NOSUCHOBJECT, "noSuchObject"},
    {SNMP_NOSUCHINSTANCE, "noSuchInstance"},
}};

constexpr std::array<Name, 19> kErrors = {{
    {SNMP_ERR_NOERROR, "noError"},
    {SNMP_ERR_TOOBIG, "tooBig"},
    {SNMP_ERR_NOSUCHNAME, "noSuchName"},
    {SNMP_ERR_BADVALUE, "badValue"},
    {SNMP_ERR_READONLY, "readOnly"},
    {SNMP_ERR_GENERR, "genErr"},
    {SNMP_ERR_NOACCESS, "noAccess"},
    {SNMP_ERR_WRONGTYPE, "wrongType"},
    {SNMP_ERR_WRONGLENGTH, "wrongLength"},
    {SNMP_ERR_WRONGENCODING, "wrongEncoding"},
    {SNMP_ERR_WRONGVALUE, "wrongValue"},
    {SNMP_ERR_NOCREATION, "noCreation"},
    {SNMP_ERR_INCONSISTENTVALUE, "inconsistentValue"},
    {SNMP_ERR_RESOURCEUNAVAILABLE, "resourceUnavailable"},
    {SNMP_ERR_COMMITFAILED, "commitFailed"},
    {SNMP_ERR_UNDOFAILED, "undoFailed"},
    {SNMP_ERR_AUTHORIZATIONERROR, "authorizationError"},
    {SNMP_ERR_NOTWRITABLE, "notWritable"},
    {SNMP_ERR_INCONSISTENTNAME, "inconsistentName"},
}};

constexpr std::array<Name, 3> kVersions = {{
    {SNMP_VERSION_1, "1"},
    {SNMP_VERSION_2c, "2c"},
    {SNMP_VERSION_3, "3"},
}};

template <std::size_t Count>
std::string nameOf(const std::array<Name, Count> &names, long number) {
    for (const Name &name : names) {
        if (name.number == number) {
            return name.text;
        }
    }
    return std::to_string(number);
}

std::string addressText(int family, const void *address, in_port_t port) {
    std::array<char, INET6_ADDRSTRLEN> text{};
    if (inet_ntop(family, address, text.data(), text.size()) == nullptr) {
        return "";
    }
    const std::string host = family == AF_INET6 ? "[" + std::string(text.data()) + "]" : text.data();
    return host + ":" + std::to_string(ntohs(port));
}

/** The address of a message that came over UDP; empty for other transports. */
std::string senderOf(const netsnmp_pdu &pdu) {
    netsnmp_indexed_addr_pair addresses{};
    if (pdu.transport_data == nullptr || pdu.transport_data_length != static_cast<int>(sizeof addresses)) {
        return "";
    }
    std::memcpy(&addresses, pdu.transport_data, sizeof addresses);
    switch (addresses.remote_addr.sa.sa_family) {
    case AF_INET:
        return addressText(AF_INET, &addresses.remote_addr.sin.sin_addr, addresses.remote_addr.sin.sin_port);
    case AF_INET6:
        return addressText(AF_INET6, &addresses.remote_addr.sin6.sin6_addr, addresses.remote_addr.sin6.sin6_port);
    default:
        return "";
    }
}

bool consistsOfOctets(u_char type) {
    return type == ASN_OCTET_STR || type == ASN_OPAQUE || type == ASN_IPADDRESS;
}

bool isUnsigned(u_char type) {
    return type == ASN_COUNTER || type == ASN_GAUGE || type == ASN_TIMETICKS;
}

} // namespace

std::string operationName(int command) {
    return nameOf(kOperations, command);
}

std::string phaseName(int mode) {
    return nameOf(kPhases, mode);
}

std::string errorName(long error) {
    return nameOf(kErrors, error);
}

std::string oidText(const oid *numbers, std::size_t count) {
    std::string text;
    for (std::size_t i = 0; i < count; ++i) {
        text.append(i == 0 ? "" : ".").append(std::to_string(numbers[i]));
    }
    return text;
}

void setValue(Observation &observation, const netsnmp_variable_list &varbind) {
    observation.oid = oidText(varbind.name, varbind.name_length);
    observation.type = nameOf(kTypes, varbind.type);
    observation.octets.reset();
    observation.number.reset();
    if (consistsOfOctets(varbind.type)) {
        const bool isPresent = varbind.val.string != nullptr && varbind.val_len > 0;
        observation.octets = isPresent
                                 ? std::string(reinterpret_cast<const char *>(varbind.val.string), varbind.val_len)
                                 : std::string();
    } else if (varbind.val.integer == nullptr) {
        return;
    } else if (varbind.type == ASN_COUNTER64 && varbind.val_len >= sizeof(counter64)) {
        observation.number =
            static_cast<long long>((static_cast<unsigned long long>(varbind.val.counter64->high) << 32U) |
                                   (varbind.val.counter64->low & 0xFFFFFFFFU));
    } else if (varbind.val_len >= sizeof(long) && isUnsigned(varbind.type)) {
        observation.number = static_cast<long long>(static_cast<unsigned long>(*varbind.val.integer) & 0xFFFFFFFFU);
    } else if (varbind.val_len >= sizeof(long) && varbind.type == ASN_INTEGER) {
        observation.number = *varbind.val.integer;
    }
}

void setSender(Observation &observation, const netsnmp_pdu &pdu) {
    observation.version = nameOf(kVersions, pdu.version);
    if (pdu.version == SNMP_VERSION_3) {
        if (pdu.securityName != nullptr) {
            observation.principal.assign(pdu.securityName, pdu.securityNameLen);
        }
    } else if (pdu.community != nullptr) {
        observation.principal.assign(reinterpret_cast<const char *>(pdu.community), pdu.community_len);
    }
    observation.sender = senderOf(pdu);
}

} // namespace watch
