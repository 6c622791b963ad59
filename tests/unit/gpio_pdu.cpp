// SPDX-License-Identifier: Apache-2.0
#include "gpio_pdu.h"

#include <cstdlib>

namespace requests {

Pdu::~Pdu() {
    for (Variable &variable : variables_) {
        netsnmp_free_request_data_sets(&variable.request);
        snmp_free_varbind(variable.varbind);
    }
    netsnmp_free_all_list_data(agentRequest_.agent_data);
}

Pdu::Pdu(std::initializer_list<Entry> entries) {
    for (const Entry &entry : entries) {
        add(entry);
    }
}

void Pdu::add(const Entry &entry) {
    const std::vector<oid> name = parseOid(entry.name);
    const NewValue &value = entry.value;
    Variable &added = variables_.emplace_back();
    snmp_varlist_add_variable(&added.varbind, name.data(), name.size(), value.type, value.content.data(),
                              value.content.size());
    added.request.requestvb = added.varbind;
    added.request.agent_req_info = &agentRequest_;
    added.request.index = static_cast<int>(variables_.size());
    if (variables_.size() > 1) {
        netsnmp_request_info &previous = variables_[variables_.size() - 2].request;
        previous.next = &added.request;
        added.request.prev = &previous;
    }
}

netsnmp_handler_registration *Pdu::prepare(int mode) {
    agentRequest_.mode = mode;
    const netsnmp_variable_list *first = variables_.front().varbind;
    netsnmp_subtree *subtree = netsnmp_subtree_find(first->name, first->name_length, nullptr, "");
    for (Variable &variable : variables_) {
        variable.request.processed = 0;
        variable.request.subtree = subtree;
    }
    return subtree != nullptr ? subtree->reginfo : nullptr;
}

int Pdu::run(int mode) {
    netsnmp_handler_registration *registration = prepare(mode);
    return registration != nullptr ? netsnmp_call_handlers(registration, &agentRequest_, &variables_.front().request)
                                   : SNMP_ERR_NOSUCHNAME;
}

int Pdu::runOwnHandler(int mode) {
    netsnmp_handler_registration *registration = prepare(mode);
    if (registration == nullptr) {
        return SNMP_ERR_NOSUCHNAME;
    }
    netsnmp_mib_handler *own = ownHandler(*registration);
    return own->access_method(own, registration, &agentRequest_, &variables_.front().request);
}

int Pdu::set() {
    for (const int phase : {MODE_SET_RESERVE1, MODE_SET_RESERVE2, MODE_SET_ACTION, MODE_SET_COMMIT}) {
        const int returned = run(phase);
        const int error = firstError() != SNMP_ERR_NOERROR ? firstError() : returned;
        if (error == SNMP_ERR_NOERROR) {
            continue;
        }
        if (phase != MODE_SET_COMMIT) {
            run(phase == MODE_SET_ACTION ? MODE_SET_UNDO : MODE_SET_FREE);
        }
        return error;
    }
    return SNMP_ERR_NOERROR;
}

int Pdu::firstError() const {
    for (const Variable &variable : variables_) {
        if (variable.request.status != SNMP_ERR_NOERROR) {
            return variable.request.status;
        }
    }
    return SNMP_ERR_NOERROR;
}

Answer Pdu::answer(std::size_t index) const {
    return answerOf(variables_.at(index).request);
}

std::string Pdu::name(std::size_t index) const {
    const netsnmp_variable_list &varbind = *variables_.at(index).varbind;
    std::string dotted;
    for (std::size_t i = 0; i < varbind.name_length; ++i) {
        dotted += "." + std::to_string(varbind.name[i]);
    }
    return dotted;
}

void Pdu::cell(std::size_t index, unsigned int column) {
    auto *info = static_cast<netsnmp_table_request_info *>(std::calloc(1, sizeof(netsnmp_table_request_info)));
    info->colnum = column;
    netsnmp_request_add_list_data(&variables_.at(index).request,
                                  netsnmp_create_data_list(TABLE_HANDLER_NAME, info, std::free));
}

std::vector<Cell> walk(const std::string &root) {
    std::vector<Cell> cells;
    std::string name = root;
    for (;;) {
        Pdu pdu{{name}};
        const int returned = pdu.run(MODE_GETNEXT);
        if (pdu.name(0) == name || pdu.name(0).rfind(root + ".", 0) != 0 || pdu.answer(0).type == ASN_NULL) {
            return cells;
        }
        name = pdu.name(0);
        cells.push_back({name, pdu.answer(0)});
        cells.back().answer.returned = returned;
    }
}

} // namespace requests
