// SPDX-License-Identifier: Apache-2.0
#include "message.h"

#include <sstream>
#include <stdexcept>

namespace bench {

namespace {

constexpr unsigned char kInteger = 0x02;
constexpr unsigned char kOctets = 0x04;
constexpr unsigned char kIdentifier = 0x06;
constexpr unsigned char kSequence = 0x30;
constexpr unsigned char kNoValueMask = 0x80; // noSuchObject, noSuchInstance and endOfMibView have this bit

// A request-id of four octets without a sign, whose first octet stays: its encoding always has the same length.
constexpr char kIdFirst = 0x40;
constexpr std::size_t kIdLength = 4;
constexpr std::uint32_t kIdBits = 0xFFFFFF;

constexpr const char *kCommunity = "private";

std::string encoded(unsigned char tag, std::string_view content) {
    std::string result(1, static_cast<char>(tag));
    if (content.size() < 0x80) {
        result += static_cast<char>(content.size());
    } else {
        result += static_cast<char>(0x82U);
        result += static_cast<char>(content.size() >> 8U);
        result += static_cast<char>(content.size() & 0xFFU);
    }
    return result.append(content);
}

std::string subIdentifier(std::uint32_t number) {
    std::string result(1, static_cast<char>(number & 0x7FU));
    while ((number >>= 7U) != 0) {
        result.insert(0, 1, static_cast<char>((number & 0x7FU) | 0x80U));
    }
    return result;
}

std::string identifier(const std::string &dotted) {
    std::istringstream stream(dotted);
    std::vector<std::uint32_t> numbers;
    for (std::string part; std::getline(stream, part, '.');) {
        numbers.push_back(static_cast<std::uint32_t>(std::stoul(part)));
    }
    std::string content(1, static_cast<char>(numbers.at(0) * 40 + numbers.at(1)));
    for (std::size_t i = 2; i < numbers.size(); ++i) {
        content += subIdentifier(numbers[i]);
    }
    return encoded(kIdentifier, content);
}

std::string varbindList(const std::vector<Varbind> &varbinds) {
    const std::string null = encoded(0x05, "");
    std::string list;
    for (const Varbind &each : varbinds) {
        list += encoded(kSequence, identifier(each.identifier) + (each.value.empty() ? null : each.value));
    }
    return encoded(kSequence, list);
}

/** Reads elements one after the other. */
class Decoder {
public:
    explicit Decoder(std::string_view text) : rest(text) {}

    bool isAtEnd() const {
        return rest.empty();
    }

    unsigned char tag() const {
        return octet(0);
    }

    /** Content of the next element. */
    std::string_view next() {
        std::size_t length = octet(1);
        std::size_t header = 2;
        if (length >= 0x80) {
            const std::size_t count = length & 0x7FU;
            length = 0;
            for (std::size_t i = 0; i < count; ++i) {
                length = length << 8U | octet(header++);
            }
        }
        if (length > rest.size() - header) {
            fail();
        }
        const std::string_view content = rest.substr(header, length);
        rest.remove_prefix(header + length);
        return content;
    }

    std::uint32_t nextNumber() {
        std::uint32_t number = 0;
        for (const char each : next()) {
            number = number << 8U | static_cast<unsigned char>(each);
        }
        return number;
    }

    [[noreturn]] static void fail() {
        throw std::runtime_error("an answer that is none");
    }

private:
    unsigned char octet(std::size_t position) const {
        if (position >= rest.size()) {
            fail();
        }
        return static_cast<unsigned char>(rest[position]);
    }

    std::string_view rest;
};

} // namespace

std::string integer(std::int32_t value) {
    // In as few octets as show the sign.
    std::string content(1, static_cast<char>(value & 0xFF));
    for (std::int32_t rest = value; rest > 127 || rest < -128;) {
        rest >>= 8;
        content.insert(0, 1, static_cast<char>(rest & 0xFF));
    }
    return encoded(kInteger, content);
}

std::string octets(std::string_view value) {
    return encoded(kOctets, value);
}

Message::Message(Pdu kind, const std::vector<Varbind> &varbinds, std::int32_t repetitions)
    : answered(kind == Pdu::GetBulk ? varbinds.size() * static_cast<std::size_t>(repetitions) : varbinds.size()) {
    const std::string id = encoded(kInteger, std::string(kIdLength, kIdFirst));
    const std::string tail = integer(0) + integer(repetitions) + varbindList(varbinds);
    const std::string head = integer(1) + octets(kCommunity);
    message = encoded(kSequence, head + encoded(static_cast<unsigned char>(kind), id + tail));
    idPosition = message.size() - tail.size() - kIdLength;
}

std::string_view Message::with(std::uint32_t id) {
    for (std::size_t i = 1; i < kIdLength; ++i) {
        message[idPosition + i] = static_cast<char>(id >> 8U * (kIdLength - 1 - i) & 0xFFU);
    }
    return message;
}

std::size_t Message::variables() const {
    return answered;
}

Answer parse(std::string_view message) {
    Decoder outer(message);
    Decoder whole(outer.next());
    whole.next(); // version
    whole.next(); // community
    if (whole.tag() != static_cast<unsigned char>(Pdu::Response)) {
        Decoder::fail();
    }
    Decoder pdu(whole.next());
    Answer answer;
    answer.id = pdu.nextNumber() & kIdBits;
    answer.error = static_cast<std::int32_t>(pdu.nextNumber());
    pdu.next(); // error-index
    for (Decoder list(pdu.next()); !list.isAtEnd();) {
        Decoder varbind(list.next());
        varbind.next(); // name
        if ((varbind.tag() & kNoValueMask) == 0) {
            ++answer.variables;
        }
    }
    if (!outer.isAtEnd() || !whole.isAtEnd() || !pdu.isAtEnd()) {
        Decoder::fail();
    }
    return answer;
}

} // namespace bench
