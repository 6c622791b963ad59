// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * The two vendor tables, with one row for each input or output: helpers of their tests, and their differences.
 */
#ifndef QUARNSNMP_GPIO_TABLE_TEST_H
#define QUARNSNMP_GPIO_TABLE_TEST_H

#include <string>
#include <vector>

#include "gpio_pdu.h"
#include "module_test.h"

/** Differences of the tables. */
struct GpioTable {
    const char *service; ///< also the word of the log lines and of the targets
    const char *object;  ///< name of the registration
    const char *root;
    bool (*init)(void *ipcCookie);
    void (*deinit)();
    std::vector<std::int64_t> states; ///< every kind that the service can report
    bool stopsAtUnknownColumn;        ///< and ignores the varbinds after one of it
    bool writable;
};

extern const GpioTable kAlarmTable;
extern const GpioTable kRelayTable;

namespace gpio {

/** Targets of the service, by name and number from 1. */
std::vector<std::string> targets(const GpioTable &table, int count);
std::string target(const GpioTable &table, int row);
/** Identifier of a cell. */
std::string cell(const GpioTable &table, unsigned long column, unsigned long row);
std::string readFunction(const GpioTable &table);
/** The call that reads a row's state, as the scripted core library records it. */
std::string readCall(const GpioTable &table, int row);
/** The next reads give these states, in turn. */
void script(const GpioTable &table, const std::vector<std::int64_t> &states);
/** Brings the feature up with so many targets, and forgets the calls and log lines of that. */
void start(const GpioTable &table, int count);

} // namespace gpio

/** Calls of the relay service as the scripted core library records them. */
namespace relays {

inline const char *const kGetState = "zorva_api_relay_get_state_send";
inline const char *const kGetConfiguration = "zorva_api_relay_get_configuration_send";
inline const char *const kSetConfiguration = "zorva_api_relay_set_configuration_send";
inline const char *const kSetState = "zorva_api_relay_set_state_send";

/** A call for a relay, counted from 1. */
inline std::string call(const char *function, int relay, const std::string &arguments) {
    return std::string(function) + "(relay, \"relay/" + std::to_string(relay) + "\", " + arguments + ")";
}
inline std::string readState(int relay) {
    return call(kGetState, relay, "&");
}
inline std::string readConfiguration(int relay) {
    return call(kGetConfiguration, relay, "&, &, &, &, &, &, &");
}
inline std::string configure(int relay) {
    return call(kSetConfiguration, relay, "1, 0, 1, 0, 1, 1, 1");
}
inline std::string switchTo(int relay, int state) {
    return call(kSetState, relay, std::to_string(state));
}

/** From now on all relays have a configuration with this first field, which is 0 until somebody sets the relay up. */
inline void configuration(std::int64_t first) {
    scripted::core().answer(kGetConfiguration, {first, std::int64_t{2}, std::int64_t{3}, std::int64_t{4},
                                                std::int64_t{5}, std::int64_t{6}, std::int64_t{7}});
}

} // namespace relays

#endif
