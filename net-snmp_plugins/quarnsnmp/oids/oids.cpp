#include "oids.h"

// clang-format off

// 1.3.6.1.4.1.99999.1.1: scalars of the vendor
oid oid_modelNo[]   = {1, 3, 6, 1, 4, 1, 99999, 1, 1, 1, 0};
oid oid_modelName[] = {1, 3, 6, 1, 4, 1, 99999, 1, 1, 2, 0};
oid oid_serialNo[]  = {1, 3, 6, 1, 4, 1, 99999, 1, 1, 3, 0};
oid oid_fwVersion[] = {1, 3, 6, 1, 4, 1, 99999, 1, 1, 4, 0};
oid oid_swVersion[] = {1, 3, 6, 1, 4, 1, 99999, 1, 1, 5, 0};
oid oid_hwVersion[] = {1, 3, 6, 1, 4, 1, 99999, 1, 1, 6, 0};
