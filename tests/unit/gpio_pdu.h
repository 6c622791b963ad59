// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Requests with several variables of one object or table, as the agent hands them over: in one list, phase by phase.
 */
#ifndef QUARNSNMP_GPIO_PDU_H
#define QUARNSNMP_GPIO_PDU_H

#include <deque>
#include <string>
#include <string_view>
#include <vector>

#include "agent_requests.h"

namespace requests {

class Pdu {
public:
    Pdu() = default;
    ~Pdu();
    Pdu(const Pdu &) = delete;
    Pdu &operator=(const Pdu &) = delete;

    /** Appends a variable without a value, as in a GET. */
    void add(std::string_view dotted);
    void add(std::string_view dotted, const NewValue &value);

    /** Calls all handlers of what the first variable belongs to. @return what the chain returned */
    int run(int mode);
    /** Calls the last handler of that chain only, which is the module's. */
    int runOwnHandler(int mode);
    /** Runs the phases of a SET as long as none is refused. @return the error that the manager gets */
    int set();

    /** A variable's answer; `returned` belongs to the whole list and is left out. */
    Answer answer(std::size_t index) const;
    /** Dotted name of a variable; a GETNEXT moves it on. */
    std::string name(std::size_t index) const;

    /** Gives a variable the cell that the agent's table helper would find. */
    void cell(std::size_t index, unsigned int column);

private:
    struct Variable {
        netsnmp_variable_list *varbind = nullptr;
        netsnmp_request_info request{};
    };

    /** Readies the list for a mode. @return the registration that the first variable belongs to */
    netsnmp_handler_registration *prepare(int mode);
    /** First error that is set on a variable. */
    int firstError() const;

    netsnmp_agent_request_info agentRequest_{};
    std::deque<Variable> variables_;
};

/** One answered cell of a walk. */
struct Cell {
    std::string name;
    Answer answer;
};

/** All that GETNEXT finds below an identifier. */
std::vector<Cell> walk(const std::string &root);

} // namespace requests

using requests::Pdu;

#endif
