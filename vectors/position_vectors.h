// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Test vectors of position commands, for clients in any language.
 */
#ifndef QUARNSNMP_POSITION_VECTORS_H
#define QUARNSNMP_POSITION_VECTORS_H

#include <nlohmann/json.hpp>

namespace vectors {

/** Returns commands, refused values and responses; see vectors/README.md. */
nlohmann::ordered_json positionVectors();

} // namespace vectors

#endif
