// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * All services and request calls of the interface, for tests that script them all.
 */
#ifndef QUARNSNMP_EVERY_CALL_H
#define QUARNSNMP_EVERY_CALL_H

#include "scripted_core.h"

namespace scripted {

struct Call {
    std::string function;
    std::vector<Value> outputs; ///< a value for each output: 0, or "text"
};

/** The calls, in the order of the interface's table. */
const std::vector<Call> &everyCall();

/** The services, in the order of the interface's table. */
const std::vector<std::string> &everyService();

} // namespace scripted

#endif
