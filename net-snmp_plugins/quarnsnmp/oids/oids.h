/**
 * @file
 * Object identifiers, `oid_<objectName>` each. They are stored as they are registered: those of the vendor scalars end
 * in 0, and the agent appends the instance 0 once more.
 */
#ifndef QUARNSNMP_OIDS_H
#define QUARNSNMP_OIDS_H

#include "net_snmp.h"

// Vendor objects: identity of the camera
extern oid oid_modelNo[11];
extern oid oid_modelName[11];
extern oid oid_serialNo[11];
extern oid oid_fwVersion[11];
extern oid oid_swVersion[11];
extern oid oid_hwVersion[11];

#endif
