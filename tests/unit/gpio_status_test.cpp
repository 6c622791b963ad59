// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * The bit maps: inputStatus of the first four alarm inputs, and outputStatus of the first two relays.
 */
#include "gpio_table_test.h"
#include "handler_requests.h"
#include "snmp_utils.h"

namespace {

struct BitMap : Row {
    const GpioTable *table;
    const char *instance;
    int bits;
    const char *end; ///< last word of the log
    bool logsStates;
    std::vector<LogLine> failure; ///< after the lines of the states before it
};

const std::vector<LogLine> kNoFailure;
const std::vector<LogLine> kFailure{logs::error("handle_outputStatus: MODE_SET_RESERVE2 fail")};
const BitMap kBitMaps[] = {
    row<BitMap>("inputStatus", &kAlarmTable, oids::inputStatus, 4, "Exit.", true, kNoFailure),
    row<BitMap>("outputStatus", &kRelayTable, oids::outputStatus, 2, "Done.", false, kFailure),
};

class GpioStatusTest : public ModuleTest, public testing::WithParamInterface<BitMap> {
protected:
    void SetUp() override {
        openCore();
    }
    void TearDown() override {
        GetParam().table->deinit();
    }

    static void start(int count) {
        GetParam().table->deinit();
        UnregisterAll();
        gpio::start(*GetParam().table, count);
    }
    static Calls readCalls(int count) {
        Calls result;
        for (int row = 1; row <= count; ++row) {
            result.push_back(gpio::readCall(*GetParam().table, row));
        }
        return result;
    }
    /** The line of the beginning, and those of the states. */
    static std::vector<LogLine> lines(const std::vector<std::int64_t> &states) {
        std::vector<LogLine> result{logs::debug("handle_" + GetParam().name + ": Enter.")};
        for (std::size_t i = 0; GetParam().logsStates && i < states.size(); ++i) {
            result.push_back(logs::debug("returning alarm " + std::to_string(i) + " state as " +
                                         (states[i] % 2 != 0 ? "TRUE" : "FALSE")));
        }
        return result;
    }
    /** Checks a GET of these states. */
    static void expectBits(const std::vector<std::int64_t> &states, unsigned int bits) {
        SCOPED_TRACE(bits);
        core().clearRecord();
        gpio::script(*GetParam().table, states);
        EXPECT_THAT(get(GetParam().instance), isOctets(octets({bits})));
        EXPECT_EQ(core().calls(), readCalls(static_cast<int>(states.size())));
        std::vector<LogLine> expected = lines(states);
        expected.push_back(logs::debug("handle_" + GetParam().name + ": " + GetParam().end));
        EXPECT_EQ(core().logs(), expected);
    }
};

INSTANTIATE_TEST_SUITE_P(Objects, GpioStatusTest, testing::ValuesIn(kBitMaps), nameOf<BitMap>);

} // namespace

TEST_P(GpioStatusTest, EachRowHasItsBit) {
    start(GetParam().bits);
    for (unsigned int bits = 0; bits < 1U << static_cast<unsigned int>(GetParam().bits); ++bits) {
        std::vector<std::int64_t> states;
        for (int row = 0; row < GetParam().bits; ++row) {
            states.push_back((bits >> static_cast<unsigned int>(row)) & 1U);
        }
        expectBits(states, bits);
    }
}

TEST_P(GpioStatusTest, TheFirstRowsAreRead) {
    for (int count = 1; count <= 6; ++count) {
        start(GetParam().bits);
        expectBits(std::vector<std::int64_t>(static_cast<std::size_t>(GetParam().bits), 0), 0);
        start(count);
        const int read = std::min(count, GetParam().bits);
        expectBits(std::vector<std::int64_t>(static_cast<std::size_t>(read), 1),
                   (1U << static_cast<unsigned int>(read)) - 1);
    }
}

TEST_P(GpioStatusTest, TheLowestBitOfAStateCounts) {
    start(GetParam().bits);
    if (GetParam().table == &kAlarmTable) {
        expectBits({2, 3, -1, -2}, 0x06);
        expectBits({-2147483648, 2147483647, 256, 257}, 0x0A);
    } else {
        expectBits({0xFE, 0xFF}, 0x02);
        expectBits({3, 128}, 0x01);
    }
}

TEST_P(GpioStatusTest, AFailedReadIsAnError) {
    start(GetParam().bits);
    for (int failing = 0; failing < GetParam().bits; ++failing) {
        const std::vector<std::int64_t> before(static_cast<std::size_t>(failing), 1);
        core().clearRecord();
        gpio::script(*GetParam().table, before);
        core().once(gpio::readFunction(*GetParam().table), {kRefused, {}});
        const Answer answer = get(GetParam().instance);
        EXPECT_EQ(answer.returned, SNMP_ERR_GENERR);
        EXPECT_NE(answer.type, ASN_OCTET_STR);
        EXPECT_EQ(core().calls(), readCalls(failing + 1));
        std::vector<LogLine> expected = lines(before);
        expected.insert(expected.end(), GetParam().failure.begin(), GetParam().failure.end());
        EXPECT_EQ(core().logs(), expected);
    }
    expectBits(std::vector<std::int64_t>(static_cast<std::size_t>(GetParam().bits), 0), 0);
}

class AlarmTest : public ModuleTest {
protected:
    void SetUp() override {
        openCore();
        gpio::start(kAlarmTable, 4);
    }
    void TearDown() override {
        DeinitAlarm();
    }
};

// The states of earlier requests show on a camera that now has fewer inputs.
TEST_F(AlarmTest, InputsBeforeAFailedOneKeepTheirNewState) {
    gpio::script(kAlarmTable, {0, 0, 0, 0, 1, 1});
    EXPECT_THAT(get(oids::inputStatus), isOctets(octets({0})));
    core().once(gpio::readFunction(kAlarmTable), {kRefused, {}});
    EXPECT_EQ(get(oids::inputStatus).returned, SNMP_ERR_GENERR);
    DeinitAlarm();
    UnregisterAll();
    gpio::start(kAlarmTable, 1);
    gpio::script(kAlarmTable, {0});
    EXPECT_THAT(get(oids::inputStatus), isOctets(octets({0x02})));
}

TEST_F(AlarmTest, TheAlarmStatusIsAlwaysZero) {
    gpio::script(kAlarmTable, {1, 1, 1, 1});
    EXPECT_THAT(get(oids::inputStatus), isOctets(octets({0x0F})));
    core().clearRecord();
    EXPECT_THAT(get(oids::alarmStatus), isOctets("\0"s));
    EXPECT_THAT(core().logs(),
                ElementsAre(logs::debug("handle_alarmStatus: Enter."), logs::debug("handle_alarmStatus: Exit.")));
    EXPECT_THAT(core().calls(), IsEmpty());
}

TEST_F(AlarmTest, TheTableRefusesAllModesButGet) {
    for (const int mode : modesExcept({MODE_GET, MODE_GETNEXT})) {
        core().clearRecord();
        Pdu pdu{{gpio::cell(kAlarmTable, 3, 1), NewValue::integer(1)}};
        pdu.cell(0, 3);
        EXPECT_EQ(pdu.runOwnHandler(mode), SNMP_ERR_GENERR) << mode;
        EXPECT_THAT(core().logs(), ElementsAre(logs::error("handle_alarmStates: Bad request")));
        EXPECT_THAT(core().calls(), IsEmpty());
    }
}
