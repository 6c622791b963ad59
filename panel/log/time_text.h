// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Times as text.
 */
#ifndef QUARNSNMP_PANEL_TIME_TEXT_H
#define QUARNSNMP_PANEL_TIME_TEXT_H

#include <chrono>
#include <string>

namespace panel {

/** Writes a time in UTC with milliseconds, such as "2026-03-12T10:50:12.345Z". */
std::string timeText(std::chrono::system_clock::time_point time);

} // namespace panel

#endif
