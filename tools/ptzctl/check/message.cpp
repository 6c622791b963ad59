// SPDX-License-Identifier: Apache-2.0
#include "message.h"

#include <array>

#include "netsnmp_types.h"

namespace ptzctl::check {

bool isSecureMessage(const std::string &octets) {
    std::string copy = octets;
    std::size_t size = copy.size();
    u_char type = 0;
    u_char *at = asn_parse_sequence(reinterpret_cast<u_char *>(copy.data()), &size, &type,
                                    ASN_SEQUENCE | ASN_CONSTRUCTOR, "message");
    long version = 0;
    return at != nullptr && asn_parse_int(at, &size, &type, &version, sizeof version) != nullptr &&
           version == SNMP_VERSION_3;
}

std::optional<MessageHeader> headerOf(const std::string &octets) {
    std::string copy = octets; // the library's functions take no constant
    std::array<u_char, COMMUNITY_MAX_LEN> community{};
    std::size_t communitySize = community.size();
    std::size_t size = copy.size();
    long version = 0;
    u_char *const at =
        snmp_comstr_parse(reinterpret_cast<u_char *>(copy.data()), &size, community.data(), &communitySize, &version);
    const snmp::PduPointer pdu(snmp_pdu_create(0));
    if (at == nullptr || !pdu || snmp_pdu_parse(pdu.get(), at, &size) != 0) {
        return std::nullopt;
    }
    return MessageHeader{pdu->command, pdu->reqid};
}

} // namespace ptzctl::check
