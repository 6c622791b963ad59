// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Headers of messages, for those that the SNMP library drops.
 */
#ifndef PTZCTL_CHECK_MESSAGE_H
#define PTZCTL_CHECK_MESSAGE_H

#include <optional>
#include <string>

namespace ptzctl::check {

/** Header of an SNMPv2c message. */
struct MessageHeader {
    int command;  ///< tag of the PDU
    long request; ///< request ID
};

inline constexpr int kResponseTag = 0xA2;

/** Tests for a message of SNMPv3, whose header says nothing about the request. */
bool isSecureMessage(const std::string &octets);

/** Reads the header of an SNMPv2c message. @return nothing for a message that cannot be read as a whole */
std::optional<MessageHeader> headerOf(const std::string &octets);

} // namespace ptzctl::check

#endif
