// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Requests to registered objects through the agent library's own structures and handler chains, phase by phase, as the
 * agent makes them.
 */
#ifndef QUARNSNMP_AGENT_REQUESTS_H
#define QUARNSNMP_AGENT_REQUESTS_H

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "net_snmp.h"

namespace requests {

/** Starts the agent's library once in a process: without a network, and without the machine's configuration. */
void startAgentLibrary();

/** Returns the sub-identifiers of a dotted text, with or without a leading dot. */
std::vector<oid> parseOid(std::string_view dotted);

/** Result of one mode of a handler. */
struct Answer {
    int returned = SNMP_ERR_NOERROR;     ///< what the handler chain returned
    int requestError = SNMP_ERR_NOERROR; ///< error set on the request itself
    unsigned char type = ASN_NULL;       ///< type of the varbind's value
    long integer = 0;                    ///< value of an integer type
    std::string octets;                  ///< value of an OCTET STRING
};

/** Returns the value of a varbind, and the error of its request; `returned` is left as it is. */
Answer answerOf(const netsnmp_request_info &request);

/** The last handler of an object's chain, which is the module's. */
netsnmp_mib_handler *ownHandler(const netsnmp_handler_registration &registration);

/** A value to SET. */
struct NewValue {
    unsigned char type;
    std::string content; ///< octets, or the value's bytes in memory

    static NewValue integer(long value);
    static NewValue text(std::string_view octets);
};

/** One varbind of a PDU, on its way through the modes. */
class Request {
public:
    /** A request without a value, as in a GET. */
    explicit Request(std::string_view dotted);
    Request(std::string_view dotted, const NewValue &value);
    ~Request();
    Request(const Request &) = delete;
    Request &operator=(const Request &) = delete;

    /** Calls the handlers of the object registered at or above the OID, in this mode. */
    Answer run(int mode);
    /** Calls one handler, without the agent's helpers before it. */
    Answer run(Netsnmp_Node_Handler *handler, int mode);
    /** Calls the object's own handler, the last of its chain: the agent's helpers before it hide some modes. */
    Answer runOwnHandler(int mode);

    netsnmp_request_info *info();

private:
    Answer answer(int returned) const;

    std::vector<oid> name_;
    netsnmp_variable_list *varbind_ = nullptr;
    netsnmp_agent_request_info agentRequest_{};
    netsnmp_request_info request_{};
};

/** Returns the name of the registration of exactly this OID, which has no instance; empty without one. */
std::string registeredName(std::string_view dotted);

/** GET of an instance. */
Answer get(std::string_view dotted);

} // namespace requests

#endif
