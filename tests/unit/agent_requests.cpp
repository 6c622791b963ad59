// SPDX-License-Identifier: Apache-2.0
#include "agent_requests.h"

#include <cstdlib>
#include <sstream>

namespace requests {

void startAgentLibrary() {
    static const bool started = [] {
        // Tests do not depend on the machine's configuration and MIB files.
        setenv("SNMPCONFPATH", "/nonexistent", 1);
        setenv("MIBS", "", 1);
        netsnmp_ds_set_boolean(NETSNMP_DS_LIBRARY_ID, NETSNMP_DS_LIB_DONT_PERSIST_STATE, 1);
        netsnmp_register_loghandler(NETSNMP_LOGHANDLER_NONE, LOG_DEBUG);
        init_agent("unit-tests");
        init_snmp("unit-tests");
        return true;
    }();
    (void)started;
}

std::vector<oid> parseOid(std::string_view dotted) {
    std::vector<oid> result;
    std::istringstream text{std::string(dotted)};
    for (std::string part; std::getline(text, part, '.');) {
        if (!part.empty() || !result.empty()) {
            result.push_back(std::stoul(part));
        }
    }
    return result;
}

Answer answerOf(const netsnmp_request_info &request) {
    const netsnmp_variable_list &varbind = *request.requestvb;
    Answer result;
    result.requestError = request.status;
    result.type = varbind.type;
    if (varbind.type == ASN_OCTET_STR) {
        result.octets.assign(reinterpret_cast<const char *>(varbind.val.string), varbind.val_len);
    } else if (varbind.val.integer != nullptr && varbind.val_len == sizeof *varbind.val.integer) {
        result.integer = *varbind.val.integer;
    }
    return result;
}

netsnmp_mib_handler *ownHandler(const netsnmp_handler_registration &registration) {
    netsnmp_mib_handler *handler = registration.handler;
    while (handler->next != nullptr) {
        handler = handler->next;
    }
    return handler;
}

NewValue NewValue::integer(long value) {
    return {ASN_INTEGER, std::string(reinterpret_cast<const char *>(&value), sizeof value)};
}

NewValue NewValue::text(std::string_view octets) {
    return {ASN_OCTET_STR, std::string(octets)};
}

Request::Request(std::string_view dotted) : Request(dotted, {ASN_NULL, ""}) {}

Request::Request(std::string_view dotted, const NewValue &value) : name_(parseOid(dotted)) {
    snmp_varlist_add_variable(&varbind_, name_.data(), name_.size(), value.type, value.content.data(),
                              value.content.size());
    request_.requestvb = varbind_;
    request_.agent_req_info = &agentRequest_;
}

Request::~Request() {
    netsnmp_free_request_data_sets(&request_);
    snmp_free_varbind(varbind_);
}

Answer Request::run(int mode) {
    netsnmp_subtree *subtree = netsnmp_subtree_find(name_.data(), name_.size(), nullptr, "");
    if (subtree == nullptr || subtree->reginfo == nullptr) {
        return answer(SNMP_ERR_NOSUCHNAME);
    }
    agentRequest_.mode = mode;
    request_.subtree = subtree;
    request_.processed = 0;
    return answer(netsnmp_call_handlers(subtree->reginfo, &agentRequest_, &request_));
}

Answer Request::run(Netsnmp_Node_Handler *handler, int mode) {
    agentRequest_.mode = mode;
    return answer(handler(nullptr, nullptr, &agentRequest_, &request_));
}

Answer Request::runOwnHandler(int mode) {
    netsnmp_subtree *subtree = netsnmp_subtree_find(name_.data(), name_.size(), nullptr, "");
    if (subtree == nullptr || subtree->reginfo == nullptr) {
        return answer(SNMP_ERR_NOSUCHNAME);
    }
    netsnmp_mib_handler *own = ownHandler(*subtree->reginfo);
    agentRequest_.mode = mode;
    request_.subtree = subtree;
    return answer(own->access_method(own, subtree->reginfo, &agentRequest_, &request_));
}

netsnmp_request_info *Request::info() {
    return &request_;
}

Answer Request::answer(int returned) const {
    Answer result = answerOf(request_);
    result.returned = returned;
    return result;
}

std::string registeredName(std::string_view dotted) {
    const std::vector<oid> name = parseOid(dotted);
    const netsnmp_subtree *subtree = netsnmp_subtree_find(name.data(), name.size(), nullptr, "");
    if (subtree == nullptr || subtree->reginfo == nullptr ||
        snmp_oid_compare(subtree->reginfo->rootoid, subtree->reginfo->rootoid_len, name.data(), name.size()) != 0) {
        return "";
    }
    return subtree->reginfo->handlerName;
}

Answer get(std::string_view dotted) {
    return Request(dotted).run(MODE_GET);
}

} // namespace requests
