// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * OIDs of the objects as registered: an array `oid_<symbol>` for each scalar and each table of objects.def.
 */
#ifndef QUARNSNMP_OIDS_H
#define QUARNSNMP_OIDS_H

#include <initializer_list>

#include "net_snmp.h"

#define CAMERA_SCALAR(symbol, name, numbers, access, syntax)                                                           \
    extern oid oid_##symbol[std::initializer_list<oid>{numbers}.size()];
#define CAMERA_TABLE(symbol, name, numbers) extern oid oid_##symbol[std::initializer_list<oid>{numbers}.size()];
#include "objects.def"

#endif
