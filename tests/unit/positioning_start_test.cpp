// SPDX-License-Identifier: Apache-2.0
#include <string>

#include "positioning_call_texts.h"
#include "positioning_test.h"
#include "snmp_utils.h"

namespace {

class PositioningStartTest : public PositioningTest {
protected:
    static void start() {
        EXPECT_TRUE(InitPositioning(GetIpcCookie()));
    }
    /** Starts anew. @return the first line of the start */
    static LogLine restart() {
        DeinitPositioning();
        UnregisterAll();
        positioning::gApiCookie = nullptr;
        core().clearRecord();
        start();
        return core().logs().front();
    }
    static void expectTimeouts(std::uint32_t expected) {
        using namespace positioning;
        for (const std::uint32_t timeout : {gLastPanTimeout, gLastTiltTimeout, gLastZoomTimeout}) {
            EXPECT_EQ(timeout, expected);
        }
        for (const char *instance : {oids::timeoutPan, oids::timeoutTilt, oids::timeoutZoom}) {
            EXPECT_EQ(get(instance).integer, static_cast<std::int32_t>(expected));
        }
    }
};

} // namespace

TEST_F(PositioningStartTest, TheTimeoutsAreTheServicesAndZeroIsInfinite) {
    for (const std::uint32_t timeout : {5000U, 1U, 0U, 65536U, 0x80000000U, 0xFFFFFFFFU}) {
        core().answer(service::kGetTimeout, {std::int64_t{timeout}});
        EXPECT_EQ(restart(), logs::info("InitPositioning: get_velocity_command_timeout, " +
                                        std::to_string(static_cast<int>(timeout)) + " milliseconds"));
        expectTimeouts(timeout != 0 ? timeout : 0xFFFFFFFF);
    }
    EXPECT_EQ(positioning::gPositionings.at(0), "positioning/1");
}

TEST_F(PositioningStartTest, AnUnreadableTimeoutStaysAsItWas) {
    core().fail(service::kGetTimeout, kRefused);
    for (const std::uint32_t before : {0U, 3000U}) {
        positioning::gLastPanTimeout = before;
        EXPECT_EQ(restart(), logs::failed(texts::kGetTimeout));
        EXPECT_EQ(core().logs().size(), 1U + 2U * 15U) << "the line, and two for each object";
        expectTimeouts(before == 0 ? 0xFFFFFFFF : before);
    }
}

TEST_F(PositioningStartTest, AFailedOpeningIsNoConnection) {
    core().fail(service::kInit, kRefused);
    // A library may well have filled the handle before it noticed.
    core().during(service::kInit, [] { positioning::gApiCookie = core().open("rubbish"); });
    start();
    EXPECT_EQ(positioning::gApiCookie, nullptr);
    EXPECT_EQ(requests::registeredName(oids::registered::positionTilt), "positionTilt");
    EXPECT_EQ(requests::registeredName(oids::registered::positionZoomLens), "");
}

TEST_F(PositioningStartTest, AnOpenConnectionWithoutATargetRegistersNothing) {
    core().targets("positioning", {});
    positioning::gApiCookie = core().open("positioning");
    start();
    EXPECT_THAT(core().logs(), ElementsAre(logs::error("no zorva API positionings")));
    EXPECT_EQ(requests::registeredName(oids::registered::positionPan), "");
}

TEST_F(PositioningStartTest, ASecondStartUsesItsOwnConnection) {
    connect();
    DeinitPositioning();
    UnregisterAll();
    connect();
    EXPECT_THAT(get(oids::rangePanLeftLimit), isAccepted());
    EXPECT_THAT(core().calls(), ElementsAre(calls::kGetSoftPositions));
}

TEST_F(PositioningStartTest, WithoutAServiceTheObjectsAnswerTheStoredValues) {
    startWithoutService();
    const std::pair<const char *, long> integers[] = {
        {oids::rangePanLeftLimit, 0},         {oids::rangePanRightLimit, 0},
        {oids::rangePanHomePosition, 65535},  {oids::rangeTrueNorthOffset, 65535},
        {oids::rangeMinimumPanStepAngle, 1},  {oids::timeoutPan, 0},
        {oids::rangeTiltUpLimit, 0},          {oids::rangeTiltDownLimit, 0},
        {oids::rangeMinimumTiltStepAngle, 1}, {oids::timeoutTilt, 0}};
    for (const auto &[instance, value] : integers) {
        EXPECT_THAT(get(instance), isInteger(value)) << instance;
    }
    for (const char *instance : {oids::positionPan, oids::positionTilt}) {
        EXPECT_THAT(get(instance), isOctets(octets({0, 0, 0, 0}))) << instance;
    }
    EXPECT_THAT(core().calls(), IsEmpty());
}

TEST_F(PositioningStartTest, WithoutAServiceCommandsAreAcceptedAndMoveNothing) {
    startWithoutService();
    for (const char *instance : {oids::positionPan, oids::positionTilt}) {
        for (const unsigned int mode : {0U, 1U, 2U, 3U}) {
            const std::string value = command(mode, mode == 0 ? 0 : 5, 9000);
            set(instance, NewValue::text(value));
            EXPECT_EQ(get(instance).octets, value);
        }
    }
    set(oids::timeoutPan, NewValue::integer(700));
    set(oids::rangeTrueNorthOffset, NewValue::integer(0));
    EXPECT_EQ(get(oids::timeoutPan).integer, 700);
    EXPECT_EQ(get(oids::rangeTrueNorthOffset).integer, 0);
    EXPECT_THAT(core().calls(), IsEmpty());
    EXPECT_THAT(core().logs(3), IsEmpty());
}
