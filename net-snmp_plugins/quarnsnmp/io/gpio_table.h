// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * The vendor's tables of alarm inputs and relay outputs: a row for each target of the service, counted from 1, whose
 * columns are the text "GPIO", the number of the input or output counted from 0, and its state.
 */
#ifndef QUARNSNMP_GPIO_TABLE_H
#define QUARNSNMP_GPIO_TABLE_H

#include <string>
#include <vector>

#include "snmp_utils.h"

namespace gpio {

/** Columns of the tables. */
enum Column : unsigned int { kKind = 1, kNumber = 2, kState = 3 };

/** How the tables differ. */
struct Table {
    const char *dataSetName;
    const char *registrationName;
    Netsnmp_Node_Handler *handler;
    oid *identifier;
    std::size_t identifierLength;
    int modes;          ///< HANDLER_CAN_RONLY or HANDLER_CAN_RWRITE
    bool stateWritable; ///< whether managers may write the state
};

/** Builds a table with a row for each target and registers it. A failure is logged. */
void RegisterTable(const Table &table, std::size_t rows);

/** Whether a row, as GetRowAndColFromRequest() tells it, has a target. Rows that do not exist reach the handlers too.
 */
bool HasTarget(int row, const std::vector<std::string> &targets);

} // namespace gpio

#endif
