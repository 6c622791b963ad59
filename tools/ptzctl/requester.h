// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Asking a camera, and what can come back.
 */
#ifndef PTZCTL_REQUESTER_H
#define PTZCTL_REQUESTER_H

#include <string>
#include <vector>

#include "variable.h"

namespace ptzctl {

enum class Request { Get, GetNext, Set };

/** An answer that came; whether it is what was asked for has not been looked at. */
struct Reply {
    long error = 0;      ///< error status of the protocol, 0 for none
    long errorIndex = 0; ///< the varbind that it is about, from 1; 0 for none
    std::vector<Variable> variables;
};

/** Whoever can be asked: a session with a camera, or what plays one. */
class Requester {
public:
    Requester() = default;
    Requester(const Requester &) = delete;
    Requester &operator=(const Requester &) = delete;
    virtual ~Requester() = default;

    /** Sends a request and waits for its answer. @throws Failure when none comes or it cannot be sent */
    virtual Reply exchange(Request request, const std::vector<Variable> &variables) = 0;
};

/** What an error status means and what to do next. */
struct Refusal {
    std::string name;   ///< such as "notWritable"
    std::string advice; ///< a clause without a full stop
};

Refusal refusalOf(long error);

/** What became of reading one object. */
struct Reading {
    Variable value;       ///< of a type that hasValue() when there is no problem
    std::string problem;  ///< empty when the value can be used
    bool missing = false; ///< whether the problem is that the camera does not have the object

    bool ok() const {
        return problem.empty();
    }
};

/**
 * Reads objects, as many in one request as it takes. One that the camera cannot read does not keep the others from
 * being read. Types and lengths are checked for the objects that have names.
 * @return one reading for each identifier, in their order
 * @throws Failure when no answer comes, or one that does not belong to the request
 */
std::vector<Reading> readAll(Requester &camera, const std::vector<std::string> &identifiers);

/** Reads one object. @throws Failure when it cannot be read, too */
Variable readOne(Requester &camera, const std::string &identifier);

/** Reads the rows of a column, at most 64. @param column identifier without the row @throws Failure */
std::vector<Reading> readColumn(Requester &camera, const std::string &column);

/** Writes objects in one request. @throws Failure with ExitCode::Refused when the camera refuses one, with its name */
void writeAll(Requester &camera, const std::vector<Variable> &values);

} // namespace ptzctl

#endif
