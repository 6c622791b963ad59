// SPDX-License-Identifier: Apache-2.0
#include "message.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <stdexcept>

#include "netsnmp_convert.h"
#include "netsnmp_types.h"
#include "oid_text.h"

namespace wrong {

namespace {

constexpr char kSequence = 0x30;
constexpr char kResponse = static_cast<char>(0xA2);
constexpr char kInteger = 0x02;
constexpr char kOctetString = 0x04;
constexpr char kOid = 0x06;
constexpr long kVersion2c = 1;
constexpr std::uint32_t kFirstArc = 40;

std::string element(char tag, const std::string &content) {
    constexpr std::size_t kShort = 0x80;
    constexpr std::size_t kOneOctet = 0x100;
    std::string octets(1, tag);
    const std::size_t size = content.size();
    if (size >= kOneOctet) {
        octets += {static_cast<char>(0x82), static_cast<char>(size >> 8U), static_cast<char>(size & 0xFFU)};
    } else if (size >= kShort) {
        octets += {static_cast<char>(0x81), static_cast<char>(size)};
    } else {
        octets += static_cast<char>(size);
    }
    return octets + content;
}

/** Writes a number with as few octets as its sign allows. */
std::string numberContent(std::int64_t number) {
    std::string octets;
    for (;; number >>= 8) {
        octets.insert(octets.begin(), static_cast<char>(number & 0xFF));
        const bool negative = (octets.front() & 0x80) != 0;
        if (number >> 8 == (negative ? -1 : 0) && (number >= -0x80 && number <= 0x7F)) {
            return octets;
        }
    }
}

/** Writes a number in groups of seven bits, the highest first. */
std::string arcContent(std::uint32_t number) {
    std::string octets(1, static_cast<char>(number & 0x7FU));
    for (number >>= 7U; number != 0; number >>= 7U) {
        octets.insert(octets.begin(), static_cast<char>((number & 0x7FU) | 0x80U));
    }
    return octets;
}

std::string oidContent(const std::string &text) {
    const std::vector<std::uint32_t> numbers = snmp::parseOid(text);
    std::string octets = arcContent(numbers[0] * kFirstArc + numbers[1]);
    for (std::size_t i = 2; i < numbers.size(); ++i) {
        octets += arcContent(numbers[i]);
    }
    return octets;
}

std::string valueElement(const snmp::Varbind &varbind) {
    const char tag = static_cast<char>(varbind.type);
    switch (varbind.type) {
    case snmp::Type::Integer:
    case snmp::Type::Counter32:
    case snmp::Type::Gauge32:
    case snmp::Type::TimeTicks:
    case snmp::Type::Counter64:
        return element(tag, numberContent(varbind.number));
    case snmp::Type::Oid:
        return element(tag, oidContent(varbind.octets));
    default:
        return element(tag, varbind.octets);
    }
}

std::string varbindElement(const snmp::Varbind &varbind) {
    return element(kSequence, element(kOid, oidContent(varbind.oid)) + valueElement(varbind));
}

std::optional<Command> commandOf(int tag) {
    constexpr std::array kCommands = {Command::Get, Command::GetNext, Command::Set, Command::GetBulk};
    const auto *const found = std::find(kCommands.begin(), kCommands.end(), static_cast<Command>(tag));
    return found != kCommands.end() ? std::optional(*found) : std::nullopt;
}

} // namespace

std::optional<Request> decode(std::string_view octets) {
    std::string copy(octets); // the library wants octets that it may change
    std::size_t left = copy.size();
    std::array<u_char, 256> community{};
    std::size_t communityLength = community.size();
    long version = 0;
    u_char *const body =
        snmp_comstr_parse(reinterpret_cast<u_char *>(copy.data()), &left, community.data(), &communityLength, &version);
    if (body == nullptr || version != kVersion2c) {
        return std::nullopt;
    }
    const snmp::PduPointer pdu(snmp_pdu_create(0));
    if (!pdu || snmp_pdu_parse(pdu.get(), body, &left) != 0) {
        return std::nullopt;
    }
    const std::optional<Command> command = commandOf(pdu->command);
    if (!command) {
        return std::nullopt;
    }
    Request request;
    request.community.assign(reinterpret_cast<const char *>(community.data()), communityLength);
    request.command = *command;
    request.id = pdu->reqid;
    // In a GETBULK these have the places of the error status and its index.
    request.nonRepeaters = pdu->errstat;
    request.maxRepetitions = pdu->errindex;
    request.varbinds = snmp::varbindsOf(*pdu);
    return request;
}

std::string encode(const Reply &reply, const std::string &community) {
    std::string varbinds;
    for (const snmp::Varbind &varbind : reply.varbinds) {
        varbinds += varbindElement(varbind);
    }
    const auto number = [](long value) { return element(kInteger, numberContent(value)); };
    const std::string body = element(kResponse, number(reply.id) + number(reply.error) + number(reply.errorIndex) +
                                                    element(kSequence, varbinds));
    return element(kSequence, number(kVersion2c) + element(kOctetString, community) + body);
}

} // namespace wrong
