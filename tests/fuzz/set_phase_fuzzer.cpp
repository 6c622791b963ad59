// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * The module's own handlers, called mode by mode as the agent calls them.
 *
 * The agent's helpers are left out, so that each handler meets what they would keep from it. What the agent itself
 * guarantees is kept: a phase follows only if the one before was not refused, and the value of an integer has the
 * size that the agent's parser gives it. Values lie in memory of exactly their size, and exceptions get through to the
 * fuzzer, which the frame would turn into genErr.
 *
 * An input is a sequence of requests, and of answers of the core library.
 */
#include <algorithm>
#include <cstdlib>
#include <deque>
#include <iterator>
#include <vector>

#include "finding.h"
#include "fuzzed_module.h"

namespace {

constexpr int kMostSteps = 16;
constexpr std::size_t kMostLists = 4;
constexpr std::size_t kMostVariables = 3;

/** Varbinds of one object that its handler gets in one call, as in the agent's request. */
class VariableList {
public:
    explicit VariableList(netsnmp_handler_registration *registration) : registration_(registration) {}
    VariableList(const VariableList &) = delete;
    VariableList &operator=(const VariableList &) = delete;
    ~VariableList() {
        for (Variable &variable : variables_) {
            netsnmp_free_request_data_sets(&variable.request);
            snmp_free_varbind(variable.varbind);
        }
    }

    void add(const std::vector<oid> &name, const requests::NewValue &value) {
        Variable &added = variables_.emplace_back();
        snmp_varlist_add_variable(&added.varbind, name.data(), name.size(), ASN_NULL, nullptr, 0);
        added.request.requestvb = added.varbind;
        added.request.agent_req_info = &agentRequest_;
        added.request.index = static_cast<int>(variables_.size());
        if (value.type != ASN_NULL) {
            setValue(*added.varbind, value);
        }
        if (variables_.size() > 1) {
            netsnmp_request_info &previous = variables_[variables_.size() - 2].request;
            previous.next = &added.request;
            added.request.prev = &previous;
        }
    }

    /** Notes the column of the last varbind, as the agent's table helper does. */
    void setColumn(unsigned int column) {
        auto *info = SNMP_MALLOC_TYPEDEF(netsnmp_table_request_info);
        info->colnum = column;
        netsnmp_request_add_list_data(&variables_.back().request,
                                      netsnmp_create_data_list(TABLE_HANDLER_NAME, info, std::free));
    }

    /** Calls the object's handler. @return true if it refuses, or marks a varbind */
    bool refuses(int mode) {
        agentRequest_.mode = mode;
        netsnmp_mib_handler *own = requests::ownHandler(*registration_);
        const auto handler = reinterpret_cast<Netsnmp_Node_Handler *>(own->myvoid);
        bool refused = handler(own, registration_, &agentRequest_, &variables_.front().request) != SNMP_ERR_NOERROR;
        for (const Variable &variable : variables_) {
            check(variable);
            refused = refused || variable.request.status != SNMP_ERR_NOERROR;
        }
        return refused;
    }

private:
    struct Variable {
        netsnmp_variable_list *varbind = nullptr;
        netsnmp_request_info request{};
    };

    static void setValue(netsnmp_variable_list &varbind, const requests::NewValue &value) {
        varbind.type = value.type;
        varbind.val.string = static_cast<u_char *>(std::malloc(value.content.size()));
        std::copy(value.content.begin(), value.content.end(), varbind.val.string);
        varbind.val_len = value.content.size();
    }

    static void check(const Variable &variable) {
        if (variable.request.status < SNMP_ERR_NOERROR || variable.request.status > MAX_SNMP_ERR) {
            fuzz::reportFinding("an error that SNMP does not have: " + std::to_string(variable.request.status));
        }
    }

    netsnmp_handler_registration *registration_;
    netsnmp_agent_request_info agentRequest_{};
    std::deque<Variable> variables_;
};

using Lists = std::deque<VariableList>;

bool isTable(const netsnmp_handler_registration &registration) {
    return std::string_view(registration.handlerName).find("Table") != std::string_view::npos;
}

/** A value of the types and sizes that the agent hands over, or octets that claim to be of a type that it never does.
 */
requests::NewValue anyValue(fuzz::Input &input) {
    requests::NewValue value = fuzz::variableValue(input);
    if (value.type == ASN_NSAP) {
        value.type = static_cast<unsigned char>(ASN_PRIVATE | value.content.size());
    }
    return value;
}

/** Varbinds of one object, as the agent's helpers pass them on: one of a scalar, several of a table. */
void addList(Lists &lists, bool withValues, const fuzz::Objects &objects, fuzz::Input &input) {
    netsnmp_handler_registration *registration = objects.at(input.choice(objects.size()));
    VariableList &list = lists.emplace_back(registration);
    const std::vector<oid> root(registration->rootoid, registration->rootoid + registration->rootoid_len);
    std::size_t left = isTable(*registration) ? input.choice(kMostVariables) + 1 : 1;
    for (; left > 0; --left) {
        std::vector<oid> name = root;
        fuzz::appendSubIdentifiers(name, input);
        list.add(name, withValues ? anyValue(input) : requests::NewValue{ASN_NULL, ""});
        // A name may end before the column.
        if (isTable(*registration) && name.size() > root.size() + 1) {
            list.setColumn(static_cast<unsigned int>(name[root.size() + 1]));
        }
    }
}

Lists readLists(bool withValues, const fuzz::Objects &objects, fuzz::Input &input) {
    Lists lists;
    for (std::size_t left = input.choice(kMostLists) + 1; left > 0; --left) {
        addList(lists, withValues, objects, input);
    }
    return lists;
}

/** Calls every handler, also after a refusal. @return true after a refusal */
bool anyRefuses(Lists &lists, int mode) {
    bool refused = false;
    for (VariableList &list : lists) {
        refused = list.refuses(mode) || refused;
    }
    return refused;
}

/**
 * Runs the phases of a SET.
 * @param foreignRefusal  index of a phase that a varbind of another module refuses; beyond the last if there is none
 */
void set(Lists &lists, std::size_t foreignRefusal) {
    static constexpr struct {
        int mode;
        int afterRefusal;
    } kPhases[] = {
        {MODE_SET_RESERVE1, MODE_SET_FREE}, {MODE_SET_RESERVE2, MODE_SET_FREE}, {MODE_SET_ACTION, MODE_SET_UNDO}};
    for (std::size_t i = 0; i < std::size(kPhases); ++i) {
        if (anyRefuses(lists, kPhases[i].mode) || i == foreignRefusal) {
            anyRefuses(lists, kPhases[i].afterRefusal);
            return;
        }
    }
    anyRefuses(lists, MODE_SET_COMMIT);
}

void takeStep(const fuzz::Objects &objects, fuzz::Input &input) {
    constexpr int kFirstUnknownMode = MODE_SET_UNDO + 1;
    constexpr std::size_t kForeignRefusals = 6;
    static constexpr int kReads[] = {MODE_GET, MODE_GETNEXT};
    const std::size_t step = input.choice(8);
    if (step == 0) {
        fuzz::scriptAnswer(input);
    } else if (step <= std::size(kReads) + 1) {
        const int mode = step <= std::size(kReads) ? kReads[step - 1] : kFirstUnknownMode + input.octet();
        Lists lists = readLists(false, objects, input);
        anyRefuses(lists, mode);
    } else {
        const std::size_t foreignRefusal = input.choice(kForeignRefusals);
        Lists lists = readLists(true, objects, input);
        set(lists, foreignRefusal);
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size);

int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    static const fuzz::Objects &objects = fuzz::startModule();
    fuzz::Input input(data, size);
    for (int step = 0; step < kMostSteps && !input.isEmpty(); ++step) {
        takeStep(objects, input);
    }
    fuzz::endInput();
    return 0;
}
