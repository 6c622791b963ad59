// SPDX-License-Identifier: Apache-2.0
#include "gpio_table_test.h"

#include <limits>

#include "handler_requests.h"
#include "snmp_utils.h"

const GpioTable kAlarmTable{
    "alarm",
    "alarmStatesTable",
    oids::registered::alarmStatesTable,
    InitAlarm,
    DeinitAlarm,
    {0, 1, 2, -1, 7, std::numeric_limits<std::int32_t>::min(), std::numeric_limits<std::int32_t>::max()},
    true,
    false};
const GpioTable kRelayTable{
    "relay", "relayStatesTable", oids::registered::relayStatesTable, InitRelay, DeinitRelay, {0, 1, 128, 255}, false,
    true};

namespace gpio {

std::string target(const GpioTable &table, int row) {
    return std::string(table.service) + "/" + std::to_string(row);
}

std::vector<std::string> targets(const GpioTable &table, int count) {
    std::vector<std::string> result;
    for (int row = 1; row <= count; ++row) {
        result.push_back(target(table, row));
    }
    return result;
}

std::string cell(const GpioTable &table, unsigned long column, unsigned long row) {
    return std::string(table.root) + ".1." + std::to_string(column) + "." + std::to_string(row);
}

std::string readFunction(const GpioTable &table) {
    return std::string("zorva_api_") + table.service + "_get_state_send";
}

std::string readCall(const GpioTable &table, int row) {
    return readFunction(table) + "(" + table.service + ", \"" + target(table, row) + "\", &)";
}

void script(const GpioTable &table, const std::vector<std::int64_t> &states) {
    for (const std::int64_t state : states) {
        scripted::core().once(readFunction(table), {0, {state}});
    }
}

void start(const GpioTable &table, int count) {
    scripted::core().targets(table.service, targets(table, count));
    ASSERT_TRUE(table.init(GetIpcCookie()));
    scripted::core().clearRecord();
}

} // namespace gpio

namespace {

class GpioTableTest : public ModuleTest, public testing::WithParamInterface<const GpioTable *> {
protected:
    void SetUp() override {
        openCore();
    }
    void TearDown() override {
        GetParam()->deinit();
    }

    static std::string cell(unsigned long column, unsigned long row) {
        return gpio::cell(*GetParam(), column, row);
    }
    static std::string readCall(int row) {
        return gpio::readCall(*GetParam(), row);
    }
    static LogLine returning(int row, std::int64_t state) {
        return {7, std::string("returning ") + GetParam()->service + " " + std::to_string(row - 1) + " state as " +
                       std::to_string(state)};
    }
    static std::string handler() {
        const std::string object = GetParam()->object;
        return "handle_" + object.substr(0, object.size() - std::string("Table").size());
    }
};

testing::Matcher<const Answer &> isGpio() {
    return isOctets("GPIO");
}

/** A GET of one cell. @return its answer, with what the handlers returned */
Answer getCell(const std::string &name) {
    Pdu pdu{{name}};
    const int returned = pdu.run(MODE_GET);
    Answer answer = pdu.answer(0);
    answer.returned = returned;
    return answer;
}

} // namespace

// The agent's helpers find the next cell, and the handler sees a GET of it. The leak check at the end of the program
// finds memory of a registration that was not freed.
TEST_P(GpioTableTest, AWalkFindsARowForEachTargetAndReadsEachStateOnce) {
    for (const int count : {1, 2, 6, 6, 6}) {
        gpio::start(*GetParam(), count);
        Calls calls;
        std::vector<LogLine> lines;
        for (int row = 1; row <= count; ++row) {
            gpio::script(*GetParam(), {row % 2});
            calls.push_back(readCall(row));
            lines.push_back(returning(row, row % 2));
        }
        const std::vector<requests::Cell> cells = requests::walk(GetParam()->root);
        ASSERT_EQ(cells.size(), static_cast<std::size_t>(3 * count));
        for (int i = 0; i < 3 * count; ++i) {
            const int column = i / count + 1;
            const int row = i % count + 1;
            const requests::Cell &found = cells[static_cast<std::size_t>(i)];
            EXPECT_EQ(found.name, cell(static_cast<unsigned long>(column), static_cast<unsigned long>(row)));
            EXPECT_EQ(found.answer.returned, SNMP_ERR_NOERROR);
            EXPECT_THAT(found.answer, column == 1 ? isGpio() : isInteger(column == 2 ? row - 1 : row % 2));
        }
        EXPECT_EQ(core().calls(), calls);
        EXPECT_EQ(core().logs(), lines);
        GetParam()->deinit();
        UnregisterAll();
        EXPECT_EQ(requests::registeredName(GetParam()->root), "");
        EXPECT_THAT(requests::walk(GetParam()->root), IsEmpty());
    }
}

TEST_P(GpioTableTest, AGetNextThatReachesTheHandlerIsLeftToTheDataSet) {
    gpio::start(*GetParam(), 2);
    Pdu pdu{{cell(3, 1)}};
    pdu.cell(0, 3);
    EXPECT_EQ(pdu.runOwnHandler(MODE_GETNEXT), SNMP_ERR_NOERROR);
    EXPECT_EQ(pdu.answer(0).type, ASN_NULL);
    EXPECT_THAT(core().calls(), IsEmpty());
    EXPECT_THAT(core().logs(), IsEmpty());
}

TEST_P(GpioTableTest, TheThirdColumnIsReadAtEachGet) {
    gpio::start(*GetParam(), 6);
    for (int row = 1; row <= 6; ++row) {
        for (const std::int64_t state : GetParam()->states) {
            core().clearRecord();
            gpio::script(*GetParam(), {state});
            const Answer answer = getCell(cell(3, static_cast<unsigned long>(row)));
            EXPECT_EQ(answer.returned, SNMP_ERR_NOERROR);
            EXPECT_THAT(answer, isInteger(state));
            EXPECT_THAT(core().calls(), ElementsAre(readCall(row)));
            EXPECT_THAT(core().logs(), ElementsAre(returning(row, state)));
        }
    }
}

TEST_P(GpioTableTest, OneRequestReadsSeveralCells) {
    gpio::start(*GetParam(), 2);
    gpio::script(*GetParam(), {1, 0});
    Pdu pdu;
    for (const std::string &name : {cell(1, 2), cell(3, 2), cell(2, 2), cell(3, 1), cell(1, 1)}) {
        pdu.add({name});
    }
    EXPECT_EQ(pdu.run(MODE_GET), SNMP_ERR_NOERROR);
    EXPECT_THAT(pdu.answer(0), isGpio());
    EXPECT_THAT(pdu.answer(1), isInteger(1));
    EXPECT_THAT(pdu.answer(2), isInteger(1));
    EXPECT_THAT(pdu.answer(3), isInteger(0));
    EXPECT_THAT(pdu.answer(4), isGpio());
    EXPECT_THAT(core().calls(), ElementsAre(readCall(2), readCall(1)));
    EXPECT_THAT(core().logs(), ElementsAre(returning(2, 1), returning(1, 0)));
}

TEST_P(GpioTableTest, AFailedReadIsAnErrorAndEndsTheRequest) {
    gpio::start(*GetParam(), 2);
    core().once(gpio::readFunction(*GetParam()), {0, {std::int64_t{1}}});
    core().once(gpio::readFunction(*GetParam()), {17, {}});
    Pdu pdu;
    for (const std::string &name : {cell(3, 1), cell(3, 2), cell(3, 1)}) {
        pdu.add({name});
    }
    EXPECT_EQ(pdu.run(MODE_GET), SNMP_ERR_GENERR);
    EXPECT_THAT(core().calls(), ElementsAre(readCall(1), readCall(2)));
    EXPECT_THAT(core().logs(), ElementsAre(returning(1, 1)));
}

TEST_P(GpioTableTest, RowsThatDoNotExistReachNoTarget) {
    gpio::start(*GetParam(), 2);
    for (const unsigned long row : {0UL, 3UL, 4UL, 2147483647UL, 2147483648UL, 4294967295UL}) {
        const Answer answer = getCell(cell(3, row));
        EXPECT_TRUE(answer.returned == SNMP_ERR_GENERR || answer.type == SNMP_NOSUCHINSTANCE) << row;
        EXPECT_NE(answer.type, ASN_INTEGER) << row;
        if (row == 3) {
            EXPECT_EQ(answer.returned, SNMP_ERR_GENERR);
        }
        for (const unsigned long column : {1UL, 2UL}) {
            EXPECT_EQ(getCell(cell(column, row)).type, SNMP_NOSUCHINSTANCE) << column << " " << row;
        }
    }
    EXPECT_THAT(core().calls(), IsEmpty());
    EXPECT_THAT(core().logs(), IsEmpty());
}

TEST_P(GpioTableTest, ColumnsThatDoNotExistAreNotAnswered) {
    gpio::start(*GetParam(), 2);
    for (const unsigned long column : {0UL, 4UL, 7UL, 4294967295UL}) {
        EXPECT_THAT(getCell(cell(column, 1)).type, AnyOf(SNMP_NOSUCHOBJECT, SNMP_NOSUCHINSTANCE)) << column;
    }
    EXPECT_THAT(core().calls(), IsEmpty());
}

TEST_P(GpioTableTest, AnUnknownColumnThatReachesTheHandlerIsLogged) {
    gpio::start(*GetParam(), 2);
    core().answer(gpio::readFunction(*GetParam()), {std::int64_t{1}});
    for (const unsigned int column : {4U, 7U}) {
        core().clearRecord();
        Pdu pdu{{cell(column, 1)}};
        pdu.cell(0, column);
        pdu.add({cell(3, 2)});
        pdu.cell(1, 3);
        EXPECT_EQ(pdu.runOwnHandler(MODE_GET), SNMP_ERR_NOERROR);
        const LogLine unknown{3, handler() + ": unknown colnum (" + std::to_string(column) + ")"};
        EXPECT_EQ(pdu.answer(0).type, ASN_NULL);
        if (GetParam()->stopsAtUnknownColumn) {
            EXPECT_THAT(core().logs(), ElementsAre(unknown));
            EXPECT_EQ(pdu.answer(1).type, ASN_NULL);
        } else {
            EXPECT_THAT(core().logs(), ElementsAre(unknown, returning(2, 1)));
            EXPECT_THAT(pdu.answer(1), isInteger(1));
        }
    }
}

TEST_P(GpioTableTest, AnOidWithoutARowIsNoCell) {
    gpio::start(*GetParam(), 2);
    for (const std::string &name : {std::string(GetParam()->root), std::string(GetParam()->root) + ".1",
                                    std::string(GetParam()->root) + ".1.3"}) {
        const Answer answer = getCell(name);
        EXPECT_NE(answer.type, ASN_INTEGER) << name;
        EXPECT_NE(answer.type, ASN_OCTET_STR) << name;
    }
    EXPECT_THAT(core().calls(), IsEmpty());
}

TEST_P(GpioTableTest, TheReadOnlyColumnsCannotBeSet) {
    gpio::start(*GetParam(), 2);
    for (unsigned long column = 1; column <= (GetParam()->writable ? 2 : 3); ++column) {
        Pdu pdu{{cell(column, 1), NewValue::integer(9)}};
        EXPECT_EQ(pdu.set(), SNMP_ERR_NOTWRITABLE) << column;
    }
    Pdu pdu{{cell(1, 1), NewValue::text("mine")}};
    EXPECT_NE(pdu.set(), SNMP_ERR_NOERROR);
    EXPECT_THAT(getCell(cell(1, 1)), isGpio());
    EXPECT_THAT(getCell(cell(2, 1)), isInteger(0));
    EXPECT_THAT(core().calls(), IsEmpty());
}

TEST_P(GpioTableTest, AStartAgainServesTheNewTargetsOnly) {
    gpio::start(*GetParam(), 6);
    GetParam()->deinit();
    UnregisterAll();
    gpio::start(*GetParam(), 2);
    gpio::script(*GetParam(), {0, 1});
    EXPECT_EQ(requests::walk(GetParam()->root).size(), 6U);
    EXPECT_THAT(core().calls(), ElementsAre(readCall(1), readCall(2)));
    EXPECT_EQ(getCell(cell(3, 3)).returned, SNMP_ERR_GENERR);
}

INSTANTIATE_TEST_SUITE_P(Tables, GpioTableTest, testing::Values(&kAlarmTable, &kRelayTable),
                         [](const auto &table) { return std::string(table.param->service); });
