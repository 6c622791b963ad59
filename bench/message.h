// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * SNMPv2c messages, encoded once before a measurement and sent as they are, with another request-id each time.
 */
#ifndef QUARNSNMP_BENCH_MESSAGE_H
#define QUARNSNMP_BENCH_MESSAGE_H

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace bench {

/** Kinds of PDUs, as their tags. */
enum class Pdu : std::uint8_t { Get = 0xA0, GetNext = 0xA1, Response = 0xA2, Set = 0xA3, GetBulk = 0xA5, Trap = 0xA7 };

/** One variable to ask for, or to set. */
struct Varbind {
    std::string identifier; ///< dotted, without a leading dot
    std::string value = {}; ///< encoded, as integer() and octets() do; empty to ask
};

/** Encoded values. */
std::string integer(std::int32_t value);
std::string octets(std::string_view value);

/** A message to send. */
class Message {
public:
    /**
     * Encodes a message, from somebody who may read and write.
     * @param repetitions  of a GetBulk; its variables all repeat
     */
    Message(Pdu kind, const std::vector<Varbind> &varbinds, std::int32_t repetitions = 0);

    /** The octets to send, with a request-id. @param id of which 24 bits count */
    std::string_view with(std::uint32_t id);

    /** How many variables the answer has. */
    std::size_t variables() const;

private:
    std::string message;
    std::size_t idPosition = 0;
    std::size_t answered;
};

/** What an answer says. */
struct Answer {
    std::uint32_t id = 0; ///< the 24 bits of Message::with()
    std::int32_t error = 0;
    std::size_t variables = 0; ///< those that have a value
};

/** Takes an answer apart. @throws std::runtime_error when it is none, or has something after its end */
Answer parse(std::string_view message);

} // namespace bench

#endif
