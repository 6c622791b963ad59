// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * The vendor tables of alarm inputs and relay outputs. They have a row for each target of the service, counted from 1.
 * The columns are the text "GPIO", the number of the input or output, counted from 0, and its state.
 */
#ifndef QUARNSNMP_GPIO_TABLE_H
#define QUARNSNMP_GPIO_TABLE_H

#include <string>
#include <vector>

#include "snmp_utils.h"

namespace gpio {

/** Columns of the tables. */
enum Column : unsigned int { kKind = 1, kNumber = 2, kState = 3 };

/** Differences between the tables. */
struct Table {
    const char *dataSetName;
    const char *registrationName;
    Netsnmp_Node_Handler *handler;
    ::oid *oid;
    std::size_t oidLength;
    int modes;          ///< HANDLER_CAN_RONLY or HANDLER_CAN_RWRITE
    bool stateWritable; ///< managers may write the state
};

/** Creates a table with a row for each target and registers it. A failure is logged. */
void RegisterTable(const Table &table, std::size_t rows);

/** Returns true for a row of GetRowAndColFromRequest() that has a target. Handlers are called for missing rows too. */
bool HasTarget(int row, const std::vector<std::string> &targets);

} // namespace gpio

#endif
