// SPDX-License-Identifier: Apache-2.0
#include "native.h"

#include <cstdlib>

#include "failure.h"

namespace ptzctl {

namespace {

std::string identifierText(const oid *numbers, std::size_t count) {
    std::string text;
    for (std::size_t i = 0; i < count; ++i) {
        text += (i == 0 ? "" : ".") + std::to_string(numbers[i]);
    }
    return text;
}

Variable read(const netsnmp_variable_list &native) {
    Variable result;
    result.identifier = identifierText(native.name, native.name_length);
    result.type = static_cast<Type>(native.type);
    switch (result.type) {
    case Type::Integer:
        result.number = *native.val.integer;
        break;
    case Type::Counter32:
    case Type::Gauge32:
    case Type::TimeTicks:
        // The library keeps 32 bits in a long; which of the two signs it extended is no matter of the protocol.
        result.number = static_cast<std::uint32_t>(*native.val.integer);
        break;
    case Type::Counter64: {
        constexpr unsigned int kWord = 32;
        result.number = static_cast<std::int64_t>((static_cast<std::uint64_t>(native.val.counter64->high) << kWord) |
                                                  native.val.counter64->low);
        break;
    }
    case Type::ObjectIdentifier:
        result.octets = identifierText(native.val.objid, native.val_len / sizeof(oid));
        break;
    case Type::Octets:
    case Type::IpAddress:
    case Type::Opaque:
        result.octets.assign(reinterpret_cast<const char *>(native.val.string), native.val_len);
        break;
    default:
        break;
    }
    return result;
}

} // namespace

void append(netsnmp_pdu *pdu, const Variable &variable) {
    const std::vector<std::uint32_t> numbers = parseIdentifier(variable.identifier);
    const std::vector<oid> name(numbers.begin(), numbers.end());
    const auto type = static_cast<u_char>(variable.type);
    const auto number = static_cast<long>(variable.number);
    const bool isNumber = variable.type == Type::Integer;
    const void *const value = isNumber ? static_cast<const void *>(&number) : variable.octets.data();
    const std::size_t size = isNumber ? sizeof number : variable.octets.size();
    if (snmp_pdu_add_variable(pdu, name.data(), name.size(), type, value, size) == nullptr) {
        throw Failure(ExitCode::BadAnswer, "the SNMP library does not take " + valueText(variable));
    }
}

std::vector<Variable> variablesOf(const netsnmp_pdu &pdu) {
    std::vector<Variable> result;
    for (const netsnmp_variable_list *native = pdu.variables; native != nullptr; native = native->next_variable) {
        result.push_back(read(*native));
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

} // namespace ptzctl
