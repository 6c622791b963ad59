// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * The temperature: read in thousandths for each request, and watched by the poll thread in whole degrees.
 */
#include <limits>

#include "fresh_process.h"
#include "health_test.h"

using requests::Answer;
using requests::get;
using requests::NewValue;
using requests::Request;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

const char *const kTemperature = "1.3.6.1.4.1.99999.1.1.7.0";
const char *const kTemperatureInstance = "1.3.6.1.4.1.99999.1.1.7.0.0";
const char *const kRead = "zorva_api_temperature_get_temperature_send";
const char *const kReadCall = "zorva_api_temperature_get_temperature_send(temperature, \"temperature/1\", &)";

const scripted::LogLine kFailure{3, "zorva_api_temperature_get_temperature_send sensor 0 failed"};

constexpr std::int64_t kColdest = std::numeric_limits<std::int32_t>::min();
constexpr std::int64_t kHottest = std::numeric_limits<std::int32_t>::max();

class TemperatureTest : public HealthTest {
protected:
    void SetUp() override {
        HealthTest::SetUp();
        core().targets("temperature", {"temperature/1", "temperature/2"});
        ASSERT_TRUE(InitTemperature(GetIpcCookie()));
        core().clearRecord();
    }
    void TearDown() override {
        DeinitTemperature();
        HealthTest::TearDown();
    }

    /** A poll. @return values of its traps */
    static std::vector<long> poll(const Reading &thousandths) {
        script(kRead, thousandths);
        return valuesOf(PollTemperature);
    }
    /** Makes this the recorded value, whatever was recorded before. */
    static void record(std::int64_t thousandths) {
        poll(thousandths < 0 ? kHottest : kColdest);
        poll(thousandths);
    }
    static scripted::LogLine triggered(const std::string &change) {
        return {7, "PollTemperature: trap triggered for temp " + change};
    }
};

} // namespace

TEST_F(TemperatureTest, AGetAnswersWholeDegreesAsTheir32Bits) {
    struct Case {
        std::int64_t thousandths;
        long gauge;
    };
    const Case cases[] = {{40000, 40},
                          {40999, 40},
                          {999, 0},
                          {0, 0},
                          {-999, 0},
                          {-1000, 4294967295},
                          {-1500, 4294967295},
                          {-2000, 4294967294},
                          {-40000, 4294967256},
                          {kHottest, 2147483},
                          {kColdest, 4292819813}};
    for (const Case &each : cases) {
        SCOPED_TRACE(each.thousandths);
        core().clearRecord();
        script(kRead, each.thousandths);
        const Answer answer = get(kTemperatureInstance);
        EXPECT_THAT(answer, isAccepted());
        EXPECT_EQ(answer.type, ASN_UNSIGNED);
        EXPECT_EQ(answer.integer, each.gauge);
        EXPECT_THAT(core().calls(), ElementsAre(kReadCall));
        EXPECT_THAT(core().logs(), IsEmpty());
    }
}

TEST_F(TemperatureTest, ATemperatureThatCannotBeReadIsAnError) {
    script(kRead, {});
    const Answer answer = get(kTemperatureInstance);
    EXPECT_THAT(answer, isRefused(SNMP_ERR_GENERR, SNMP_ERR_NOERROR));
    EXPECT_EQ(answer.type, ASN_NULL);
    EXPECT_THAT(core().logs(), ElementsAre(kFailure));
}

TEST_F(TemperatureTest, TheTemperatureIsReadBeforeTheModeIsLookedAt) {
    script(kRead, 40000);
    for (const int mode : modesExcept({MODE_GET})) {
        core().clearRecord();
        const Answer answer = Request(kTemperatureInstance, NewValue::integer(7)).runOwnHandler(mode);
        EXPECT_THAT(answer, isRefused(SNMP_ERR_GENERR, SNMP_ERR_NOERROR)) << mode;
        EXPECT_EQ(answer.integer, 7) << mode;
        EXPECT_THAT(core().calls(), ElementsAre(kReadCall)) << mode;
        EXPECT_THAT(core().logs(), IsEmpty()) << mode;
    }
}

TEST_F(TemperatureTest, ASetIsRefusedWithoutAReading) {
    EXPECT_EQ(Request(kTemperatureInstance, NewValue::integer(7)).run(MODE_SET_RESERVE1).requestError,
              SNMP_ERR_NOTWRITABLE);
    EXPECT_THAT(core().calls(), IsEmpty());
}

TEST_F(TemperatureTest, AChangeByMoreThanTwoDegreesIsATrap) {
    record(40000);
    EXPECT_THAT(poll(42000), IsEmpty());
    EXPECT_THAT(poll(43000), ElementsAre(43));
    EXPECT_THAT(poll(43000), IsEmpty());
    EXPECT_THAT(poll(41000), IsEmpty());
    EXPECT_THAT(poll(40000), ElementsAre(40));
}

TEST_F(TemperatureTest, DegreesAreComparedAfterTheirFractionsAreCutOff) {
    record(40000);
    EXPECT_THAT(poll(42999), IsEmpty()) << "by 2.999 degrees, but 42 and 40 are compared";
    record(40999);
    EXPECT_THAT(poll(43000), ElementsAre(43)) << "by 2.001 degrees";
    record(0);
    EXPECT_THAT(poll(-2999), IsEmpty());
    EXPECT_THAT(poll(-3000), ElementsAre(4294967293));
    record(1500);
    EXPECT_THAT(poll(-1999), IsEmpty()) << "1 and -1";
    EXPECT_THAT(poll(-2000), ElementsAre(4294967294));
}

TEST_F(TemperatureTest, ASlowDriftAddsUp) {
    record(40000);
    EXPECT_THAT(poll(41000), IsEmpty());
    EXPECT_THAT(poll(42000), IsEmpty());
    EXPECT_THAT(poll(43000), ElementsAre(43));
    EXPECT_THAT(poll(44000), IsEmpty());
    EXPECT_THAT(poll(45000), IsEmpty());
    EXPECT_THAT(poll(46000), ElementsAre(46));
}

TEST_F(TemperatureTest, TheLineOfATrapShowsTheChange) {
    record(40000);
    poll(42000);
    EXPECT_THAT(pollLines, IsEmpty());
    poll(43000);
    EXPECT_THAT(pollLines, ElementsAre(triggered("40 -> 43")));
    poll(-1500);
    EXPECT_THAT(pollLines, ElementsAre(triggered("43 -> -1")));
    EXPECT_THAT(core().calls(), ElementsAre(kReadCall));
}

TEST_F(TemperatureTest, ATrapNamesItsObjectAndCarriesAGauge) {
    record(40000);
    EXPECT_THAT(poll(-10000), ElementsAre(4294967286));
    ASSERT_THAT(traps::gSent, testing::SizeIs(1));
    EXPECT_EQ(traps::gSent[0].trapOid, requests::identifier(kTemperature));
    EXPECT_EQ(traps::gSent[0].valueName, requests::identifier(kTemperature));
    EXPECT_EQ(traps::gSent[0].valueType, ASN_UNSIGNED);
}

TEST_F(TemperatureTest, TheWidestChangeIsATrap) {
    record(kHottest);
    EXPECT_THAT(poll(kColdest), ElementsAre(4292819813));
    EXPECT_THAT(poll(kHottest), ElementsAre(2147483));
}

TEST_F(TemperatureTest, AFailedPollChangesNothing) {
    record(40000);
    EXPECT_THAT(poll({}), IsEmpty());
    EXPECT_THAT(pollLines, ElementsAre(kFailure));
    EXPECT_THAT(poll(42000), IsEmpty());
    EXPECT_THAT(poll(43000), ElementsAre(43));
}

TEST_F(TemperatureTest, AGetLeavesThePollsAlone) {
    record(40000);
    script(kRead, 50000);
    EXPECT_EQ(get(kTemperatureInstance).integer, 50);
    EXPECT_THAT(poll(42000), IsEmpty());
}

TEST_F(TemperatureTest, ATrapThatCannotBeSentCountsAsSent) {
    record(40000);
    QuarnSnmpTrapSend::DestroyInstance();
    EXPECT_THAT(poll(50000), IsEmpty());
    EXPECT_THAT(pollLines, ElementsAre(triggered("40 -> 50")));
    new QuarnSnmpTrapSend;
    EXPECT_THAT(poll(50000), IsEmpty());
}

class TemperatureFreshTest : public TemperatureTest {};

TEST_F(TemperatureFreshTest, TheFirstPollThatSucceedsSendsNothing) {
    expectInFreshProcess([] {
        EXPECT_THAT(poll({}), IsEmpty());
        EXPECT_THAT(poll(40000), IsEmpty());
        EXPECT_THAT(pollLines, IsEmpty());
        EXPECT_THAT(poll(42000), IsEmpty());
        EXPECT_THAT(poll(43000), ElementsAre(43));
    });
}

TEST_F(TemperatureFreshTest, NoReadingIsTakenForNone) {
    expectInFreshProcess([] {
        EXPECT_THAT(poll(kColdest), IsEmpty());
        EXPECT_THAT(poll(0), ElementsAre(0));
    });
}

TEST_F(TemperatureTest, APollOfAServiceThatDidNotOpenDoesNothing) {
    DeinitTemperature();
    core().fail("zorva_api_temperature_initiator_init", kRefused);
    EXPECT_FALSE(InitTemperature(GetIpcCookie()));
    EXPECT_THAT(valuesOf(PollTemperature), IsEmpty());
    EXPECT_THAT(core().calls(), IsEmpty());
    EXPECT_THAT(pollLines, IsEmpty());
}
