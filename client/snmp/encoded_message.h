// SPDX-License-Identifier: Apache-2.0
/** @file SNMPv2c messages that are encoded once and sent many times, each time with another request-id. */
#ifndef CLIENT_SNMP_ENCODED_MESSAGE_H
#define CLIENT_SNMP_ENCODED_MESSAGE_H

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "varbind.h"

namespace snmp {

/** Community with write access of the agents that this project starts. */
inline constexpr const char *kWriteCommunity = "private";

/** An encoded request. */
class Message {
public:
    /** Sets the request-id. @param id  24 bits @return the octets to send, valid until the next call */
    std::string_view withId(std::uint32_t id);

    /** Returns the number of values in the response. */
    std::size_t responseValues() const {
        return responseValues_;
    }

private:
    friend Message getRequest(const std::vector<std::string> &oids, const std::string &community);
    friend Message getBulkRequest(const std::string &oid, std::size_t repetitions);
    friend Message setRequest(const Varbind &varbind);

    Message(int command, const std::vector<Varbind> &varbinds, std::size_t repetitions,
            const std::string &community = kWriteCommunity);

    std::string octets_;
    std::size_t idPosition_;
    std::size_t responseValues_;
};

/** Encodes a GET of one or more instances. @throws std::exception for a malformed OID, as the other two functions */
Message getRequest(const std::vector<std::string> &oids, const std::string &community = kWriteCommunity);

/** Encodes a GETBULK of the instances that follow an OID. @param repetitions  number of values to return */
Message getBulkRequest(const std::string &oid, std::size_t repetitions);

/** Encodes a SET. */
Message setRequest(const Varbind &varbind);

/** Content of a response. */
struct DecodedResponse {
    std::uint32_t id = 0;    ///< 24 bits, as in Message::withId()
    long error = 0;          ///< error-status
    std::size_t values = 0;  ///< varbinds without an exception such as noSuchObject
    unsigned long count = 0; ///< value of the last varbind, if it is a Counter32, Gauge32 or TimeTicks
};

/** Decodes a response. @throws std::runtime_error for a malformed one or another kind of message */
DecodedResponse parse(std::string_view message);

} // namespace snmp

#endif
