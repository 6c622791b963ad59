// SPDX-License-Identifier: Apache-2.0
#include <string>

#include "positioning_call_texts.h"
#include "positioning_test.h"
#include "snmp_utils.h"

using positioning::gLastPanTimeout;
using positioning::gLastTiltTimeout;
using positioning::gLastZoomTimeout;

namespace {

const std::string kArc = "1.3.6.1.4.1.1206.4.2.7.";

struct Object {
    const char *name;
    const char *end; ///< of the identifier
    bool writable;
    unsigned char type;
};

const Object kScalars[] = {{"rangePanLeftLimit", "1.2", false, ASN_INTEGER},
                           {"rangePanRightLimit", "1.3", false, ASN_INTEGER},
                           {"rangePanHomePosition", "1.4", false, ASN_INTEGER},
                           {"rangeTrueNorthOffset", "1.5", true, ASN_INTEGER},
                           {"rangeMinimumPanStepAngle", "1.11", false, ASN_INTEGER},
                           {"timeoutPan", "2.1", true, ASN_INTEGER},
                           {"positionPan", "4.1", true, ASN_OCTET_STR},
                           {"rangeTiltUpLimit", "1.6", false, ASN_INTEGER},
                           {"rangeTiltDownLimit", "1.7", false, ASN_INTEGER},
                           {"rangeMinimumTiltStepAngle", "1.12", false, ASN_INTEGER},
                           {"timeoutTilt", "2.2", true, ASN_INTEGER},
                           {"positionTilt", "4.2", true, ASN_OCTET_STR},
                           {"rangeZoomLimit", "1.8", false, ASN_INTEGER},
                           {"timeoutZoom", "2.3", true, ASN_INTEGER},
                           {"positionZoomLens", "4.3", true, ASN_OCTET_STR}};
constexpr std::size_t kReduced = 12;
constexpr std::size_t kFull = 15;

std::string instanceOf(const Object &object) {
    return kArc + object.end + ".0";
}

/** The lines of a start, followed by those of the first `count` registrations. */
std::vector<LogLine> startLines(std::vector<LogLine> first, std::size_t count) {
    for (std::size_t i = 0; i < count; ++i) {
        first.push_back(logs::debug("registerScalar: Registration for "s + kScalars[i].name + " OID OK"));
        first.push_back(logs::info("InitPositioning: registerScalar="s + kScalars[i].name));
    }
    return first;
}

/** Exactly the first `count` objects are registered, each with its own name. */
void expectRegistered(std::size_t count) {
    for (std::size_t i = 0; i < kFull; ++i) {
        EXPECT_EQ(requests::registeredName(kArc + kScalars[i].end), i < count ? kScalars[i].name : "");
    }
}

class PositioningStartTest : public PositioningTest {};

const LogLine kTimeoutLine = logs::info("InitPositioning: get_velocity_command_timeout, 5000 milliseconds");
const LogLine kNoTargetLine = logs::error("no zorva API positionings");

} // namespace

TEST_F(PositioningStartTest, OpensTheServiceAndReadsItsTimeout) {
    EXPECT_TRUE(InitPositioning(GetIpcCookie()));
    EXPECT_THAT(core().calls(), ElementsAre("getTargetIds(\"positioning\")",
                                            "zorva_api_positioning_initiator_init(ipc, log, &, 0, null)",
                                            calls::of(service::kGetTimeout, "&")));
    EXPECT_EQ(positioning::gPositionings.at(0), "positioning/1");
    for (const std::uint32_t timeout : {gLastPanTimeout, gLastTiltTimeout, gLastZoomTimeout}) {
        EXPECT_EQ(timeout, 5000U);
    }
}

TEST_F(PositioningStartTest, RegistersFifteenObjectsInOrder) {
    EXPECT_TRUE(InitPositioning(GetIpcCookie()));
    EXPECT_EQ(core().logs(), startLines({kTimeoutLine}, kFull));
    expectRegistered(kFull);
}

TEST_F(PositioningStartTest, EachObjectIsAnsweredByItsOwnHandler) {
    connect();
    for (const Object &object : kScalars) {
        core().clearRecord();
        const Answer answer = get(instanceOf(object));
        EXPECT_THAT(answer, isAccepted()) << object.name;
        EXPECT_EQ(answer.type, object.type) << object.name;
        ASSERT_FALSE(core().logs().empty()) << object.name;
        EXPECT_EQ(core().logs().front(), logs::debug("handle_"s + object.name + ": Enter."));
        EXPECT_EQ(core().logs().back(), logs::debug("handle_"s + object.name + ": Done."));
    }
}

TEST_F(PositioningStartTest, TheIdentifierItselfIsNoInstance) {
    connect();
    for (const Object &object : kScalars) {
        EXPECT_NE(get(kArc + object.end).type, object.type) << object.name;
        EXPECT_NE(get(kArc + object.end + ".1").type, object.type) << object.name;
    }
}

TEST_F(PositioningStartTest, ATimeoutOfZeroIsForEver) {
    core().answer(service::kGetTimeout, {std::int64_t{0}});
    EXPECT_TRUE(InitPositioning(GetIpcCookie()));
    EXPECT_EQ(core().logs().front(), logs::info("InitPositioning: get_velocity_command_timeout, 0 milliseconds"));
    for (const std::uint32_t timeout : {gLastPanTimeout, gLastTiltTimeout, gLastZoomTimeout}) {
        EXPECT_EQ(timeout, 0xFFFFFFFF);
    }
    for (const char *end : {"2.1.0", "2.2.0", "2.3.0"}) {
        EXPECT_EQ(get(kArc + end).integer, -1);
    }
}

TEST_F(PositioningStartTest, AnyOtherTimeoutIsKept) {
    for (const std::uint32_t timeout : {1U, 65536U, 0x80000000U, 0xFFFFFFFFU}) {
        core().answer(service::kGetTimeout, {std::int64_t{timeout}});
        core().clearRecord();
        EXPECT_TRUE(InitPositioning(GetIpcCookie()));
        EXPECT_EQ(core().logs().front(), logs::info("InitPositioning: get_velocity_command_timeout, " +
                                                    std::to_string(static_cast<int>(timeout)) + " milliseconds"));
        for (const std::uint32_t kept : {gLastPanTimeout, gLastTiltTimeout, gLastZoomTimeout}) {
            EXPECT_EQ(kept, timeout);
        }
        DeinitPositioning();
        UnregisterAll();
        positioning::gApiCookie = nullptr;
    }
}

TEST_F(PositioningStartTest, ATimeoutThatCannotBeReadStaysAsItWas) {
    core().fail(service::kGetTimeout, kRefused);
    for (const std::uint32_t before : {0U, 3000U}) {
        gLastPanTimeout = before;
        core().clearRecord();
        EXPECT_TRUE(InitPositioning(GetIpcCookie()));
        EXPECT_EQ(core().logs(), startLines({logs::failed(texts::kGetTimeout)}, kFull));
        for (const std::uint32_t timeout : {gLastPanTimeout, gLastTiltTimeout, gLastZoomTimeout}) {
            EXPECT_EQ(timeout, before == 0 ? 0xFFFFFFFF : before);
        }
        expectRegistered(kFull);
        DeinitPositioning();
        UnregisterAll();
        positioning::gApiCookie = nullptr;
    }
}

TEST_F(PositioningStartTest, WithoutATargetThereAreTwelveObjects) {
    const scripted::Targets none[] = {{false, {}}, {true, {}}, {false, {"positioning/9"}}};
    for (const scripted::Targets &targets : none) {
        core().targetsOnce("positioning", targets);
        core().clearRecord();
        EXPECT_TRUE(InitPositioning(GetIpcCookie()));
        EXPECT_THAT(core().calls(), ElementsAre("getTargetIds(\"positioning\")"));
        EXPECT_EQ(core().logs(), startLines({kNoTargetLine}, kReduced));
        expectRegistered(kReduced);
        UnregisterAll();
        positioning::gPositionings.clear();
    }
}

TEST_F(PositioningStartTest, AServiceThatDoesNotOpenLeavesTwelveObjects) {
    core().fail(service::kInit, kRefused);
    EXPECT_TRUE(InitPositioning(GetIpcCookie()));
    EXPECT_THAT(core().calls(), ElementsAre("getTargetIds(\"positioning\")",
                                            "zorva_api_positioning_initiator_init(ipc, log, &, 0, null)"));
    EXPECT_EQ(core().logs(), startLines({logs::error("InitPositioning: failed positioning initiator init")}, kReduced));
    expectRegistered(kReduced);
    EXPECT_EQ(positioning::gApiCookie, nullptr);
}

TEST_F(PositioningStartTest, WhatAFailedOpeningLeavesBehindIsNoConnection) {
    core().fail(service::kInit, kRefused);
    // A library may well have filled the handle before it noticed.
    core().during(service::kInit, [] { positioning::gApiCookie = core().open("rubbish"); });
    EXPECT_TRUE(InitPositioning(GetIpcCookie()));
    EXPECT_EQ(positioning::gApiCookie, nullptr);
    expectRegistered(kReduced);
}

TEST_F(PositioningStartTest, AnOpenConnectionWithoutATargetRegistersNothing) {
    core().targets("positioning", {});
    positioning::gApiCookie = core().open("positioning");
    EXPECT_TRUE(InitPositioning(GetIpcCookie()));
    EXPECT_THAT(core().logs(), ElementsAre(kNoTargetLine));
    expectRegistered(0);
}

TEST_F(PositioningStartTest, ARefusedRegistrationDoesNotMatter) {
    std::vector<oid> taken = requests::identifier(kArc + "1.3");
    ASSERT_TRUE(
        registerScalar({"taken", [](auto...) { return SNMP_ERR_NOERROR; }, taken.data(), 12, HANDLER_CAN_RWRITE}));
    core().clearRecord();
    EXPECT_TRUE(InitPositioning(GetIpcCookie()));
    std::vector<LogLine> expected = startLines({kTimeoutLine}, kFull);
    expected.at(3) = logs::error("registerScalar: Registration for rangePanRightLimit OID not OK");
    EXPECT_EQ(core().logs(), expected);
    EXPECT_EQ(requests::registeredName(kArc + "1.3"), "taken");
    UnregisterAll();
}

TEST_F(PositioningStartTest, TheEndClosesTheService) {
    connect();
    DeinitPositioning();
    EXPECT_THAT(core().calls(), ElementsAre("zorva_api_positioning_initiator_deinit(positioning)"));
}

TEST_F(PositioningStartTest, TheEndClosesNothingThatWasNotOpened) {
    startWithoutService();
    DeinitPositioning();
    EXPECT_THAT(core().calls(), IsEmpty());
    EXPECT_THAT(core().logs(), IsEmpty());
}

TEST_F(PositioningStartTest, ASecondStartUsesItsOwnConnection) {
    connect();
    DeinitPositioning();
    UnregisterAll();
    connect();
    EXPECT_THAT(get(kArc + "1.2.0"), isAccepted());
    EXPECT_THAT(core().calls(), ElementsAre(calls::getSoftPositions()));
}

TEST_F(PositioningStartTest, WithoutAServiceTheObjectsAnswerWhatTheModuleHolds) {
    startWithoutService();
    const long expected[] = {0, 0, 65535, 65535, 1, 0, 0, 0, 0, 1, 0, 0};
    for (std::size_t i = 0; i < kReduced; ++i) {
        const Answer answer = get(instanceOf(kScalars[i]));
        EXPECT_THAT(answer, isAccepted()) << kScalars[i].name;
        EXPECT_EQ(answer.type, kScalars[i].type) << kScalars[i].name;
        EXPECT_EQ(answer.integer, expected[i]) << kScalars[i].name;
        EXPECT_EQ(answer.octets, kScalars[i].type == ASN_OCTET_STR ? octets({0, 0, 0, 0}) : "") << kScalars[i].name;
    }
    EXPECT_THAT(core().calls(), IsEmpty());
}

TEST_F(PositioningStartTest, WithoutAServiceCommandsAreAcceptedAndMoveNothing) {
    startWithoutService();
    for (const char *end : {"4.1.0", "4.2.0"}) {
        for (const unsigned int mode : {0U, 1U, 2U, 3U}) {
            const std::string value = command(mode, mode == 0 ? 0 : 5, 9000);
            set(kArc + end, NewValue::text(value));
            EXPECT_EQ(get(kArc + end).octets, value);
        }
    }
    set(kArc + "2.1.0", NewValue::integer(700));
    set(kArc + "1.5.0", NewValue::integer(0));
    EXPECT_EQ(get(kArc + "2.1.0").integer, 700);
    EXPECT_EQ(get(kArc + "1.5.0").integer, 0);
    EXPECT_THAT(core().calls(), IsEmpty());
    EXPECT_THAT(core().logs(3), IsEmpty());
}
