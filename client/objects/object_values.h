// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Values of objects: those to write, and checks of those read.
 */
#ifndef CLIENT_OBJECTS_OBJECT_VALUES_H
#define CLIENT_OBJECTS_OBJECT_VALUES_H

#include <cstdint>
#include <string>

#include "object_table.h"
#include "varbind.h"

namespace ptz {

/** A value to write. */
struct Assignment {
    Instance instance;
    snmp::Varbind value; ///< with the OID of the instance
};

/** Makes an assignment of an INTEGER. */
Assignment assignNumber(const Instance &instance, std::int64_t number);

/** Makes an assignment of an OCTET STRING. */
Assignment assignOctets(const Instance &instance, const std::string &octets);

/**
 * Makes an assignment from a text that a person typed: a number of 32 bits or octets in hexadecimal, as the object
 * requires.
 * @throws std::invalid_argument for an unknown or read-only object, and for a text of another kind
 */
Assignment parseAssignment(const Instance &instance, const std::string &text);

/**
 * Checks type and number of octets of a value.
 * @return the deviation, such as "OCTET STRING instead of INTEGER", or an empty text
 */
std::string validate(const Object &object, const snmp::Varbind &value);

/** Checks the type of a value in a notification, where a number may be an INTEGER or a Gauge32. @return as validate()
 */
std::string validateNotified(const Object &object, const snmp::Varbind &value);

/** Tests whether an object answers the last value written, whatever the camera has done with it. */
bool holdsLastCommand(const Object &object);

/**
 * Tests whether an answer has the value that was written. Cameras count missing octets as 0 and ignore further ones,
 * and answer the number of a preset as an octet.
 */
bool hasValueWritten(const snmp::Varbind &answered, const snmp::Varbind &written);

} // namespace ptz

#endif
