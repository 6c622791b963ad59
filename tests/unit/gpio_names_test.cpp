// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Cells of the tables when MIB files give names to their OIDs, and when the agent's configuration selects other forms
 * of OIDs as text. The row does not depend on the text.
 */
#include <fstream>
#include <memory>
#include <regex>

#include <unistd.h>

#include "gpio_table_test.h"

namespace {

/** Names for both tables; their rows have names as well, which then stand in place of the index. */
const char *const kMib = R"(
GPIO-NAMES-MIB DEFINITIONS ::= BEGIN
IMPORTS OBJECT-TYPE FROM SNMPv2-SMI;

vendor OBJECT IDENTIFIER ::= { iso org(3) dod(6) internet(1) private(4) enterprises(1) 99999 }
products OBJECT IDENTIFIER ::= { vendor 1 }
inputsAndOutputs OBJECT IDENTIFIER ::= { products 3 }
)";

/** One of the tables: WORD stands for its name, and NUMBER for its number. */
const char *const kMibTable = R"(
WORDTable OBJECT-TYPE
    SYNTAX SEQUENCE OF RowOfWORD MAX-ACCESS not-accessible STATUS current DESCRIPTION "rows"
    ::= { inputsAndOutputs NUMBER }
WORDEntry OBJECT-TYPE
    SYNTAX RowOfWORD MAX-ACCESS not-accessible STATUS current DESCRIPTION "a row"
    INDEX { WORDNumber }
    ::= { WORDTable 1 }
RowOfWORD ::= SEQUENCE { WORDNumber INTEGER, WORDState INTEGER }
WORDNumber OBJECT-TYPE
    SYNTAX INTEGER { north(1), south(2) } MAX-ACCESS read-only STATUS current DESCRIPTION "number"
    ::= { WORDEntry 2 }
WORDState OBJECT-TYPE
    SYNTAX INTEGER MAX-ACCESS read-only STATUS current DESCRIPTION "state"
    ::= { WORDEntry 3 }
)";

std::string mibTable(const char *word, const char *number) {
    return std::regex_replace(std::regex_replace(kMibTable, std::regex("WORD"), word), std::regex("NUMBER"), number);
}

/** A MIB file that the agent library has read, until the end of the object's life. */
class LoadedMib {
public:
    LoadedMib() : path_(testing::TempDir() + "gpio-names-" + std::to_string(getpid()) + ".txt") {
        std::ofstream(path_) << kMib << mibTable("input", "1") << mibTable("output", "2") << "END\n";
        read_mib(path_.c_str());
    }
    ~LoadedMib() {
        netsnmp_unload_module("GPIO-NAMES-MIB");
        unlink(path_.c_str());
    }
    LoadedMib(const LoadedMib &) = delete;
    LoadedMib &operator=(const LoadedMib &) = delete;

private:
    std::string path_;
};

class OutputFormat {
public:
    explicit OutputFormat(int format)
        : before_(netsnmp_ds_get_int(NETSNMP_DS_LIBRARY_ID, NETSNMP_DS_LIB_OID_OUTPUT_FORMAT)) {
        set(format);
    }
    ~OutputFormat() {
        set(before_);
    }
    OutputFormat(const OutputFormat &) = delete;
    OutputFormat &operator=(const OutputFormat &) = delete;

private:
    static void set(int format) {
        netsnmp_ds_set_int(NETSNMP_DS_LIBRARY_ID, NETSNMP_DS_LIB_OID_OUTPUT_FORMAT, format);
    }
    int before_;
};

std::string asText(std::string_view dotted) {
    const std::vector<oid> name = requests::parseOid(dotted);
    char text[256];
    snprint_objid(text, sizeof text, name.data(), name.size());
    return text;
}

class GpioNamesTest : public ModuleTest, public testing::WithParamInterface<const GpioTable *> {
protected:
    void SetUp() override {
        openCore();
        gpio::start(*GetParam(), 2);
        core().answer(gpio::readFunction(*GetParam()), {std::int64_t{1}});
    }
    void TearDown() override {
        GetParam()->deinit();
    }

    static void expectBothRows() {
        for (const int row : {1, 2}) {
            core().clearRecord();
            Pdu pdu{{gpio::cell(*GetParam(), 3, static_cast<unsigned long>(row))}};
            EXPECT_EQ(pdu.run(MODE_GET), SNMP_ERR_NOERROR);
            EXPECT_EQ(pdu.answer(0).type, ASN_INTEGER);
            EXPECT_EQ(pdu.answer(0).integer, 1);
            EXPECT_THAT(core().calls(), ElementsAre(gpio::readCall(*GetParam(), row)));
        }
    }
};

} // namespace

TEST_P(GpioNamesTest, TheTextOfOidsDoesNotHideTheRow) {
    for (const bool named : {false, true}) {
        const std::unique_ptr<LoadedMib> mib = named ? std::make_unique<LoadedMib>() : nullptr;
        const std::string text = asText(gpio::cell(*GetParam(), 3, 2));
        ASSERT_EQ(text.rfind("State.south") != std::string::npos, named) << text;
        expectBothRows();
        for (const int format : {NETSNMP_OID_OUTPUT_SUFFIX, NETSNMP_OID_OUTPUT_MODULE, NETSNMP_OID_OUTPUT_FULL,
                                 NETSNMP_OID_OUTPUT_NUMERIC, NETSNMP_OID_OUTPUT_UCD, NETSNMP_OID_OUTPUT_NONE}) {
            SCOPED_TRACE(format);
            const OutputFormat chosen(format);
            expectBothRows();
            EXPECT_EQ(netsnmp_ds_get_int(NETSNMP_DS_LIBRARY_ID, NETSNMP_DS_LIB_OID_OUTPUT_FORMAT), format);
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Tables, GpioNamesTest, testing::Values(&kAlarmTable, &kRelayTable),
                         [](const auto &table) { return std::string(table.param->service); });
