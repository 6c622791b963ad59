// SPDX-License-Identifier: Apache-2.0
#include "oids.h"

#define CAMERA_SCALAR(symbol, name, numbers, access, syntax) oid oid_##symbol[] = {numbers};
#define CAMERA_TABLE(symbol, name, numbers) oid oid_##symbol[] = {numbers};
#include "objects.def"
