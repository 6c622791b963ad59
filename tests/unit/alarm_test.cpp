// SPDX-License-Identifier: Apache-2.0
#include "gpio_table_test.h"
#include "handler_requests.h"
#include "snmp_utils.h"

namespace {

const char *const kInputStatus = oids::inputStatus;
const char *const kAlarmStatus = oids::alarmStatus;
const char *const kReadAlarm = "zorva_api_alarm_get_state_send";

const LogLine kEnter{7, "handle_inputStatus: Enter."};
const LogLine kExit{7, "handle_inputStatus: Exit."};

LogLine returning(int input, const char *state) {
    return {7, "returning alarm " + std::to_string(input) + " state as " + state};
}

class AlarmTest : public ModuleTest {
protected:
    void SetUp() override {
        openCore();
    }
    void TearDown() override {
        DeinitAlarm();
    }

    static void start(int inputs) {
        gpio::start(kAlarmTable, inputs);
    }
    static void states(const std::vector<std::int64_t> &inputs) {
        gpio::script(kAlarmTable, inputs);
    }
    static void expectInputs(unsigned int bits) {
        EXPECT_THAT(get(kInputStatus), isOctets(octets({bits})));
    }
    static std::vector<std::string> readCalls(int count) {
        std::vector<std::string> result;
        for (int row = 1; row <= count; ++row) {
            result.push_back(gpio::readCall(kAlarmTable, row));
        }
        return result;
    }
};

} // namespace

TEST_F(AlarmTest, EachInputHasItsBit) {
    start(4);
    for (unsigned int bits = 0; bits < 16; ++bits) {
        core().clearRecord();
        states({bits & 1U, (bits >> 1U) & 1U, (bits >> 2U) & 1U, (bits >> 3U) & 1U});
        expectInputs(bits);
        EXPECT_EQ(core().calls(), readCalls(4));
    }
}

TEST_F(AlarmTest, ReadingTheInputsIsLogged) {
    start(4);
    states({1, 0, 0, 1});
    expectInputs(0x09);
    EXPECT_THAT(core().logs(), ElementsAre(kEnter, returning(0, "TRUE"), returning(1, "FALSE"), returning(2, "FALSE"),
                                           returning(3, "TRUE"), kExit));
}

TEST_F(AlarmTest, OfSixInputsTheFirstFourAreRead) {
    start(6);
    states({1, 1, 1, 1});
    expectInputs(0x0F);
    EXPECT_EQ(core().calls(), readCalls(4));
}

TEST_F(AlarmTest, OnlyInputsThatExistAreRead) {
    for (const int inputs : {1, 2, 3}) {
        UnregisterAll();
        start(4);
        states({0, 0, 0, 0});
        expectInputs(0);
        DeinitAlarm();
        UnregisterAll();
        start(inputs);
        states(std::vector<std::int64_t>(static_cast<std::size_t>(inputs), 1));
        expectInputs((1U << static_cast<unsigned int>(inputs)) - 1);
        EXPECT_EQ(core().calls(), readCalls(inputs));
        DeinitAlarm();
    }
}

TEST_F(AlarmTest, TheLowestBitOfAStateCounts) {
    start(4);
    states({2, 3, -1, -2});
    expectInputs(0x06);
    states({-2147483648, 2147483647, 256, 257});
    expectInputs(0x0A);
    EXPECT_THAT(core().logs(), Contains(returning(2, "FALSE")));
}

TEST_F(AlarmTest, AFailedInputIsAnError) {
    start(4);
    for (int failing = 0; failing < 4; ++failing) {
        core().clearRecord();
        std::vector<LogLine> lines{kEnter};
        for (int input = 0; input < failing; ++input) {
            states({1});
            lines.push_back(returning(input, "TRUE"));
        }
        core().once(kReadAlarm, {17, {}});
        const Answer answer = get(kInputStatus);
        EXPECT_EQ(answer.returned, SNMP_ERR_GENERR);
        EXPECT_NE(answer.type, ASN_OCTET_STR);
        EXPECT_EQ(core().calls(), readCalls(failing + 1));
        EXPECT_EQ(core().logs(), lines);
    }
}

// What earlier requests read shows where the camera now has fewer inputs.
TEST_F(AlarmTest, InputsBeforeAFailedOneKeepTheirNewState) {
    start(4);
    states({0, 0, 0, 0});
    expectInputs(0);
    states({1, 1});
    core().once(kReadAlarm, {17, {}});
    EXPECT_EQ(get(kInputStatus).returned, SNMP_ERR_GENERR);
    DeinitAlarm();
    UnregisterAll();
    start(1);
    states({0});
    expectInputs(0x02);
}

TEST_F(AlarmTest, TheAlarmStatusIsAlwaysZero) {
    start(4);
    states({1, 1, 1, 1});
    expectInputs(0x0F);
    core().clearRecord();
    for (const int mode : Modes{MODE_GET, MODE_GETNEXT}) {
        core().clearRecord();
        EXPECT_THAT(Request(kAlarmStatus).runOwnHandler(mode), isOctets("\0"s));
        EXPECT_THAT(core().logs(),
                    ElementsAre(LogLine{7, "handle_alarmStatus: Enter."}, LogLine{7, "handle_alarmStatus: Exit."}));
        EXPECT_THAT(core().calls(), IsEmpty());
    }
    EXPECT_EQ(get(kAlarmStatus).octets, "\0"s);
    EXPECT_NE(get(oids::registered::alarmStatus).type, ASN_OCTET_STR) << "the stored identifier is no instance";
}

TEST_F(AlarmTest, NoObjectCanBeSet) {
    start(2);
    for (const char *instance : {kInputStatus, kAlarmStatus}) {
        EXPECT_EQ(Request(instance, NewValue::text("x")).run(MODE_SET_RESERVE1).requestError, SNMP_ERR_NOTWRITABLE);
    }
    for (const unsigned long column : {1UL, 2UL, 3UL}) {
        Pdu pdu;
        pdu.add(gpio::cell(kAlarmTable, column, 1), NewValue::integer(1));
        EXPECT_EQ(pdu.set(), SNMP_ERR_NOTWRITABLE) << column;
    }
    EXPECT_THAT(core().calls(), IsEmpty());
}

TEST_F(AlarmTest, TheTableRefusesAllModesButGet) {
    start(2);
    for (const int mode : modesExcept({MODE_GET, MODE_GETNEXT})) {
        core().clearRecord();
        Pdu pdu;
        pdu.add(gpio::cell(kAlarmTable, 3, 1), NewValue::integer(1));
        pdu.cell(0, 3);
        EXPECT_EQ(pdu.runOwnHandler(mode), SNMP_ERR_GENERR) << mode;
        EXPECT_THAT(core().logs(), ElementsAre(LogLine{3, "handle_alarmStates: Bad request"}));
        EXPECT_THAT(core().calls(), IsEmpty());
    }
}
