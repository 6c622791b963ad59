// SPDX-License-Identifier: Apache-2.0
#include "netsnmp_convert.h"

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <stdexcept>

#include "oid_text.h"

namespace snmp {

namespace {

constexpr unsigned int kWordBits = 32;

std::vector<oid> numbersOf(const std::string &text) {
    const std::vector<std::uint32_t> numbers = parseOid(text);
    return {numbers.begin(), numbers.end()};
}

std::string textOf(const oid *numbers, std::size_t count) {
    return oidText(std::vector<oid>(numbers, numbers + count));
}

/** Tests for a number within an Opaque, which the library unpacks. */
bool isUnpackedOpaque(u_char type) {
    return type == ASN_OPAQUE_FLOAT || type == ASN_OPAQUE_DOUBLE || type == ASN_OPAQUE_COUNTER64 ||
           type == ASN_OPAQUE_I64 || type == ASN_OPAQUE_U64;
}

/** Packs such a number again: an inner tag of two octets, the length, and the value with the high octet first. */
std::string packedOpaque(const netsnmp_variable_list &source) {
    std::uint64_t bits = 0;
    std::size_t size = sizeof bits;
    if (source.type == ASN_OPAQUE_FLOAT) {
        std::uint32_t half = 0;
        size = sizeof half;
        std::memcpy(&half, source.val.floatVal, size);
        bits = half;
    } else if (source.type == ASN_OPAQUE_DOUBLE) {
        std::memcpy(&bits, source.val.doubleVal, size);
    } else {
        bits = (static_cast<std::uint64_t>(source.val.counter64->high) << kWordBits) |
               static_cast<std::uint32_t>(source.val.counter64->low);
    }
    std::string octets = {static_cast<char>(ASN_OPAQUE_TAG1), static_cast<char>(source.type), static_cast<char>(size)};
    for (std::size_t i = size; i > 0; --i) {
        octets += static_cast<char>(bits >> (8 * (i - 1)));
    }
    return octets;
}

Varbind read(const netsnmp_variable_list &source) {
    Varbind result;
    result.oid = textOf(source.name, source.name_length);
    if (isUnpackedOpaque(source.type)) {
        result.type = Type::Opaque;
        result.octets = packedOpaque(source);
        return result;
    }
    result.type = static_cast<Type>(source.type);
    switch (result.type) {
    case Type::Integer:
        result.number = *source.val.integer;
        break;
    case Type::Counter32:
    case Type::Gauge32:
    case Type::TimeTicks:
        // The library keeps 32 bits in a long, with or without an extended sign.
        result.number = static_cast<std::uint32_t>(*source.val.integer);
        break;
    case Type::Counter64:
        result.number = static_cast<std::int64_t>(
            (static_cast<std::uint64_t>(source.val.counter64->high) << kWordBits) | source.val.counter64->low);
        break;
    case Type::Oid:
        result.octets = textOf(source.val.objid, source.val_len / sizeof(oid));
        break;
    case Type::Octets:
    case Type::IpAddress:
    case Type::Opaque:
        result.octets.assign(reinterpret_cast<const char *>(source.val.string), source.val_len);
        break;
    default:
        break;
    }
    return result;
}

} // namespace

void append(netsnmp_pdu &pdu, const Varbind &varbind) {
    const std::vector<oid> name = numbersOf(varbind.oid);
    const auto add = [&](const void *value, std::size_t size) {
        if (snmp_pdu_add_variable(&pdu, name.data(), name.size(), static_cast<u_char>(varbind.type), value, size) ==
            nullptr) {
            throw std::runtime_error("the SNMP library rejects the value " + valueText(varbind));
        }
    };
    switch (varbind.type) {
    case Type::Integer:
    case Type::Counter32:
    case Type::Gauge32:
    case Type::TimeTicks: {
        const auto number = static_cast<long>(varbind.number);
        return add(&number, sizeof number);
    }
    case Type::Counter64: {
        const auto number = static_cast<std::uint64_t>(varbind.number);
        const counter64 halves{static_cast<u_long>(number >> kWordBits),
                               static_cast<u_long>(static_cast<std::uint32_t>(number))};
        return add(&halves, sizeof halves);
    }
    case Type::Oid: {
        const std::vector<oid> value = numbersOf(varbind.octets);
        return add(value.data(), value.size() * sizeof(oid));
    }
    default:
        return add(varbind.octets.data(), varbind.octets.size());
    }
}

std::vector<Varbind> varbindsOf(const netsnmp_pdu &pdu) {
    std::vector<Varbind> result;
    for (const netsnmp_variable_list *next = pdu.variables; next != nullptr; next = next->next_variable) {
        result.push_back(read(*next));
    }
    return result;
}

std::string libraryError(void *session) {
    int systemError = 0;
    int libraryError = 0;
    char *message = nullptr;
    if (session != nullptr) {
        snmp_sess_error(session, &systemError, &libraryError, &message);
    } else {
        netsnmp_session none{};
        none.s_snmp_errno = snmp_errno;
        snmp_error(&none, &systemError, &libraryError, &message);
    }
    std::string result = message != nullptr ? message : "unknown error";
    std::free(message);
    return result;
}

bool isReport(int error) {
    switch (error) {
    case SNMPERR_UNKNOWN_USER_NAME:
    case SNMPERR_UNKNOWN_ENG_ID:
    case SNMPERR_UNSUPPORTED_SEC_LEVEL:
    case SNMPERR_AUTHENTICATION_FAILURE:
    case SNMPERR_NOT_IN_TIME_WINDOW:
    case SNMPERR_DECRYPTION_ERR:
        return true;
    default:
        return false;
    }
}

} // namespace snmp
