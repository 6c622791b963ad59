// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * The list of objects, to look up by name.
 */
#ifndef QUARNSNMP_LISTED_OBJECTS_H
#define QUARNSNMP_LISTED_OBJECTS_H

#include <map>
#include <string>

/** An object of objects.def. */
struct ListedObject {
    const char *oid;      ///< of the registration
    const char *instance; ///< null for a table
    bool isReadOnly;
    unsigned char type; ///< of the answer to a GET
};

/** Returns all scalars and tables by their names. */
const std::map<std::string, ListedObject> &listedObjects();

/** Returns an object of the list. @throws std::out_of_range for a name that is not in objects.def */
const ListedObject &listedObject(const std::string &name);

#endif
