// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * SETs of the relays' table. The module keeps one relay and one state for a whole request.
 */
#include "gpio_table_test.h"
#include "handler_requests.h"
#include "relay_calls.h"
#include "snmp_utils.h"

namespace {

const LogLine kReserve1Fails = {3, "handle_relayStates: MODE_SET_RESERVE1 fail"};
const LogLine kReserve2Fails = {3, "handle_relayStates: MODE_SET_RESERVE2 fail"};

std::string cell(unsigned long row, unsigned long column = 3) {
    return gpio::cell(kRelayTable, column, row);
}

/** A SET of states for the module's own handler, which the data set's handler in front of it would keep some of away.
 */
class OwnPdu : public Pdu {
public:
    void state(unsigned long row, const NewValue &value) {
        add(::cell(row), value);
        cell(count_++, 3);
    }

private:
    std::size_t count_ = 0;
};

class RelayStatesTest : public ModuleTest {
protected:
    void SetUp() override {
        openCore();
        gpio::start(kRelayTable, 2);
        relays::configuration(1);
        core().answer(relays::kGetState, {std::int64_t{0}});
    }
    void TearDown() override {
        DeinitRelay();
    }
};

} // namespace

TEST_F(RelayStatesTest, ASetReadsTheStateAndSwitches) {
    for (const int row : {1, 2}) {
        for (const int state : {1, 0}) {
            core().clearRecord();
            Pdu pdu;
            pdu.add(cell(static_cast<unsigned long>(row)), NewValue::integer(state));
            EXPECT_EQ(pdu.set(), SNMP_ERR_NOERROR);
            EXPECT_THAT(core().calls(), ElementsAre(relays::readState(row), relays::readConfiguration(row),
                                                    relays::switchTo(row, state)));
            EXPECT_THAT(core().logs(), IsEmpty());
            EXPECT_EQ(pdu.answer(0).type, ASN_INTEGER);
            EXPECT_EQ(pdu.answer(0).integer, state);
        }
    }
}

TEST_F(RelayStatesTest, OnlyTheLowOctetOfAStateReachesTheService) {
    for (const auto &[value, state] : {std::pair(255L, 255), std::pair(256L, 0), std::pair(257L, 1),
                                       std::pair(-1L, 255), std::pair(2147483647L, 255), std::pair(-2147483648L, 0)}) {
        core().clearRecord();
        Pdu pdu;
        pdu.add(cell(2), NewValue::integer(value));
        EXPECT_EQ(pdu.set(), SNMP_ERR_NOERROR);
        EXPECT_EQ(core().calls().back(), relays::switchTo(2, state));
        EXPECT_EQ(pdu.answer(0).integer, state) << "the answer tells what the relay was switched to";
    }
}

TEST_F(RelayStatesTest, SeveralRowsInOneRequestSwitchTheLastOnly) {
    Pdu pdu;
    pdu.add(cell(1), NewValue::integer(1));
    pdu.add(cell(2), NewValue::integer(0));
    EXPECT_EQ(pdu.set(), SNMP_ERR_NOERROR);
    EXPECT_THAT(core().calls(),
                ElementsAre(relays::readState(1), relays::readState(2), relays::readConfiguration(2),
                            relays::switchTo(2, 0), relays::readConfiguration(2), relays::switchTo(2, 0)));
    for (const std::size_t index : {0U, 1U}) {
        EXPECT_EQ(pdu.answer(index).integer, 0);
    }
}

TEST_F(RelayStatesTest, TheLastRowIsTheOneInTheRequestNotTheHighest) {
    Pdu pdu;
    pdu.add(cell(2), NewValue::integer(0));
    pdu.add(cell(1), NewValue::integer(1));
    EXPECT_EQ(pdu.set(), SNMP_ERR_NOERROR);
    EXPECT_THAT(core().calls(),
                ElementsAre(relays::readState(2), relays::readState(1), relays::readConfiguration(1),
                            relays::switchTo(1, 1), relays::readConfiguration(1), relays::switchTo(1, 1)));
}

TEST_F(RelayStatesTest, AFailedSwitchEndsTheRequest) {
    core().fail(relays::kSetState, kRefused);
    Pdu pdu;
    pdu.add(cell(1), NewValue::integer(1));
    pdu.add(cell(2), NewValue::integer(1));
    EXPECT_EQ(pdu.set(), SNMP_ERR_GENERR);
    EXPECT_THAT(core().calls(), ElementsAre(relays::readState(1), relays::readState(2), relays::readConfiguration(2),
                                            relays::switchTo(2, 1)));
    EXPECT_THAT(core().logs(), ElementsAre(logs::error("handle_relayStates: MODE_COMMIT fail")));
}

TEST_F(RelayStatesTest, AWrongTypeIsLoggedAndTheNextVariableIsChecked) {
    OwnPdu pdu;
    pdu.state(1, NewValue::text("on"));
    pdu.state(2, NewValue::integer(1));
    pdu.state(2, {ASN_UNSIGNED, NewValue::integer(1).content});
    EXPECT_EQ(pdu.runOwnHandler(MODE_SET_RESERVE1), SNMP_ERR_NOERROR);
    EXPECT_EQ(pdu.answer(0).requestError, SNMP_ERR_WRONGTYPE);
    EXPECT_EQ(pdu.answer(1).requestError, SNMP_ERR_NOERROR);
    EXPECT_EQ(pdu.answer(2).requestError, SNMP_ERR_WRONGTYPE);
    EXPECT_THAT(core().logs(), ElementsAre(kReserve1Fails, kReserve1Fails));
    EXPECT_THAT(core().calls(), IsEmpty());
}

TEST_F(RelayStatesTest, AWrongTypeSwitchesNothing) {
    Pdu pdu;
    pdu.add(cell(2), NewValue::integer(1));
    pdu.add(cell(1), NewValue::text("on"));
    EXPECT_EQ(pdu.set(), SNMP_ERR_WRONGTYPE);
    EXPECT_THAT(core().calls(), IsEmpty());
}

TEST_F(RelayStatesTest, ARelayWhoseStateCannotBeReadIsNotSwitched) {
    core().once(relays::kGetState, {0, {std::int64_t{0}}});
    core().once(relays::kGetState, {kRefused, {}});
    Pdu pdu;
    for (const unsigned long row : {1UL, 2UL, 1UL}) {
        pdu.add(cell(row), NewValue::integer(1));
    }
    EXPECT_EQ(pdu.set(), SNMP_ERR_GENERR);
    EXPECT_THAT(core().calls(), ElementsAre(relays::readState(1), relays::readState(2)));
    EXPECT_THAT(core().logs(), ElementsAre(kReserve2Fails));
}

TEST_F(RelayStatesTest, RowsThatDoNotExistReachNoRelay) {
    for (const unsigned long row : {0UL, 3UL, 4UL, 2147483647UL, 2147483648UL, 4294967295UL}) {
        SCOPED_TRACE(row);
        core().clearRecord();
        Pdu whole;
        whole.add(cell(row), NewValue::integer(1));
        EXPECT_EQ(whole.set(), SNMP_ERR_NOCREATION);

        OwnPdu own;
        own.state(row, NewValue::integer(1));
        EXPECT_EQ(own.runOwnHandler(MODE_SET_RESERVE1), SNMP_ERR_NOERROR);
        core().clearRecord();
        EXPECT_EQ(own.runOwnHandler(MODE_SET_RESERVE2), SNMP_ERR_GENERR);
        EXPECT_THAT(core().logs(), ElementsAre(kReserve2Fails));
        EXPECT_THAT(core().calls(), IsEmpty());
    }
}

TEST_F(RelayStatesTest, OnlyACommitSwitches) {
    OwnPdu pdu;
    pdu.state(2, NewValue::integer(1));
    for (const int mode : {MODE_SET_RESERVE1, MODE_SET_RESERVE2, MODE_SET_ACTION, MODE_SET_FREE, MODE_SET_UNDO}) {
        core().clearRecord();
        EXPECT_EQ(pdu.runOwnHandler(mode), SNMP_ERR_NOERROR) << mode;
        EXPECT_EQ(core().calls().size(), mode == MODE_SET_RESERVE2 ? 1U : 0U) << mode;
        EXPECT_THAT(core().logs(), IsEmpty()) << mode;
        EXPECT_EQ(pdu.answer(0).integer, 1) << mode;
    }
}

TEST_F(RelayStatesTest, AnUndoTakesTheStateBackThatTheRelayHad) {
    core().answer(relays::kGetState, {std::int64_t{77}});
    OwnPdu pdu;
    pdu.state(2, NewValue::integer(1));
    for (const int mode : {MODE_SET_RESERVE2, MODE_SET_ACTION, MODE_SET_UNDO, MODE_SET_COMMIT}) {
        EXPECT_EQ(pdu.runOwnHandler(mode), SNMP_ERR_NOERROR) << mode;
    }
    EXPECT_THAT(core().calls(),
                ElementsAre(relays::readState(2), relays::readConfiguration(2), relays::switchTo(2, 77)));
}

TEST_F(RelayStatesTest, AStateThatCouldNotBeReadIsNotTakenBack) {
    OwnPdu pdu;
    pdu.state(2, NewValue::integer(1));
    core().once(relays::kGetState, {0, {std::int64_t{5}}});
    EXPECT_EQ(pdu.runOwnHandler(MODE_SET_RESERVE2), SNMP_ERR_NOERROR);
    core().once(relays::kGetState, {kRefused, {}});
    EXPECT_EQ(pdu.runOwnHandler(MODE_SET_RESERVE2), SNMP_ERR_GENERR);
    EXPECT_EQ(pdu.runOwnHandler(MODE_SET_UNDO), SNMP_ERR_NOERROR);
    EXPECT_EQ(pdu.runOwnHandler(MODE_SET_COMMIT), SNMP_ERR_NOERROR);
    EXPECT_EQ(core().calls().back(), relays::switchTo(2, 5)) << "rubbish of the failed read";
}

TEST_F(RelayStatesTest, ARelayThatWasChosenMayBeGoneAtTheCommit) {
    OwnPdu pdu;
    pdu.state(2, NewValue::integer(1));
    EXPECT_EQ(pdu.runOwnHandler(MODE_SET_RESERVE2), SNMP_ERR_NOERROR);
    DeinitRelay();
    UnregisterAll();
    gpio::start(kRelayTable, 1);
    EXPECT_EQ(pdu.runOwnHandler(MODE_SET_COMMIT), SNMP_ERR_GENERR);
    EXPECT_THAT(core().calls(), IsEmpty());
}

TEST_F(RelayStatesTest, UnknownModesAreLoggedAndEndTheRequest) {
    for (const int mode : kUnknownModes) {
        core().clearRecord();
        OwnPdu pdu;
        pdu.state(1, NewValue::integer(1));
        pdu.state(2, NewValue::integer(1));
        EXPECT_EQ(pdu.runOwnHandler(mode), SNMP_ERR_GENERR) << mode;
        EXPECT_THAT(core().logs(),
                    ElementsAre(logs::error("handle_relayStates: unknown mode (" + std::to_string(mode) + ")")));
        EXPECT_THAT(core().calls(), IsEmpty()) << mode;
    }
}

TEST_F(RelayStatesTest, ADescribingColumnInARequestKeepsTheRelaysAsTheyAre) {
    Pdu pdu;
    pdu.add(cell(1), NewValue::integer(1));
    pdu.add(cell(2, 2), NewValue::integer(9));
    EXPECT_EQ(pdu.set(), SNMP_ERR_NOTWRITABLE);
    EXPECT_THAT(core().calls(), IsEmpty());
}
