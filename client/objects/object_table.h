// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Objects of a camera by name and by OID, made from the module's list.
 */
#ifndef CLIENT_OBJECTS_OBJECT_TABLE_H
#define CLIENT_OBJECTS_OBJECT_TABLE_H

#include <cstdint>
#include <string>
#include <vector>

namespace ptz {

enum class Access { ReadOnly, ReadWrite };

/** Type of a value. */
enum class Kind { Integer, Gauge32, Text, Octets };

/** Type and limits of the answer to a GET. */
struct Syntax {
    Kind kind;
    std::int64_t lowest; ///< of a number, or of the count of octets
    std::int64_t highest;
    bool setAsInteger; ///< a SET takes an INTEGER although a GET answers octets
};

/** A scalar, or a column of a table. */
struct Object {
    const char *name;    ///< as in docs/objects.md, such as "positionPan" or "relayStatesTable.3"
    const char *mibName; ///< as in the MIB modules, such as "positionPan" or "relayStatesState"
    const char *oid;     ///< of the instance; of a column without the row
    bool isColumn;
    Access access;
    Syntax syntax;
};

/** Returns all objects in the order of their OIDs. */
const std::vector<Object> &objects();

/** An OID to read or write, with the object that it belongs to. */
struct Instance {
    std::string oid;                ///< with a leading dot
    std::string name;               ///< of the object, with the row of a column; of an unknown one the OID, without dot
    const Object *object = nullptr; ///< null for an unknown OID
};

/** Resolves an OID. Any OID is valid. */
Instance instanceAt(const std::string &oid);

/**
 * Resolves a name that a person typed: that of a scalar, that of a column with or without a row
 * ("relayStatesTable.3.2", "relayStatesTable.3" for the first one), or an OID.
 * @throws std::invalid_argument for an unknown name and for a malformed OID
 */
Instance instanceNamed(const std::string &name);

} // namespace ptz

#endif
