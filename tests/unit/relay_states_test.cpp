// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * SETs of the relays' table. The module keeps one relay and one state for a whole request.
 */
#include <tuple>

#include "gpio_table_test.h"
#include "handler_requests.h"
#include "snmp_utils.h"

namespace {

const LogLine kReserve1Fails = {3, "handle_relayStates: MODE_SET_RESERVE1 fail"};
const LogLine kReserve2Fails = {3, "handle_relayStates: MODE_SET_RESERVE2 fail"};

std::string cell(unsigned long row, unsigned long column = 3) {
    return gpio::cell(kRelayTable, column, row);
}

/** A SET of states for the module's own handler. The data set's handler in front of it refuses some of them. */
class OwnPdu : public Pdu {
public:
    OwnPdu(std::initializer_list<std::pair<unsigned long, NewValue>> states) {
        std::size_t index = 0;
        for (const auto &[row, value] : states) {
            add({::cell(row), value});
            cell(index++, 3);
        }
    }
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
            Pdu pdu{{cell(static_cast<unsigned long>(row)), NewValue::integer(state)}};
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
        Pdu pdu{{cell(2), NewValue::integer(value)}};
        EXPECT_EQ(pdu.set(), SNMP_ERR_NOERROR);
        EXPECT_EQ(core().calls().back(), relays::switchTo(2, state));
        EXPECT_EQ(pdu.answer(0).integer, state) << "the answer tells what the relay was switched to";
    }
}

TEST_F(RelayStatesTest, SeveralRowsInOneRequestSwitchTheLastOfTheRequestOnly) {
    for (const auto &[first, last, state] : {std::tuple(1, 2, 0), std::tuple(2, 1, 1)}) {
        core().clearRecord();
        Pdu pdu{{cell(static_cast<unsigned long>(first)), NewValue::integer(1 - state)},
                {cell(static_cast<unsigned long>(last)), NewValue::integer(state)}};
        EXPECT_EQ(pdu.set(), SNMP_ERR_NOERROR);
        EXPECT_THAT(core().calls(), ElementsAre(relays::readState(first), relays::readState(last),
                                                relays::readConfiguration(last), relays::switchTo(last, state),
                                                relays::readConfiguration(last), relays::switchTo(last, state)));
        for (const std::size_t index : {0U, 1U}) {
            EXPECT_EQ(pdu.answer(index).integer, state);
        }
    }
}

TEST_F(RelayStatesTest, AFailedSwitchEndsTheRequest) {
    core().fail(relays::kSetState, kRefused);
    Pdu pdu{{cell(1), NewValue::integer(1)}, {cell(2), NewValue::integer(1)}};
    EXPECT_EQ(pdu.set(), SNMP_ERR_GENERR);
    EXPECT_THAT(core().calls(), ElementsAre(relays::readState(1), relays::readState(2), relays::readConfiguration(2),
                                            relays::switchTo(2, 1)));
    EXPECT_THAT(core().logs(), ElementsAre(logs::error("handle_relayStates: MODE_COMMIT fail")));
}

TEST_F(RelayStatesTest, AWrongTypeIsLoggedAndTheNextVarbindIsChecked) {
    OwnPdu pdu{{1, NewValue::text("on")}, {2, NewValue::integer(1)}, {2, {ASN_UNSIGNED, NewValue::integer(1).content}}};
    EXPECT_EQ(pdu.runOwnHandler(MODE_SET_RESERVE1), SNMP_ERR_NOERROR);
    EXPECT_EQ(pdu.answer(0).requestError, SNMP_ERR_WRONGTYPE);
    EXPECT_EQ(pdu.answer(1).requestError, SNMP_ERR_NOERROR);
    EXPECT_EQ(pdu.answer(2).requestError, SNMP_ERR_WRONGTYPE);
    EXPECT_THAT(core().logs(), ElementsAre(kReserve1Fails, kReserve1Fails));
    EXPECT_THAT(core().calls(), IsEmpty());
}

TEST_F(RelayStatesTest, AWrongTypeSwitchesNothing) {
    Pdu pdu{{cell(2), NewValue::integer(1)}, {cell(1), NewValue::text("on")}};
    EXPECT_EQ(pdu.set(), SNMP_ERR_WRONGTYPE);
    EXPECT_THAT(core().calls(), IsEmpty());
}

TEST_F(RelayStatesTest, ARelayWhoseStateCannotBeReadIsNotSwitched) {
    core().once(relays::kGetState, {0, {std::int64_t{0}}});
    core().once(relays::kGetState, {kRefused, {}});
    Pdu pdu;
    for (const unsigned long row : {1UL, 2UL, 1UL}) {
        pdu.add({cell(row), NewValue::integer(1)});
    }
    EXPECT_EQ(pdu.set(), SNMP_ERR_GENERR);
    EXPECT_THAT(core().calls(), ElementsAre(relays::readState(1), relays::readState(2)));
    EXPECT_THAT(core().logs(), ElementsAre(kReserve2Fails));
}

TEST_F(RelayStatesTest, RowsThatDoNotExistReachNoRelay) {
    for (const unsigned long row : {0UL, 3UL, 4UL, 2147483647UL, 2147483648UL, 4294967295UL}) {
        SCOPED_TRACE(row);
        core().clearRecord();
        Pdu whole{{cell(row), NewValue::integer(1)}};
        EXPECT_EQ(whole.set(), SNMP_ERR_NOCREATION);

        OwnPdu own{{row, NewValue::integer(1)}};
        EXPECT_EQ(own.runOwnHandler(MODE_SET_RESERVE1), SNMP_ERR_NOERROR);
        core().clearRecord();
        EXPECT_EQ(own.runOwnHandler(MODE_SET_RESERVE2), SNMP_ERR_GENERR);
        EXPECT_THAT(core().logs(), ElementsAre(kReserve2Fails));
        EXPECT_THAT(core().calls(), IsEmpty());
    }
}

TEST_F(RelayStatesTest, OnlyACommitSwitches) {
    OwnPdu pdu{{2, NewValue::integer(1)}};
    for (const int mode : {MODE_SET_RESERVE1, MODE_SET_RESERVE2, MODE_SET_ACTION, MODE_SET_FREE, MODE_SET_UNDO}) {
        core().clearRecord();
        EXPECT_EQ(pdu.runOwnHandler(mode), SNMP_ERR_NOERROR) << mode;
        EXPECT_EQ(core().calls().size(), mode == MODE_SET_RESERVE2 ? 1U : 0U) << mode;
        EXPECT_THAT(core().logs(), IsEmpty()) << mode;
        EXPECT_EQ(pdu.answer(0).integer, 1) << mode;
    }
}

TEST_F(RelayStatesTest, AnUndoRestoresTheStateOfTheRelay) {
    core().answer(relays::kGetState, {std::int64_t{77}});
    OwnPdu pdu{{2, NewValue::integer(1)}};
    for (const int mode : {MODE_SET_RESERVE2, MODE_SET_ACTION, MODE_SET_UNDO, MODE_SET_COMMIT}) {
        EXPECT_EQ(pdu.runOwnHandler(mode), SNMP_ERR_NOERROR) << mode;
    }
    EXPECT_THAT(core().calls(),
                ElementsAre(relays::readState(2), relays::readConfiguration(2), relays::switchTo(2, 77)));
}

TEST_F(RelayStatesTest, AnUnreadableStateIsNotRestored) {
    OwnPdu pdu{{2, NewValue::integer(1)}};
    core().once(relays::kGetState, {0, {std::int64_t{5}}});
    EXPECT_EQ(pdu.runOwnHandler(MODE_SET_RESERVE2), SNMP_ERR_NOERROR);
    core().once(relays::kGetState, {kRefused, {}});
    EXPECT_EQ(pdu.runOwnHandler(MODE_SET_RESERVE2), SNMP_ERR_GENERR);
    EXPECT_EQ(pdu.runOwnHandler(MODE_SET_UNDO), SNMP_ERR_NOERROR);
    EXPECT_EQ(pdu.runOwnHandler(MODE_SET_COMMIT), SNMP_ERR_NOERROR);
    EXPECT_EQ(core().calls().back(), relays::switchTo(2, 5)) << "rubbish of the failed read";
}

TEST_F(RelayStatesTest, ARelayThatWasChosenMayBeGoneAtTheCommit) {
    OwnPdu pdu{{2, NewValue::integer(1)}};
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
        OwnPdu pdu{{1, NewValue::integer(1)}, {2, NewValue::integer(1)}};
        EXPECT_EQ(pdu.runOwnHandler(mode), SNMP_ERR_GENERR) << mode;
        EXPECT_THAT(core().logs(),
                    ElementsAre(logs::error("handle_relayStates: unknown mode (" + std::to_string(mode) + ")")));
        EXPECT_THAT(core().calls(), IsEmpty()) << mode;
    }
}

TEST_F(RelayStatesTest, ADescribingColumnInARequestKeepsTheRelaysAsTheyAre) {
    Pdu pdu{{cell(1), NewValue::integer(1)}, {cell(2, 2), NewValue::integer(9)}};
    EXPECT_EQ(pdu.set(), SNMP_ERR_NOTWRITABLE);
    EXPECT_THAT(core().calls(), IsEmpty());
}

// The table, its entry, other entries, a column without a row, and columns that the table does not have. Two kinds of
// trouble threaten: a read beyond a name, and a row that is not freed.
TEST_F(RelayStatesTest, NamesInTheTableThatAreNoCellsAreRefusedBeforeAndAfterACell) {
    const NewValue one = NewValue::integer(1);
    for (const char *end :
         {"", ".1", ".0", ".2", ".1.3", ".2.3", ".1.0", ".2.3.1", ".1.0.1", ".1.4.1", ".1.4294967295.1"}) {
        SCOPED_TRACE(end);
        const std::string name = std::string(kRelayTable.root) + end;
        for (const Calls &names : {Calls{name}, Calls{name, cell(1)}, Calls{cell(1), name}}) {
            Pdu pdu;
            for (const std::string &each : names) {
                pdu.add({each, one});
            }
            EXPECT_EQ(pdu.set(), SNMP_ERR_NOCREATION);
        }
        EXPECT_THAT(core().calls(), IsEmpty()) << "nothing is switched";
    }
}
