// SPDX-License-Identifier: Apache-2.0
#include "gpio_table.h"

#include <array>

#include "core_utils.h"

namespace gpio {

namespace {

constexpr std::array<char, 4> kKindText = {'G', 'P', 'I', 'O'};

/** Creates a data set with the columns and without rows. @return null without memory */
netsnmp_table_data_set *CreateDataSet(const Table &table) {
    netsnmp_table_data_set *dataSet = netsnmp_create_table_data_set(table.dataSetName);
    if (dataSet != nullptr) {
        netsnmp_table_dataset_add_index(dataSet, ASN_INTEGER);
        netsnmp_table_set_multi_add_default_row(dataSet, kKind, ASN_OCTET_STR, 0, nullptr, 0, kNumber, ASN_INTEGER, 0,
                                                nullptr, sizeof(int32_t), kState, ASN_INTEGER,
                                                table.stateWritable ? 1 : 0, nullptr, sizeof(int32_t), 0);
    }
    return dataSet;
}

/** Adds a row. @param number  of the input or output, from 0 @return false without memory */
bool AddRow(const Table &table, netsnmp_table_data_set *dataSet, int32_t number) {
    netsnmp_table_row *row = netsnmp_create_table_data_row();
    if (row == nullptr) {
        return false;
    }
    const int32_t index = number + 1;
    snmp_varlist_add_variable(&row->indexes, nullptr, 0, ASN_INTEGER, &index, sizeof index);
    netsnmp_set_row_column(row, kKind, ASN_OCTET_STR, kKindText.data(), kKindText.size());
    netsnmp_set_row_column(row, kNumber, ASN_INTEGER, &number, sizeof number);
    netsnmp_set_row_column(row, kState, ASN_INTEGER, &number, sizeof number);
    if (table.stateWritable) {
        netsnmp_mark_row_column_writable(row, kState, 1);
    }
    netsnmp_table_dataset_add_row(dataSet, row);
    return true;
}

} // namespace

void RegisterTable(const Table &table, std::size_t rows) {
    netsnmp_table_data_set *dataSet = CreateDataSet(table);
    bool complete = dataSet != nullptr;
    for (std::size_t i = 0; complete && i < rows; ++i) {
        complete = AddRow(table, dataSet, static_cast<int32_t>(i));
    }
    if (!complete || !registerTableDataSet(table.registrationName, table.handler, table.oid, table.oidLength,
                                           table.modes, dataSet)) {
        zorva_core_logging_log(GetLogCookie(), kLogError, "%s: Registration for %s OID not OK", "RegisterTable",
                               table.registrationName);
    }
}

bool HasTarget(int row, const std::vector<std::string> &targets) {
    return row >= 1 && static_cast<std::size_t>(row) <= targets.size();
}

} // namespace gpio
