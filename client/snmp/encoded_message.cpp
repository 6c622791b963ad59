// SPDX-License-Identifier: Apache-2.0
#include "encoded_message.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <memory>
#include <stdexcept>

#include "netsnmp_convert.h"
#include "netsnmp_types.h"

namespace snmp {

namespace {

// The first octet of a request-id is constant and has no sign bit, so that all request-ids take four octets.
constexpr long kInitialId = 0x40404040;
constexpr std::string_view kEncodedInitialId = "\x02\x04\x40\x40\x40\x40";
constexpr std::size_t kIdHeader = 2;
constexpr std::size_t kIdOctets = 4;
constexpr long kIdMask = 0xFFFFFF;

constexpr unsigned char kExceptionMask = 0x80; // set in noSuchObject, noSuchInstance and endOfMibView

std::string encode(netsnmp_pdu &pdu) {
    netsnmp_session session;
    snmp_sess_init(&session);
    session.version = SNMP_VERSION_2c;
    u_char *buffer = nullptr;
    std::size_t size = 0;
    std::size_t length = 0;
    const int status = snmp_build(&buffer, &size, &length, &session, &pdu);
    const std::unique_ptr<u_char, decltype(&std::free)> owner(buffer, &std::free);
    if (status < 0) {
        throw std::runtime_error("a request cannot be encoded");
    }
    // The library encodes from the end of the buffer to its beginning.
    return {reinterpret_cast<const char *>(buffer) + size - length, length};
}

/** Reads the elements of a response one after the other. */
class Reader {
public:
    explicit Reader(std::string_view octets)
        : next_(reinterpret_cast<u_char *>(const_cast<char *>(octets.data()))), left_(octets.size()) {}

    bool isAtEnd() const {
        return left_ == 0;
    }

    /** Enters a sequence that extends to the end of the octets. */
    void enter(u_char expectedType) {
        const std::size_t before = left_;
        const u_char *const start = next_;
        u_char type = expectedType;
        advance(asn_parse_sequence(next_, &left_, &type, expectedType, "response"));
        if (static_cast<std::size_t>(next_ - start) + left_ != before) {
            fail();
        }
    }

    long number() {
        u_char type = 0;
        long value = 0;
        advance(asn_parse_int(next_, &left_, &type, &value, sizeof value));
        return value;
    }

    void skipString() {
        u_char type = 0;
        std::array<u_char, 64> text{};
        std::size_t length = text.size();
        advance(asn_parse_string(next_, &left_, &type, text.data(), &length));
    }

    /** Reads a varbind. @param count  receives a value of one of the unsigned types @return the type of its value */
    u_char varbind(unsigned long &count) {
        std::array<oid, MAX_OID_LEN> name; // NOLINT(cppcoreguidelines-pro-type-member-init): filled by the library
        std::size_t nameLength = name.size();
        u_char type = 0;
        u_char *value = nullptr;
        std::size_t valueLength = 0;
        advance(snmp_parse_var_op(next_, name.data(), &nameLength, &type, &valueLength, &value, &left_));
        if (type == ASN_COUNTER || type == ASN_GAUGE || type == ASN_TIMETICKS) {
            std::size_t length = static_cast<std::size_t>(next_ - value);
            if (asn_parse_unsigned_int(value, &length, &type, &count, sizeof count) == nullptr) {
                fail();
            }
        }
        return type;
    }

private:
    [[noreturn]] static void fail() {
        throw std::runtime_error("a response is malformed");
    }

    void advance(u_char *position) {
        if (position == nullptr) {
            fail();
        }
        next_ = position;
    }

    u_char *next_;
    std::size_t left_;
};

} // namespace

Message::Message(int command, const std::vector<Varbind> &varbinds, std::size_t repetitions,
                 const std::string &community)
    : responseValues_(varbinds.size() * repetitions) {
    const PduPointer pdu(snmp_pdu_create(command));
    pdu->version = SNMP_VERSION_2c;
    pdu->reqid = kInitialId;
    pdu->community = reinterpret_cast<u_char *>(::strdup(community.c_str()));
    pdu->community_len = community.size();
    if (command == SNMP_MSG_GETBULK) {
        pdu->non_repeaters = 0;
        pdu->max_repetitions = static_cast<long>(repetitions);
    }
    for (const Varbind &varbind : varbinds) {
        append(*pdu, varbind);
    }
    octets_ = encode(*pdu);
    const std::size_t id = octets_.find(kEncodedInitialId);
    if (id == std::string::npos) {
        throw std::runtime_error("an encoded request has no request-id");
    }
    idPosition_ = id + kIdHeader;
}

std::string_view Message::withId(std::uint32_t id) {
    for (std::size_t i = 1; i < kIdOctets; ++i) {
        octets_[idPosition_ + i] = static_cast<char>(id >> 8U * (kIdOctets - 1 - i) & 0xFFU);
    }
    return octets_;
}

Message getRequest(const std::vector<std::string> &oids, const std::string &community) {
    std::vector<Varbind> varbinds;
    std::transform(oids.begin(), oids.end(), std::back_inserter(varbinds), &nameOnly);
    return {SNMP_MSG_GET, varbinds, 1, community};
}

Message getBulkRequest(const std::string &oid, std::size_t repetitions) {
    return {SNMP_MSG_GETBULK, {nameOnly(oid)}, repetitions};
}

Message setRequest(const Varbind &varbind) {
    return {SNMP_MSG_SET, {varbind}, 1};
}

DecodedResponse parse(std::string_view message) {
    Reader reader(message);
    reader.enter(ASN_SEQUENCE | ASN_CONSTRUCTOR);
    reader.number();     // version
    reader.skipString(); // community
    reader.enter(SNMP_MSG_RESPONSE);
    DecodedResponse response;
    response.id = static_cast<std::uint32_t>(reader.number() & kIdMask);
    response.error = reader.number();
    reader.number(); // error-index
    reader.enter(ASN_SEQUENCE | ASN_CONSTRUCTOR);
    while (!reader.isAtEnd()) {
        if ((reader.varbind(response.count) & kExceptionMask) == 0) {
            ++response.values;
        }
    }
    return response;
}

} // namespace snmp
