// SPDX-License-Identifier: Apache-2.0
#include <ostream>
#include <string>

#include "motion_commands.h"
#include "positioning_call_texts.h"
#include "positioning_test.h"
#include "timeout_objects.h"

namespace {

struct Timeout {
    Axis axis;
    const char *name;
    Netsnmp_Node_Handler *handler;
    const char *instance;
    std::uint32_t *kept;
    std::uint16_t *pending;
    const char *word;
    const char *failedCall;
};

void PrintTo(const Timeout &each, std::ostream *stream) {
    *stream << each.name;
}

const Timeout kTimeouts[] = {
    {kPanAxis, "handle_timeoutPan", positioning::handle_timeoutPan, oids::timeoutPan, &positioning::gLastPanTimeout,
     &positioning::gNewPanTimeout, "pan", texts::kSetPanTimeout},
    {kTiltAxis, "handle_timeoutTilt", positioning::handle_timeoutTilt, oids::timeoutTilt,
     &positioning::gLastTiltTimeout, &positioning::gNewTiltTimeout, "tilt", texts::kSetTiltTimeout},
    {kZoomAxis, "handle_timeoutZoom", positioning::handle_timeoutZoom, oids::timeoutZoom,
     &positioning::gLastZoomTimeout, &positioning::gNewZoomTimeout, "zoom", texts::kSetZoomTimeout},
};

class PositioningTimeoutTest : public PositioningTest, public testing::WithParamInterface<Timeout> {
protected:
    void SetUp() override {
        PositioningTest::SetUp();
        connect();
    }

    static LogLine enter() {
        return logs::debug(GetParam().name + ": Enter."s);
    }

    static LogLine done() {
        return logs::debug(GetParam().name + ": Done."s);
    }

    /** One phase on the handler itself, with the record of this phase only. */
    static Answer phase(int mode, const NewValue &value) {
        core().clearRecord();
        return DirtyRequest(GetParam().instance, value).run(GetParam().handler, mode);
    }
};

INSTANTIATE_TEST_SUITE_P(Axes, PositioningTimeoutTest, testing::ValuesIn(kTimeouts),
                         [](const auto &each) { return std::string(each.param.word); });

} // namespace

TEST_P(PositioningTimeoutTest, AGetAnswersTheKeptValueAndAsksNobody) {
    for (const std::uint32_t kept : {0U, 1U, 5000U, 65535U, 0x7FFFFFFFU, 0x80000000U, 0xFFFFFFFFU}) {
        *GetParam().kept = kept;
        const Answer answer = get(GetParam().instance);
        EXPECT_THAT(answer, isAccepted());
        EXPECT_EQ(answer.type, ASN_INTEGER);
        EXPECT_EQ(answer.integer, static_cast<std::int32_t>(kept));
    }
    EXPECT_THAT(core().calls(), IsEmpty());
}

TEST_P(PositioningTimeoutTest, ASetTellsTheServiceAndChangesItsOwnValueOnly) {
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
        core().clearRecord();
        set(GetParam().instance, NewValue::integer(each.value));
        EXPECT_THAT(core().calls(), ElementsAre(calls::setTimeout(each.told)));
        EXPECT_EQ(get(GetParam().instance).integer, static_cast<long>(each.kept));
        for (const Timeout &other : kTimeouts) {
            EXPECT_EQ(*other.kept, other.axis == GetParam().axis ? each.kept : 5000U) << other.name;
        }
    }
}

TEST_P(PositioningTimeoutTest, ACommitLogsWhatTheServiceWasTold) {
    for (const auto &[value, told] : {std::pair(700L, "700"), std::pair(0L, "65535"), std::pair(-1L, "65535")}) {
        phase(MODE_SET_ACTION, NewValue::integer(value));
        EXPECT_THAT(core().logs(), ElementsAre(enter(), done()));
        EXPECT_THAT(core().calls(), IsEmpty());
        EXPECT_THAT(phase(MODE_SET_COMMIT, NewValue::integer(value)), isAccepted());
        EXPECT_THAT(core().logs(), ElementsAre(enter(),
                                               logs::info(GetParam().name + ": set_velocity_command_timeout, "s + told +
                                                          " milliseconds"),
                                               done()));
    }
}

TEST_P(PositioningTimeoutTest, ACommitThatTheServiceRefusesSucceeds) {
    core().fail(service::kSetTimeout, kRefused);
    phase(MODE_SET_ACTION, NewValue::integer(700));
    EXPECT_THAT(phase(MODE_SET_COMMIT, NewValue::integer(700)), isAccepted());
    EXPECT_THAT(core().logs(), ElementsAre(enter(), logs::failed(GetParam().failedCall), done()));
    EXPECT_THAT(core().calls(), ElementsAre(calls::setTimeout(700)));
    EXPECT_EQ(*GetParam().kept, 700U);
}

TEST_P(PositioningTimeoutTest, ASetToZeroLetsMovesRunForEver) {
    set(GetParam().instance, NewValue::integer(0));
    core().clearRecord();
    positioning::continuousMovement(GetParam().axis, 0);
    EXPECT_EQ(core().calls().back(), calls::run(GetParam().axis, 0, 0xFFFFFFFF));
}

TEST_P(PositioningTimeoutTest, ASetBoundsTheNextMove) {
    set(GetParam().instance, NewValue::integer(700));
    core().clearRecord();
    positioning::continuousMovement(GetParam().axis, 0);
    EXPECT_EQ(core().calls().back(), calls::run(GetParam().axis, 0, 700));
}

TEST_P(PositioningTimeoutTest, AValueAboveTheRangeIsRefused) {
    for (const long value : {65536L, 65537L, 131072L, 2147483647L}) {
        EXPECT_THAT(phase(MODE_SET_RESERVE2, NewValue::integer(value)),
                    isRefused(SNMP_ERR_GENERR, SNMP_ERR_WRONGVALUE));
        EXPECT_THAT(core().logs(),
                    ElementsAre(enter(),
                                logs::error(GetParam().name + ": "s + GetParam().word + " timeout (" +
                                            std::to_string(value) + ") outside range 0-65535 milliseconds"),
                                done()));
    }
    for (const long value : {65535L, 0L, -1L, -2147483648L}) {
        EXPECT_THAT(phase(MODE_SET_RESERVE2, NewValue::integer(value)), isAccepted()) << value;
        EXPECT_THAT(core().logs(), ElementsAre(enter(), done())) << value;
    }
    EXPECT_EQ(*GetParam().kept, 5000U);
}

TEST_P(PositioningTimeoutTest, ThePendingValueIsKeptApartUntilTheCommit) {
    EXPECT_THAT(phase(MODE_SET_ACTION, NewValue::integer(0x12345)), isAccepted());
    EXPECT_EQ(*GetParam().pending, 0x2345);
    EXPECT_EQ(*GetParam().kept, 5000U);
    EXPECT_THAT(phase(MODE_SET_COMMIT, NewValue::integer(9)), isAccepted());
    EXPECT_EQ(*GetParam().kept, 0x2345U) << "the pending value counts, not the request's";
    EXPECT_THAT(core().calls(), ElementsAre(calls::setTimeout(0x2345)));
}

TEST_P(PositioningTimeoutTest, AnUndoTakesTheKeptValueBack) {
    for (const std::uint32_t kept : {5000U, 0U, 0x12345U, 0xFFFFFFFFU}) {
        *GetParam().kept = kept;
        setAndUndo(GetParam().instance, NewValue::integer(700));
        EXPECT_EQ(*GetParam().pending, kept & 0xFFFFU);
        EXPECT_EQ(*GetParam().kept, kept);
    }
    EXPECT_THAT(core().calls(), IsEmpty());
}

TEST_P(PositioningTimeoutTest, WithoutAConnectionTheValueChangesAllTheSame) {
    positioning::gApiCookie = nullptr;
    for (const std::uint32_t value : {0U, 700U}) {
        phase(MODE_SET_ACTION, NewValue::integer(value));
        EXPECT_THAT(phase(MODE_SET_COMMIT, NewValue::integer(value)), isAccepted());
        EXPECT_EQ(*GetParam().kept, value);
        // The zoom object never meets this, as it exists with a connection only.
        if (GetParam().axis != kZoomAxis) {
            EXPECT_THAT(core().calls(), IsEmpty());
            EXPECT_THAT(core().logs(), ElementsAre(enter(), done()));
        }
    }
}
