// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * The time-outs of continuous moves, one object for each axis.
 */
#include "positioning_call_texts.h"
#include "positioning_test.h"

namespace {

struct Timeout : Row {
    Axis axis;
    std::string handler;
    const char *instance;
    std::uint32_t *kept;
    const char *failedCall;
};

const Timeout kTimeouts[] = {
    row<Timeout>("pan", kPanAxis, "handle_timeoutPan", oids::timeoutPan, &positioning::gLastPanTimeout,
                 texts::kSetPanTimeout),
    row<Timeout>("tilt", kTiltAxis, "handle_timeoutTilt", oids::timeoutTilt, &positioning::gLastTiltTimeout,
                 texts::kSetTiltTimeout),
    row<Timeout>("zoom", kZoomAxis, "handle_timeoutZoom", oids::timeoutZoom, &positioning::gLastZoomTimeout,
                 texts::kSetZoomTimeout),
};

class PositioningTimeoutTest : public ConnectedPositioningTest, public testing::WithParamInterface<Timeout> {
protected:
    /** One phase on the object's own handler, with the record of this phase only. */
    static Answer phase(int mode, long value) {
        core().clearRecord();
        return DirtyRequest(GetParam().instance, NewValue::integer(value)).runOwnHandler(mode);
    }
    static void expectQuiet() {
        EXPECT_EQ(core().logs(), logs::from(GetParam().handler));
        EXPECT_THAT(core().calls(), IsEmpty());
    }
    static void expectKept(std::uint32_t kept) {
        EXPECT_EQ(*GetParam().kept, kept);
        EXPECT_THAT(get(GetParam().instance), isInteger(static_cast<std::int32_t>(kept)));
    }
};

INSTANTIATE_TEST_SUITE_P(Axes, PositioningTimeoutTest, testing::ValuesIn(kTimeouts), nameOf<Timeout>);

} // namespace

TEST_P(PositioningTimeoutTest, AGetAnswersTheKeptValueWithoutACall) {
    for (const std::uint32_t kept : {0U, 1U, 5000U, 65535U, 0x7FFFFFFFU, 0x80000000U, 0xFFFFFFFFU}) {
        *GetParam().kept = kept;
        expectKept(kept);
    }
    EXPECT_THAT(core().calls(), IsEmpty());
}

TEST_P(PositioningTimeoutTest, ACommitTellsTheServiceAndChangesItsOwnValueOnly) {
    struct Case {
        long value;
        std::uint32_t kept;
        std::uint32_t told;
    };
    const Case cases[] = {
        {1, 1, 1},          {700, 700, 700},    {32768, 32768, 32768}, {65535, 65535, 65535},   {0, 0, 65535},
        {-1, 65535, 65535}, {-65536, 0, 65535}, {-65535, 1, 1},        {-2147483648L, 0, 65535}};
    for (const Case &each : cases) {
        SCOPED_TRACE(each.value);
        set(GetParam().instance, NewValue::integer(each.value));
        EXPECT_THAT(phase(MODE_SET_COMMIT, each.value), isAccepted());
        EXPECT_THAT(core().calls(), ElementsAre(calls::setTimeout(each.told)));
        EXPECT_EQ(core().logs(),
                  logs::from(GetParam().handler, {logs::info(GetParam().handler + ": set_velocity_command_timeout, " +
                                                             std::to_string(each.told) + " milliseconds")}));
        expectKept(each.kept);
        for (const Timeout &other : kTimeouts) {
            EXPECT_EQ(*other.kept, other.axis == GetParam().axis ? each.kept : 5000U) << other.name;
        }
    }
}

TEST_P(PositioningTimeoutTest, ACommitThatTheServiceRefusesSucceeds) {
    core().fail(service::kSetTimeout, kRefused);
    phase(MODE_SET_ACTION, 700);
    EXPECT_THAT(phase(MODE_SET_COMMIT, 700), isAccepted());
    EXPECT_EQ(core().logs(), logs::from(GetParam().handler, {logs::failed(GetParam().failedCall)}));
    EXPECT_THAT(core().calls(), ElementsAre(calls::setTimeout(700)));
    expectKept(700);
}

TEST_P(PositioningTimeoutTest, AValueAboveTheRangeIsRefused) {
    for (const long value : {65536L, 65537L, 131072L, 2147483647L}) {
        EXPECT_THAT(phase(MODE_SET_RESERVE2, value), isRefused(SNMP_ERR_GENERR, SNMP_ERR_WRONGVALUE));
        EXPECT_EQ(core().logs(),
                  logs::from(GetParam().handler,
                             {logs::error(GetParam().handler + ": " + GetParam().name + " timeout (" +
                                          std::to_string(value) + ") outside range 0-65535 milliseconds")}));
    }
    for (const long value : {65535L, 0L, -1L, -2147483648L}) {
        EXPECT_THAT(phase(MODE_SET_RESERVE2, value), isAccepted()) << value;
        expectQuiet();
    }
    expectKept(5000);
}

TEST_P(PositioningTimeoutTest, TheLow16BitsOfThePendingValueCount) {
    EXPECT_THAT(phase(MODE_SET_ACTION, 0x12345), isAccepted());
    expectQuiet();
    expectKept(5000);
    EXPECT_THAT(phase(MODE_SET_COMMIT, 9), isAccepted());
    EXPECT_THAT(core().calls(), ElementsAre(calls::setTimeout(0x2345)));
    expectKept(0x2345);
}

TEST_P(PositioningTimeoutTest, AnUndoRestoresTheLow16BitsOfTheKeptValue) {
    for (const std::uint32_t kept : {5000U, 0U, 0x12345U, 0xFFFFFFFFU}) {
        *GetParam().kept = kept;
        core().clearRecord();
        setAndUndo(GetParam().instance, NewValue::integer(700));
        EXPECT_THAT(core().calls(), IsEmpty());
        expectKept(kept);
        phase(MODE_SET_COMMIT, 700);
        expectKept(kept & 0xFFFFU);
    }
}

TEST_P(PositioningTimeoutTest, WithoutAConnectionTheValueChangesAllTheSame) {
    positioning::gApiCookie = nullptr;
    for (const std::uint32_t value : {0U, 700U}) {
        phase(MODE_SET_ACTION, value);
        EXPECT_THAT(phase(MODE_SET_COMMIT, value), isAccepted());
        // The object of the zoom exists with a connection only.
        if (GetParam().axis != kZoomAxis) {
            expectQuiet();
        }
        expectKept(value);
    }
}
