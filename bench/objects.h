// SPDX-License-Identifier: Apache-2.0
/** @file Objects that are asked for, with their instances. */
#ifndef QUARNSNMP_BENCH_OBJECTS_H
#define QUARNSNMP_BENCH_OBJECTS_H

namespace bench {

/** Of the agent itself. */
inline constexpr const char *kSystemUpTime = "1.3.6.1.2.1.1.3.0";

/** Held by the module. */
inline constexpr const char *kModelName = "1.3.6.1.4.1.99999.1.1.2.0.0";
inline constexpr const char *kModuleType = "1.3.6.1.4.1.1206.4.2.6.1.3.1.6.0";
inline constexpr const char *kTrueNorthOffset = "1.3.6.1.4.1.1206.4.2.7.1.5.0";
inline constexpr const char *kPositionPan = "1.3.6.1.4.1.1206.4.2.7.4.1.0";

/** With one service call, without and with a log line at the usual level. */
inline constexpr const char *kTemperature = "1.3.6.1.4.1.99999.1.1.7.0.0";
inline constexpr const char *kPanLeftLimit = "1.3.6.1.4.1.1206.4.2.7.1.2.0";

/** State columns, to be followed by the number of a row. */
inline constexpr const char *kAlarmState = "1.3.6.1.4.1.99999.1.3.1.1.3";
inline constexpr const char *kRelayState = "1.3.6.1.4.1.99999.1.3.2.1.3";

} // namespace bench

#endif
