// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * How a relay is switched, by the NTCIP command as by the table: it is set up first if nobody has done so yet.
 */
#include "gpio_table_test.h"
#include "handler_requests.h"
#include "relay_calls.h"

namespace {

/** One of the two objects that switch relays. */
struct Way : Row {                          // the name is the handler's
    Answer (*commit)(int relay, int state); ///< after the phases before it, with the record of the COMMIT only
    bool logsPhases;
};

Answer commitCommand(int relay, int state) {
    DirtyRequest request(relays::kOutputControl,
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

class RelaySwitchingTest : public ModuleTest, public testing::WithParamInterface<Way> {
protected:
    void SetUp() override {
        openCore();
        gpio::start(kRelayTable, 2);
        relays::configuration(1);
    }
    void TearDown() override {
        DeinitRelay();
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

TEST_P(RelaySwitchingTest, ARelayThatNobodyHasSetUpIsSetUpFirst) {
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
