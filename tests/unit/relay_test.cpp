// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * The NTCIP command that switches any of the relays.
 */
#include "fresh_process.h"
#include "gpio_table_test.h"
#include "handler_requests.h"
#include "relay_calls.h"

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
        EXPECT_THAT(get(relays::kOutputControl), isOctets(value));
    }

    /** One phase on the command's own handler, with the record of this phase only. */
    static Answer phase(int mode, const std::string &value) {
        core().clearRecord();
        return DirtyRequest(relays::kOutputControl, NewValue::text(value)).runOwnHandler(mode);
    }
    /** A command that nobody checks: an ACTION and a COMMIT, with the record of the COMMIT only. */
    static Answer commit(const std::string &value) {
        EXPECT_THAT(phase(MODE_SET_ACTION, value), isAccepted());
        return phase(MODE_SET_COMMIT, value);
    }
};

} // namespace

class RelayFreshTest : public RelayTest {};

TEST_F(RelayFreshTest, TheCommandIsZeroUntilTheFirst) {
    expectInFreshProcess([] {
        start(2);
        expectControl(octets({0, 0}));
        EXPECT_EQ(core().logs(), logs::from(kHandler));
        EXPECT_THAT(core().calls(), IsEmpty());
        // Nothing has been committed that an UNDO could bring back.
        setAndUndo(relays::kOutputControl, NewValue::text(octets({2, 0x80})));
        expectControl(octets({0, 0}));
    });
}

TEST_F(RelayTest, TheHighestBitOfTheSecondOctetIsTheState) {
    struct Case {
        std::string value;
        int relay;
        int state;
    };
    const Case cases[] = {{octets({2, 0x80}), 2, 1}, {octets({2, 0x7F}), 2, 0},    {octets({1, 0xFF}), 1, 1},
                          {octets({1, 0x00}), 1, 0}, {octets({2, 0x81, 7}), 2, 1}, {octets({3, 0x80, 0, 0}), 3, 1}};
    start(3);
    for (const Case &each : cases) {
        SCOPED_TRACE(testing::PrintToString(each.value));
        core().clearRecord();
        set(relays::kOutputControl, NewValue::text(each.value));
        EXPECT_THAT(core().calls(),
                    ElementsAre(relays::readConfiguration(each.relay), relays::switchTo(each.relay, each.state)));
        expectControl(each.value.substr(0, 2));
    }
}

TEST_F(RelayTest, ACommandWithoutItsSecondOctetSwitchesOff) {
    start(2);
    set(relays::kOutputControl, NewValue::text(octets({2})));
    EXPECT_THAT(core().calls(), ElementsAre(relays::readConfiguration(2), relays::switchTo(2, 0)));
    expectControl(octets({2, 0}));
}

TEST_F(RelayTest, ACommandWithoutOctetsIsForNoRelay) {
    start(2);
    commit(octets({1, 0x80}));
    core().clearRecord();
    set(relays::kOutputControl, NewValue::text(""));
    EXPECT_THAT(core().calls(), IsEmpty());
    expectControl(octets({0, 0}));
}

TEST_F(RelayTest, ACommandForARelayThatIsNotThereSucceedsAndDoesNothing) {
    start(2);
    for (const unsigned int number : {0U, 3U, 5U, 127U, 128U, 255U}) {
        core().clearRecord();
        const std::string value = octets({number, 0x80});
        set(relays::kOutputControl, NewValue::text(value));
        EXPECT_THAT(core().calls(), IsEmpty()) << number;
        EXPECT_THAT(core().logs(3), IsEmpty()) << number;
        expectControl(value);
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
    const Answer answer = phase(MODE_SET_COMMIT, octets({1, 0}));
    EXPECT_THAT(answer, isAccepted());
    EXPECT_THAT(core().calls(), ElementsAre(relays::readConfiguration(1), relays::switchTo(1, 0)));
    EXPECT_EQ(core().logs(), logs::from(kHandler));
    EXPECT_EQ(answer.type, ASN_OCTET_STR);
    EXPECT_EQ(answer.octets, octets({2, 0x80}));
}

TEST_F(RelayTest, ACommandThatFailedCountsAsCommitted) {
    start(2);
    core().fail(relays::kSetState, kRefused);
    EXPECT_EQ(commit(octets({1, 0x80})).returned, SNMP_ERR_GENERR);
    expectControl(octets({1, 0x80}));
    setAndUndo(relays::kOutputControl, NewValue::text(octets({2, 0})));
    expectControl(octets({1, 0x80}));
}
