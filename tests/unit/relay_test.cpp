// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * The NTCIP command that switches any of the relays, and how it and the table do so: a relay without a
 * configuration is set up first.
 */
#include <tuple>

#include "fresh_process.h"
#include "gpio_table_test.h"
#include "handler_requests.h"

namespace {

const char *const kHandler = "handle_outputControl";

class RelayTest : public ModuleTest {
protected:
    void SetUp() override {
        openCore();
        relays::configuration(1);
    }
    void TearDown() override {
        if (requests::registeredName(oids::registered::outputControl) == "outputControl") {
            commit(octets({0, 0}));
        }
        DeinitRelay();
    }

    static void start(int count) {
        gpio::start(kRelayTable, count);
    }

    static void expectControl(const std::string &value) {
        EXPECT_THAT(get(oids::outputControl), isOctets(value));
    }

    /** One phase on the command's own handler, with the record of this phase only. */
    static Answer phase(int mode, const std::string &value) {
        core().clearRecord();
        return DirtyRequest(oids::outputControl, NewValue::text(value)).runOwnHandler(mode);
    }
    /** An ACTION and a COMMIT without a check, with the record of the COMMIT only. */
    static Answer commit(const std::string &value) {
        EXPECT_THAT(phase(MODE_SET_ACTION, value), isAccepted());
        return phase(MODE_SET_COMMIT, value);
    }
};

/** One of the two objects that switch relays. */
struct Way : Row {                          // the name is the handler's
    Answer (*commit)(int relay, int state); ///< after the phases before it, with the record of the COMMIT only
    bool logsPhases;
};

Answer commitCommand(int relay, int state) {
    DirtyRequest request(oids::outputControl,
                         NewValue::text(octets({static_cast<unsigned int>(relay), state != 0 ? 0x80U : 0U})));
    request.runOwnHandler(MODE_SET_ACTION);
    scripted::core().clearRecord();
    return request.runOwnHandler(MODE_SET_COMMIT);
}

Answer commitCell(int relay, int state) {
    Pdu pdu{{gpio::cell(kRelayTable, 3, static_cast<unsigned long>(relay)), NewValue::integer(state)}};
    pdu.cell(0, 3);
    gpio::script(kRelayTable, {0});
    EXPECT_EQ(pdu.runOwnHandler(MODE_SET_RESERVE2), SNMP_ERR_NOERROR);
    EXPECT_EQ(pdu.runOwnHandler(MODE_SET_ACTION), SNMP_ERR_NOERROR);
    scripted::core().clearRecord();
    const int returned = pdu.runOwnHandler(MODE_SET_COMMIT);
    Answer answer = pdu.answer(0);
    answer.returned = returned;
    return answer;
}

const Way kWays[] = {{{"handle_outputControl"}, commitCommand, true}, {{"handle_relayStates"}, commitCell, false}};

class RelaySwitchingTest : public RelayTest, public testing::WithParamInterface<Way> {
protected:
    void SetUp() override {
        RelayTest::SetUp();
        start(2);
    }

    static void expectFailed(const Answer &answer) {
        EXPECT_EQ(answer.returned, SNMP_ERR_GENERR);
        std::vector<LogLine> lines{logs::error(GetParam().name + ": MODE_COMMIT fail")};
        if (GetParam().logsPhases) {
            lines.insert(lines.begin(), logs::debug(GetParam().name + ": Enter."));
        }
        EXPECT_EQ(core().logs(), lines);
    }
};

INSTANTIATE_TEST_SUITE_P(Ways, RelaySwitchingTest, testing::ValuesIn(kWays), nameOf<Way>);

} // namespace

class RelayFreshTest : public RelayTest {};

TEST_F(RelayFreshTest, TheCommandIsZeroUntilTheFirst) {
    expectInFreshProcess([] {
        start(2);
        expectControl(octets({0, 0}));
        EXPECT_EQ(core().logs(), logs::from(kHandler));
        EXPECT_THAT(core().calls(), IsEmpty());
        // There is no committed command for the UNDO to restore.
        setAndUndo(oids::outputControl, NewValue::text(octets({2, 0x80})));
        expectControl(octets({0, 0}));
    });
}

TEST_F(RelayTest, TheHighestBitOfTheSecondOctetIsTheState) {
    const std::tuple<std::string, int, int> cases[] = {{octets({2, 0x80}), 2, 1},    {octets({2, 0x7F}), 2, 0},
                                                       {octets({1, 0xFF}), 1, 1},    {octets({1, 0}), 1, 0},
                                                       {octets({2, 0x81, 7}), 2, 1}, {octets({3, 0x80, 0, 0}), 3, 1},
                                                       {octets({2}), 2, 0}};
    start(3);
    for (const auto &[value, relay, state] : cases) {
        SCOPED_TRACE(testing::PrintToString(value));
        core().clearRecord();
        set(oids::outputControl, NewValue::text(value));
        EXPECT_THAT(core().calls(), ElementsAre(relays::readConfiguration(relay), relays::switchTo(relay, state)));
        expectControl((value + '\0').substr(0, 2));
    }
}

TEST_F(RelayTest, ACommandForARelayThatIsNotThereSucceedsAndDoesNothing) {
    start(2);
    commit(octets({1, 0x80}));
    for (const std::string &value : {""s, octets({0, 0x80}), octets({3, 0x80}), octets({5, 0x80}), octets({127, 0x80}),
                                     octets({128, 0x80}), octets({255, 0x80})}) {
        SCOPED_TRACE(testing::PrintToString(value));
        core().clearRecord();
        set(oids::outputControl, NewValue::text(value));
        EXPECT_THAT(core().calls(), IsEmpty());
        EXPECT_THAT(core().logs(3), IsEmpty());
        expectControl((value + "\0\0"s).substr(0, 2));
        EXPECT_THAT(commit(value), isAccepted());
        EXPECT_EQ(core().logs(), logs::from(kHandler));
    }
}

TEST_F(RelayTest, ALengthIsNeverRefused) {
    start(2);
    for (const std::size_t length : {0U, 1U, 2U, 3U, 200U}) {
        const std::string value(length, '\x7F');
        for (const int mode : {MODE_SET_RESERVE1, MODE_SET_RESERVE2}) {
            EXPECT_THAT(phase(mode, value), isAccepted()) << length;
            EXPECT_EQ(core().logs(), logs::from(kHandler));
        }
    }
}

TEST_F(RelayTest, ACommitSwitchesByTheRequestAndAnswersTheKeptCommand) {
    start(2);
    phase(MODE_SET_ACTION, octets({2, 0x80}));
    EXPECT_THAT(phase(MODE_SET_COMMIT, octets({1, 0})), isOctets(octets({2, 0x80})));
    EXPECT_THAT(core().calls(), ElementsAre(relays::readConfiguration(1), relays::switchTo(1, 0)));
    EXPECT_EQ(core().logs(), logs::from(kHandler));
}

TEST_F(RelayTest, ACommandThatFailedCountsAsCommitted) {
    start(2);
    core().fail(relays::kSetState, kRefused);
    EXPECT_EQ(commit(octets({1, 0x80})).returned, SNMP_ERR_GENERR);
    expectControl(octets({1, 0x80}));
    setAndUndo(oids::outputControl, NewValue::text(octets({2, 0})));
    expectControl(octets({1, 0x80}));
}

TEST_P(RelaySwitchingTest, ARelayIsSetUpBeforeItsFirstSwitch) {
    relays::configuration(0);
    for (const int relay : {1, 2}) {
        for (const int state : {0, 1}) {
            EXPECT_THAT(GetParam().commit(relay, state), isAccepted());
            EXPECT_THAT(core().calls(), ElementsAre(relays::readConfiguration(relay), relays::configure(relay),
                                                    relays::switchTo(relay, state)));
            EXPECT_THAT(core().logs(3), IsEmpty());
        }
    }
}

TEST_P(RelaySwitchingTest, ARelayThatIsSetUpIsOnlySwitched) {
    for (const std::int64_t first : {1, 2, 128, 255}) {
        relays::configuration(first);
        EXPECT_THAT(GetParam().commit(2, 1), isAccepted());
        EXPECT_THAT(core().calls(), ElementsAre(relays::readConfiguration(2), relays::switchTo(2, 1))) << first;
    }
}

TEST_P(RelaySwitchingTest, ARelayWhoseConfigurationCannotBeReadIsLeftAlone) {
    core().fail(relays::kGetConfiguration, kRefused);
    expectFailed(GetParam().commit(2, 1));
    EXPECT_THAT(core().calls(), ElementsAre(relays::readConfiguration(2)));
}

TEST_P(RelaySwitchingTest, ARelayThatCannotBeSetUpIsNotSwitched) {
    relays::configuration(0);
    core().fail(relays::kSetConfiguration, kRefused);
    expectFailed(GetParam().commit(2, 1));
    EXPECT_THAT(core().calls(), ElementsAre(relays::readConfiguration(2), relays::configure(2)));
}

TEST_P(RelaySwitchingTest, ARelayThatCannotBeSwitchedStaysSetUp) {
    relays::configuration(0);
    core().fail(relays::kSetState, kRefused);
    expectFailed(GetParam().commit(2, 1));
    EXPECT_THAT(core().calls(),
                ElementsAre(relays::readConfiguration(2), relays::configure(2), relays::switchTo(2, 1)));
}
