// SPDX-License-Identifier: Apache-2.0
#include "listed_objects.h"

#include <string_view>

#include "net_snmp.h"
#include "object_oids.h"

namespace {

unsigned char typeOf(std::string_view syntax) {
    if (syntax.rfind("integer", 0) == 0) {
        return ASN_INTEGER;
    }
    return syntax == "gauge32()" ? ASN_UNSIGNED : ASN_OCTET_STR;
}

} // namespace

const std::map<std::string, ListedObject> &listedObjects() {
    static const std::map<std::string, ListedObject> objects = {
#define CAMERA_SCALAR(symbol, name, numbers, access, syntax)                                                           \
    {#name, {oids::registered::name, oids::name, std::string_view(#access) == "readOnly", typeOf(#syntax)}},
#define CAMERA_TABLE(symbol, name, numbers) {#name, {oids::registered::name, nullptr, true, ASN_NULL}},
#include "objects.def"
    };
    return objects;
}

const ListedObject &listedObject(const std::string &name) {
    return listedObjects().at(name);
}
