// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Power and voltage: two states of one service, read for each request and watched by the poll thread.
 */
#include <ostream>

#include "fresh_process.h"
#include "health_test.h"

using requests::Answer;
using requests::get;
using requests::NewValue;
using requests::Request;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

struct State {
    const char *name;
    const char *object;
    const char *instance;
    const char *read;
};

void PrintTo(const State &each, std::ostream *stream) {
    *stream << each.name;
}

const State kPower{"power", "1.3.6.1.4.1.99999.1.1.8.0", "1.3.6.1.4.1.99999.1.1.8.0.0",
                   "zorva_api_power_get_power_state_send"};
const State kVoltage{"voltage", "1.3.6.1.4.1.99999.1.1.9.0", "1.3.6.1.4.1.99999.1.1.9.0.0",
                     "zorva_api_power_get_voltage_state_send"};

std::string callOf(const State &state) {
    return std::string(state.read) + "(power, \"power/1\", &)";
}
scripted::LogLine failureOf(const State &state) {
    return {3, std::string(state.read) + " sensor 0 failed"};
}

class PowerTest : public HealthTest {
protected:
    void SetUp() override {
        HealthTest::SetUp();
        core().targets("power", {"power/1", "power/2"});
        ASSERT_TRUE(InitPower(GetIpcCookie()));
        core().clearRecord();
    }
    void TearDown() override {
        DeinitPower();
        HealthTest::TearDown();
    }

    /** A state of 255 is taken for one that has not been seen yet. */
    static void forgetStates() {
        states(255, 255);
        trapsOf(PollPower);
    }
    static void states(const Reading &power, const Reading &voltage) {
        script(kPower.read, power);
        script(kVoltage.read, voltage);
    }
};

class PowerStateTest : public PowerTest, public testing::WithParamInterface<State> {
protected:
    static const State &other() {
        return GetParam().read == kPower.read ? kVoltage : kPower;
    }
    /** A poll in which only the state under test can change. @return values of its traps */
    static std::vector<long> poll(const Reading &reading) {
        script(other().read, 9);
        script(GetParam().read, reading);
        return valuesOf(PollPower);
    }
    static scripted::LogLine triggered(int value) {
        const std::string twice = std::to_string(value);
        return {7, std::string("PollPower: trap triggered for ") + GetParam().name + " " + twice + " -> " + twice};
    }
};

INSTANTIATE_TEST_SUITE_P(States, PowerStateTest, testing::Values(kPower, kVoltage),
                         [](const auto &each) { return std::string(each.param.name); });

} // namespace

TEST_P(PowerStateTest, AGetReadsTheState) {
    for (const std::int64_t state : {0, 1, 2, 128, 254, 255}) {
        core().clearRecord();
        script(GetParam().read, state);
        const Answer answer = get(GetParam().instance);
        EXPECT_THAT(answer, isAccepted());
        EXPECT_EQ(answer.type, ASN_INTEGER);
        EXPECT_EQ(answer.integer, state);
        EXPECT_THAT(core().calls(), ElementsAre(callOf(GetParam())));
        EXPECT_THAT(core().logs(), IsEmpty());
    }
}

TEST_P(PowerStateTest, AStateThatCannotBeReadIsAnError) {
    script(GetParam().read, {});
    const Answer answer = get(GetParam().instance);
    EXPECT_THAT(answer, isRefused(SNMP_ERR_GENERR, SNMP_ERR_NOERROR));
    EXPECT_EQ(answer.type, ASN_NULL);
    EXPECT_THAT(core().logs(), ElementsAre(failureOf(GetParam())));
}

TEST_P(PowerStateTest, TheStateIsReadBeforeTheModeIsLookedAt) {
    script(GetParam().read, 1);
    for (const int mode : modesExcept({MODE_GET})) {
        core().clearRecord();
        const Answer answer = Request(GetParam().instance, NewValue::integer(7)).runOwnHandler(mode);
        EXPECT_THAT(answer, isRefused(SNMP_ERR_GENERR, SNMP_ERR_NOERROR)) << mode;
        EXPECT_EQ(answer.integer, 7) << mode;
        EXPECT_THAT(core().calls(), ElementsAre(callOf(GetParam()))) << mode;
        EXPECT_THAT(core().logs(), IsEmpty()) << mode;
    }
}

TEST_P(PowerStateTest, ASetIsRefusedWithoutAReading) {
    EXPECT_EQ(Request(GetParam().instance, NewValue::integer(7)).run(MODE_SET_RESERVE1).requestError,
              SNMP_ERR_NOTWRITABLE);
    EXPECT_THAT(core().calls(), IsEmpty());
}

TEST_P(PowerStateTest, EachChangeIsATrapWithTheNewState) {
    forgetStates();
    EXPECT_THAT(poll(1), IsEmpty()) << "nothing to compare the first state with";
    EXPECT_THAT(poll(1), IsEmpty());
    EXPECT_THAT(poll(2), ElementsAre(2));
    EXPECT_THAT(poll(2), IsEmpty());
    EXPECT_THAT(poll(1), ElementsAre(1));
    EXPECT_THAT(poll(0), ElementsAre(0));
    EXPECT_THAT(poll(254), ElementsAre(254));
}

TEST_P(PowerStateTest, ATrapNamesItsObjectAndCarriesAGauge) {
    forgetStates();
    poll(1);
    poll(2);
    ASSERT_THAT(traps::gSent, testing::SizeIs(1));
    EXPECT_EQ(traps::gSent[0].trapOid, requests::identifier(GetParam().object));
    EXPECT_EQ(traps::gSent[0].valueName, requests::identifier(GetParam().object));
    EXPECT_EQ(traps::gSent[0].valueType, ASN_UNSIGNED);
}

TEST_P(PowerStateTest, TheLineOfATrapShowsTheNewStateTwice) {
    forgetStates();
    poll(1);
    EXPECT_THAT(pollLines, IsEmpty());
    poll(2);
    EXPECT_THAT(pollLines, ElementsAre(triggered(2)));
    poll(2);
    EXPECT_THAT(pollLines, IsEmpty());
}

TEST_P(PowerStateTest, AFailedPollChangesNothing) {
    forgetStates();
    poll(1);
    EXPECT_THAT(poll({}), IsEmpty());
    EXPECT_THAT(pollLines, ElementsAre(failureOf(GetParam())));
    EXPECT_THAT(poll(1), IsEmpty());
    poll({});
    EXPECT_THAT(poll(2), ElementsAre(2));
}

TEST_P(PowerStateTest, AFailedFirstPollLeavesTheNextOneTheFirst) {
    forgetStates();
    EXPECT_THAT(poll({}), IsEmpty());
    EXPECT_THAT(poll(1), IsEmpty());
    EXPECT_THAT(poll(2), ElementsAre(2));
}

TEST_P(PowerStateTest, AfterAStateOf255TheNextIsTakenForTheFirst) {
    forgetStates();
    poll(1);
    EXPECT_THAT(poll(255), ElementsAre(255));
    EXPECT_THAT(poll(255), IsEmpty());
    EXPECT_THAT(poll(3), IsEmpty());
    EXPECT_THAT(poll(4), ElementsAre(4));
}

TEST_P(PowerStateTest, AGetLeavesThePollsAlone) {
    forgetStates();
    poll(1);
    script(GetParam().read, 2);
    EXPECT_EQ(get(GetParam().instance).integer, 2);
    EXPECT_THAT(poll(1), IsEmpty());
    EXPECT_THAT(poll(2), ElementsAre(2));
}

TEST_P(PowerStateTest, ATrapThatCannotBeSentCountsAsSent) {
    forgetStates();
    poll(1);
    QuarnSnmpTrapSend::DestroyInstance();
    EXPECT_THAT(poll(2), IsEmpty());
    EXPECT_THAT(pollLines, ElementsAre(triggered(2)));
    new QuarnSnmpTrapSend;
    EXPECT_THAT(poll(2), IsEmpty());
    EXPECT_THAT(poll(3), ElementsAre(3));
}

class PowerFreshTest : public PowerTest {};

TEST_F(PowerFreshTest, TheFirstPollOfAllSendsNothing) {
    expectInFreshProcess([] {
        for (const std::int64_t state : {0, 0}) {
            states(state, state);
            EXPECT_THAT(valuesOf(PollPower), IsEmpty());
        }
        states(1, 1);
        EXPECT_THAT(valuesOf(PollPower), ElementsAre(1, 1));
    });
}

TEST_F(PowerTest, APollReadsPowerThenVoltage) {
    forgetStates();
    states(1, 2);
    trapsOf(PollPower);
    EXPECT_THAT(core().calls(), ElementsAre(callOf(kPower), callOf(kVoltage)));
    states({}, {});
    trapsOf(PollPower);
    EXPECT_THAT(core().calls(), ElementsAre(callOf(kPower), callOf(kVoltage)));
    EXPECT_THAT(pollLines, ElementsAre(failureOf(kPower), failureOf(kVoltage)));
}

TEST_F(PowerTest, BothMayChangeInOnePoll) {
    forgetStates();
    states(1, 2);
    trapsOf(PollPower);
    states(3, 4);
    const std::vector<traps::SentTrap> sent = trapsOf(PollPower);
    EXPECT_THAT(traps::sentValues(), ElementsAre(3, 4));
    EXPECT_EQ(sent.at(0).trapOid, requests::identifier(kPower.object));
    EXPECT_EQ(sent.at(1).trapOid, requests::identifier(kVoltage.object));
    EXPECT_THAT(pollLines, ElementsAre(logs::debug("PollPower: trap triggered for power 3 -> 3"),
                                       logs::debug("PollPower: trap triggered for voltage 4 -> 4")));
}

TEST_F(PowerTest, APollOfAServiceThatDidNotOpenDoesNothing) {
    DeinitPower();
    core().fail("zorva_api_power_initiator_init", kRefused);
    EXPECT_FALSE(InitPower(GetIpcCookie()));
    EXPECT_THAT(valuesOf(PollPower), IsEmpty());
    EXPECT_THAT(core().calls(), IsEmpty());
    EXPECT_THAT(pollLines, IsEmpty());
}
