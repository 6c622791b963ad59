// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Outcome of reading one object.
 */
#ifndef CLIENT_OBJECTS_READING_H
#define CLIENT_OBJECTS_READING_H

#include <string>

#include "object_table.h"
#include "varbind.h"

namespace ptz {

/** A value, or the reason why there is none. */
struct Reading {
    Instance instance;
    snmp::Varbind value;  ///< has a value unless there is a problem
    std::string problem;  ///< empty for a usable value
    bool missing = false; ///< the problem is that the camera does not have the object

    bool ok() const {
        return problem.empty();
    }
};

} // namespace ptz

#endif
