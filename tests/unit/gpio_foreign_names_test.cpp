// SPDX-License-Identifier: Apache-2.0
// SETs of what lies in a table and is no cell of it, together with a cell.
#include "gpio_table_test.h"

namespace {

class GpioForeignNamesTest : public ModuleTest, public testing::WithParamInterface<const char *> {
protected:
    void SetUp() override {
        openCore();
        gpio::start(kRelayTable, 2);
    }
    void TearDown() override {
        DeinitRelay();
    }

    static std::string foreignName() {
        return std::string(kRelayTable.root) + GetParam();
    }

    /** SETs variables of these names. The two kinds of trouble are a read beyond a name, and a row that is not freed.
     */
    static int set(const std::vector<std::string> &names) {
        Pdu pdu;
        for (const std::string &name : names) {
            pdu.add(name, NewValue::integer(1));
        }
        return pdu.set();
    }
};

} // namespace

TEST_P(GpioForeignNamesTest, AreRefusedBeforeAndAfterACell) {
    const std::string cell = gpio::cell(kRelayTable, 3, 1);
    EXPECT_EQ(set({foreignName()}), SNMP_ERR_NOCREATION);
    EXPECT_EQ(set({foreignName(), cell}), SNMP_ERR_NOCREATION);
    EXPECT_EQ(set({cell, foreignName()}), SNMP_ERR_NOCREATION);
    EXPECT_THAT(core().calls(), IsEmpty()) << "nothing is switched";
}

// The table, its entry, other entries, a column without a row, and columns that the table does not have.
INSTANTIATE_TEST_SUITE_P(Names, GpioForeignNamesTest,
                         testing::Values("", ".1", ".0", ".2", ".1.3", ".2.3", ".1.0", ".2.3.1", ".1.0.1", ".1.4.1",
                                         ".1.4294967295.1"));
