// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * The objects by their names.
 */
#ifndef PTZCTL_OBJECTS_H
#define PTZCTL_OBJECTS_H

#include <string>
#include <vector>

#include "variable.h"

namespace ptzctl {

/** What an object holds, as a GET answers it. */
enum class Syntax { Integer, Gauge, Text, Octets };

/** One object, or the first row of a column. */
struct Object {
    const char *name;
    const char *identifier; ///< with its instance, without a leading dot
    bool writable;
    Syntax syntax;
    std::size_t size;     ///< of Octets; else 0
    bool writtenAsNumber; ///< whether a SET takes an INTEGER although a GET answers octets
};

/** All objects, in the order of their identifiers. */
const std::vector<Object> &objects();

/** The object of a name. @throws std::invalid_argument when there is none */
const Object &objectOf(const std::string &name);

/**
 * The identifier that a name stands for: an object's, another row's when a number follows the name of a column
 * ("relayStatesTable.3.2"), or the dotted identifier that the name is itself.
 * @throws std::invalid_argument when it is none of these
 */
std::string identifierOf(const std::string &name);

/** The object that an identifier belongs to, other rows of a column included; null when there is none. */
const Object *objectAt(const std::string &identifier);

/** What to call an identifier: the name of its object, with the row where it is not the first, or itself. */
std::string nameOf(const std::string &identifier);

/**
 * What to write to an object of a name, as identifierOf() takes it.
 * @param text  a number, or octets in hexadecimal
 * @throws std::invalid_argument when nothing, or nothing of this kind, can be written there
 */
Variable valueNamed(const std::string &name, const std::string &text);

/**
 * Why a value is none of the object: another type or another number of octets.
 * @return empty when it is one
 */
std::string whyNotOf(const Object &object, const Variable &value);

} // namespace ptzctl

#endif
