// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * The parts of which faults are made: changes of the model, and of the agent's behaviour.
 */
#ifndef QUARNSNMP_CHECK_FAULT_PARTS_H
#define QUARNSNMP_CHECK_FAULT_PARTS_H

#include <cstdint>
#include <functional>
#include <string>

#include "agent.h"
#include "faults.h"

namespace wrong {

/** Makes an agent wrong. */
using Install = std::function<void(Model &model, Behaviour &behaviour)>;

/** Tells whether a value belongs to those that a fault is about. */
using Accepts = std::function<bool(const snmp::Varbind &value)>;

/** Has no such object. */
Install absent(const char *name);

/** Cannot read an object: a GET is genErr, and a walk leaves it out. */
Install unreadable(const char *name);

/** Serves an object at the instance 7. */
Install elsewhere(const char *name);

/** Answers a GET of an object with a value. */
Install answers(const char *name, const snmp::Varbind &value);
Install answersBoth(const char *first, const snmp::Varbind &value, const char *second, const snmp::Varbind &other);

/** Accepts further values of an object without any effect. */
Install accepts(const char *name, const Accepts &isAccepted);

/** Refuses some values of an object with genErr. */
Install refuses(const char *name, const Accepts &isRefused);

/** Accepts values and does nothing. */
Install ignores(const char *name);

bool hasMode(const snmp::Varbind &value, ptz::Mode mode);
Accepts ofMode(ptz::Mode mode);
bool isStop(const snmp::Varbind &value);
bool isAny(const snmp::Varbind &value);

/** Changes responses. */
Install distorts(const std::function<void(const Request &request, Reply &reply)> &distort);

/** Changes what a GETNEXT of an OID answers. */
Install follows(const std::function<void(const std::string &after, snmp::Varbind &value)> &change);

/** Tells whether a request is a GETBULK with very many repetitions, which one rule sends. */
bool isUnusual(const Request &request);

/** Distorts the response to such a GETBULK. */
Install distortsUnusual(const std::function<void(Reply &reply)> &distort);

/** Makes a response an error with the varbinds of its request; the index counts from 1. */
void fail(const Request &request, Reply &reply, long error, long index);

/** Distorts the response to a GET or SET of one unknown object. */
Install distortsUnknown(Command command, const std::function<void(Reply &reply)> &distort);

snmp::Varbind gauge(std::int64_t value);

} // namespace wrong

#endif
