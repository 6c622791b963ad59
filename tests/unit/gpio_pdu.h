// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Requests with several varbinds of one object or table, as the agent hands them over: in one list, phase by phase.
 */
#ifndef QUARNSNMP_GPIO_PDU_H
#define QUARNSNMP_GPIO_PDU_H

#include <deque>
#include <initializer_list>
#include <string>
#include <vector>

#include "agent_requests.h"

namespace requests {

class Pdu {
public:
    /** A varbind, without a value as in a GET. */
    struct Entry {
        std::string name;
        NewValue value = {ASN_NULL, ""};
    };

    Pdu() = default;
    Pdu(std::initializer_list<Entry> entries);
    ~Pdu();
    Pdu(const Pdu &) = delete;
    Pdu &operator=(const Pdu &) = delete;

    void add(const Entry &entry);

    /** Calls all handlers of the registration of the first varbind. @return the chain's result */
    int run(int mode);
    /** Calls only the last handler of that chain, which is the module's. */
    int runOwnHandler(int mode);
    /** Runs the phases of a SET up to the first refusal. @return the error for the manager */
    int set();

    /** A varbind's answer; `returned` belongs to the whole list and is left out. */
    Answer answer(std::size_t index) const;
    /** Dotted name of a varbind; a GETNEXT moves it on. */
    std::string name(std::size_t index) const;

    /** Gives a varbind the cell that the agent's table helper would find. */
    void cell(std::size_t index, unsigned int column);

private:
    struct Variable {
        netsnmp_variable_list *varbind = nullptr;
        netsnmp_request_info request{};
    };

    /** Prepares the list for a mode. @return the registration of the first varbind */
    netsnmp_handler_registration *prepare(int mode);
    /** First error of a varbind. */
    int firstError() const;

    netsnmp_agent_request_info agentRequest_{};
    std::deque<Variable> variables_;
};

/** One answered cell of a walk. */
struct Cell {
    std::string name;
    Answer answer;
};

/** Cells that GETNEXT finds below an OID. */
std::vector<Cell> walk(const std::string &root);

} // namespace requests

using requests::Pdu;

#endif
