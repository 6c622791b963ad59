// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Reading and writing a camera's objects, with all checks of its answers. All functions throw snmp::Failure: with
 * Cause::NoAnswer without an answer, with Cause::BadResponse for an answer that does not belong to the request.
 */
#ifndef CLIENT_OBJECTS_CAMERA_REQUESTS_H
#define CLIENT_OBJECTS_CAMERA_REQUESTS_H

#include <string>
#include <vector>

#include "object_values.h"
#include "reading.h"
#include "request.h"

namespace ptz {

/**
 * Reads objects in as few requests as possible. An object that the camera cannot read does not affect the others, even
 * if the agent does not name it: such a request is halved until the object is alone. Types and lengths of known objects
 * are checked.
 * @return one reading for each instance, in the same order
 */
std::vector<Reading> readAll(snmp::Requester &camera, const std::vector<Instance> &instances);

/**
 * Reads objects in one request, which is sent once and awaited for a second at most. Throws nothing.
 * @return one reading for each instance, in the same order; all with a problem without an answer in time
 */
std::vector<Reading> readQuickly(snmp::Requester &camera, const std::vector<Instance> &instances);

/** Reads one object. */
Reading read(snmp::Requester &camera, const Instance &instance);

/** Reads one object that the camera must have. @throws snmp::Failure with Cause::Refused for a reading with a problem
 */
Reading require(snmp::Requester &camera, const Instance &instance);

/**
 * Reads the rows of a column, 64 at most; more are a failure with Cause::BadResponse. A row that the camera cannot read
 * does not affect the others of a column with consecutive numbers.
 * @param column  OID without the row
 */
std::vector<Reading> readColumn(snmp::Requester &camera, const std::string &column);

/** Way to send a write. Only one that can be repeated without harm may have several attempts. */
struct Delivery {
    bool readsBefore = true; ///< read the objects, by a request right ahead of the write; only with a single attempt
    int attempts = 1;        ///< number of times that the request is sent without an answer
};

/** Outcome of a write. */
struct Written {
    std::vector<Reading> before;   ///< in the order of the assignments; empty if not read
    std::vector<Reading> answered; ///< values in the response, in the order of the assignments
};

/**
 * Writes objects in one request.
 * @throws snmp::Failure with Cause::Refused, which names the refused object if the agent does
 */
Written writeAll(snmp::Requester &camera, const std::vector<Assignment> &assignments, const Delivery &delivery);

} // namespace ptz

#endif
