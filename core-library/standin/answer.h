// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Reads answers into the outputs of a call.
 */
#ifndef QUARNSNMP_STANDIN_ANSWER_H
#define QUARNSNMP_STANDIN_ANSWER_H

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "zorva-core.h"

namespace standin {

/** Where one result of a call goes. */
using Output = std::variant<std::int32_t *, std::uint32_t *, std::uint8_t *, char **>;

/** More than any call has. */
inline constexpr std::size_t kMaximumOutputs = 16;

/**
 * Reads the answer `[status, result...]` of a call. Either all outputs are written or none: a result that is missing,
 * surplus, of another type or out of its output's range makes the whole answer kBadAnswer.
 * @param outputs  `count` outputs, at most kMaximumOutputs, none of them null; texts are allocated with malloc()
 * @return the answer's status, kBadAnswer or kNoMemory
 */
zorva_core_status readAnswer(std::string_view answer, const Output *outputs, std::size_t count);

/**
 * Reads the directory's answer `[status, id...]` in the same way.
 * @param targetIds  output: the ids, in place of what the list held
 */
zorva_core_status readTargetIds(std::string_view answer, std::vector<std::string> &targetIds);

} // namespace standin

#endif
