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

#endif
