// SPDX-License-Identifier: Apache-2.0
/** @file Parser for the camera's responses. */
#ifndef QUARNSNMP_STANDIN_RESPONSE_H
#define QUARNSNMP_STANDIN_RESPONSE_H

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "zorva-core.h"

namespace standin {

/** Destination of one result of a call. */
using Output = std::variant<std::int32_t *, std::uint32_t *, std::uint8_t *, char **>;

/** Upper limit of the outputs of a call; no call reaches it. */
inline constexpr std::size_t kMaximumOutputs = 16;

/**
 * Parses the response `[status, result...]` and writes all outputs or none. A missing or surplus result, a result of
 * the wrong type and a result out of its output's range all invalidate the whole response.
 * @param outputs  `count` outputs, at most kMaximumOutputs, none of them null; texts are allocated with malloc()
 * @return the status in the response, kBadResponse or kNoMemory
 */
zorva_core_status readResponse(std::string_view response, const Output *outputs, std::size_t count);

/**
 * Parses the directory's response `[status, id...]` in the same way.
 * @param targetIds  output: the ids; replaces the previous content
 */
zorva_core_status readTargetIds(std::string_view response, std::vector<std::string> &targetIds);

} // namespace standin

#endif
