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
 * Reads objects in as few requests as possible. An object that the camera cannot read does not affect the others. Types
 * and lengths of known objects are checked.
 * @return one reading for each instance, in the same order
 */
std::vector<Reading> readAll(snmp::Requester &camera, const std::vector<Instance> &instances);

/** Reads one object. */
Reading read(snmp::Requester &camera, const Instance &instance);

/** Reads one object that the camera must have. @throws snmp::Failure with Cause::Refused for a reading with a problem
 */
Reading require(snmp::Requester &camera, const Instance &instance);

/** Reads the rows of a column, 64 at most. @param column OID without the row */
std::vector<Reading> readColumn(snmp::Requester &camera, const std::string &column);

/** Writes objects in one request. @throws snmp::Failure with Cause::Refused, which names the refused object */
void writeAll(snmp::Requester &camera, const std::vector<Assignment> &assignments);

} // namespace ptz

#endif
