// SPDX-License-Identifier: Apache-2.0
#include "object_table.h"

#include <algorithm>
#include <limits>
#include <stdexcept>

#include "object_oids.h"
#include "oid_text.h"

namespace ptz {

namespace {

constexpr Access readOnly = Access::ReadOnly;
constexpr Access readWrite = Access::ReadWrite;

constexpr Syntax integer(std::int64_t lowest, std::int64_t highest) {
    return {Kind::Integer, lowest, highest, false};
}

constexpr Syntax integer32() {
    return integer(std::numeric_limits<std::int32_t>::min(), std::numeric_limits<std::int32_t>::max());
}

constexpr Syntax gauge32() {
    return {Kind::Gauge32, 0, std::numeric_limits<std::uint32_t>::max(), false};
}

constexpr Syntax text() {
    return {Kind::Text, 0, std::numeric_limits<std::uint8_t>::max(), false};
}

constexpr Syntax octets(std::int64_t size) {
    return {Kind::Octets, size, size, false};
}

constexpr Syntax presetNumber() {
    return {Kind::Octets, 1, 1, true};
}

/** Tests whether an OID is the instance of a scalar, or one of a column. */
bool holds(const Object &object, const std::string &oid) {
    return object.isColumn ? snmp::parentOf(oid) == object.oid : oid == object.oid;
}

std::string rowOf(const std::string &oid) {
    return oid.substr(oid.rfind('.'));
}

const Object *findNamed(const std::string &name) {
    const auto found =
        std::find_if(objects().begin(), objects().end(), [&](const Object &object) { return name == object.name; });
    return found == objects().end() ? nullptr : &*found;
}

} // namespace

const std::vector<Object> &objects() {
    static const std::vector<Object> all = {
#define CAMERA_SCALAR(symbol, name, numbers, access, syntax) {#name, #name, oids::name, false, access, syntax},
#define CAMERA_COLUMN(table, number, name, numbers, access, syntax)                                                    \
    {#table "." #number, #name, oids::name, true, access, syntax},
#include "objects.def"
    };
    return all;
}

Instance instanceAt(const std::string &oid) {
    const auto found =
        std::find_if(objects().begin(), objects().end(), [&](const Object &object) { return holds(object, oid); });
    if (found == objects().end()) {
        return {oid, snmp::withoutDot(oid), nullptr};
    }
    return {oid, found->name + (found->isColumn ? rowOf(oid) : ""), &*found};
}

Instance instanceNamed(const std::string &name) {
    const bool isOid = name.find_first_not_of("0123456789.") == std::string::npos;
    if (isOid) {
        return instanceAt(snmp::oidText(snmp::parseOid(name)));
    }
    if (const Object *const object = findNamed(name)) {
        return instanceAt(object->isColumn ? oids::row(object->oid, 1) : object->oid);
    }
    const Object *const column = findNamed(snmp::parentOf(name));
    if (column == nullptr || !column->isColumn) {
        throw std::invalid_argument("there is no object '" + name + "'");
    }
    return instanceAt(snmp::oidText(snmp::parseOid(column->oid + rowOf(name))));
}

} // namespace ptz
