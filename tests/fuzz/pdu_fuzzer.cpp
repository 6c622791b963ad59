// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Requests to the agent with the module in it, from the parsed PDU to the encoded response.
 *
 * An input is a sequence of steps: an answer of the core library, a poll, a PDU in BER as it comes in a message, or a
 * request that is built of registered OIDs and well-formed values.
 */
#include <memory>

#include "finding.h"
#include "fuzzed_module.h"

namespace {

constexpr int kMostSteps = 16;
constexpr std::size_t kMostVariables = 8;
constexpr long kLongestResponse = 65507; // what a UDP packet holds

struct FreePdu {
    void operator()(netsnmp_pdu *pdu) const {
        snmp_free_pdu(pdu);
    }
};
using Pdu = std::unique_ptr<netsnmp_pdu, FreePdu>;

int gResponses = 0;

int countPacket(netsnmp_transport * /*transport*/, const void * /*packet*/, int size, void ** /*opaque*/,
                int * /*opaqueLength*/) {
    ++gResponses;
    return size;
}

int closeNothing(netsnmp_transport * /*transport*/) {
    return 0;
}

/** A session that takes responses as a socket does, so that they are encoded, and sends them nowhere. */
netsnmp_session *openSession() {
    auto *transport = SNMP_MALLOC_TYPEDEF(netsnmp_transport);
    transport->domain = netsnmpUDPDomain;
    transport->domain_length = static_cast<int>(netsnmpUDPDomain_len);
    transport->sock = -1;
    transport->msgMaxSize = kLongestResponse;
    transport->f_send = countPacket;
    transport->f_close = closeNothing;
    netsnmp_session session;
    snmp_sess_init(&session);
    session.version = SNMP_DEFAULT_VERSION;
    session.isAuthoritative = SNMP_SESS_AUTHORITATIVE;
    session.callback = handle_snmp_packet;
    netsnmp_session *opened = snmp_add(&session, transport, nullptr, nullptr);
    if (opened == nullptr) {
        fuzz::reportFinding("the session does not open");
    }
    return opened;
}

/** An empty PDU from somebody who may read and write everything. */
Pdu makePdu(int command, long version) {
    static const char kCommunity[] = "private";
    Pdu pdu(snmp_pdu_create(command));
    pdu->version = version;
    pdu->flags |= UCD_MSG_FLAG_ALWAYS_IN_VIEW;
    pdu->securityModel = version == SNMP_VERSION_1 ? SNMP_SEC_MODEL_SNMPv1 : SNMP_SEC_MODEL_SNMPv2c;
    pdu->securityLevel = SNMP_SEC_LEVEL_NOAUTH;
    pdu->community = static_cast<u_char *>(netsnmp_memdup(kCommunity, sizeof kCommunity - 1));
    pdu->community_len = sizeof kCommunity - 1;
    return pdu;
}

/** Hands a request to the agent as its session does. A request that is not answered at once never will be. */
void handle(netsnmp_session *session, Pdu pdu) {
    gResponses = 0;
    handle_snmp_packet(NETSNMP_CALLBACK_OP_RECEIVED_MESSAGE, session, static_cast<int>(pdu->reqid), pdu.get(), nullptr);
    netsnmp_check_outstanding_agent_requests();
    if (gResponses != 1) {
        fuzz::reportFinding("a request got " + std::to_string(gResponses) + " responses");
    }
}

/** Returns the rest of the input as a PDU; null if it is not one, or not one that an agent's session delivers. */
Pdu parsedPdu(fuzz::Input &input) {
    Pdu pdu = makePdu(SNMP_MSG_GET, SNMP_VERSION_2c);
    // The parser takes the octets for its own.
    std::string octets(input.rest());
    std::size_t length = octets.size();
    if (snmp_pdu_parse(pdu.get(), reinterpret_cast<u_char *>(octets.data()), &length) != 0) {
        return nullptr;
    }
    switch (pdu->command) {
    case SNMP_MSG_GET:
    case SNMP_MSG_GETNEXT:
    case SNMP_MSG_GETBULK:
    case SNMP_MSG_SET:
        return pdu;
    default:
        return nullptr;
    }
}

Pdu builtPdu(int command, const fuzz::Objects &objects, fuzz::Input &input) {
    const std::uint8_t form = input.octet();
    const bool isVersion1 = (form & 0x80U) != 0 && command != SNMP_MSG_GETBULK;
    Pdu pdu = makePdu(command, isVersion1 ? SNMP_VERSION_1 : SNMP_VERSION_2c);
    if (command == SNMP_MSG_GETBULK) {
        pdu->non_repeaters = static_cast<std::int32_t>(input.integer());
        pdu->max_repetitions = static_cast<std::int32_t>(input.integer());
    }
    for (std::size_t left = form % kMostVariables + 1; left > 0; --left) {
        const std::vector<oid> name = fuzz::variableName(objects, input);
        const requests::NewValue value =
            command == SNMP_MSG_SET ? fuzz::variableValue(input) : requests::NewValue{ASN_NULL, ""};
        if (snmp_pdu_add_variable(pdu.get(), name.data(), name.size(), value.type, value.content.data(),
                                  value.content.size()) == nullptr) {
            fuzz::reportFinding("a variable of type " + std::to_string(value.type) + " is refused");
        }
    }
    return pdu;
}

void takeStep(netsnmp_session *session, const fuzz::Objects &objects, fuzz::Input &input) {
    static constexpr int kCommands[] = {SNMP_MSG_GET, SNMP_MSG_SET, SNMP_MSG_GETNEXT, SNMP_MSG_GETBULK};
    const std::size_t step = input.choice(std::size(kCommands) + 3);
    switch (step) {
    case std::size(kCommands):
        fuzz::scriptAnswer(input);
        break;
    case std::size(kCommands) + 1:
        fuzz::poll();
        break;
    case std::size(kCommands) + 2:
        if (Pdu pdu = parsedPdu(input)) {
            handle(session, std::move(pdu));
        }
        break;
    default:
        handle(session, builtPdu(kCommands[step], objects, input));
        break;
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size);

int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    static const fuzz::Objects &objects = fuzz::startModule();
    static netsnmp_session *const session = openSession();
    fuzz::Input input(data, size);
    for (int step = 0; step < kMostSteps && !input.isEmpty(); ++step) {
        takeStep(session, objects, input);
    }
    fuzz::endInput();
    return 0;
}
