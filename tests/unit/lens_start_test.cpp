// SPDX-License-Identifier: Apache-2.0
#include "lens_start_lines.h"
#include "snmp_utils.h"

namespace lens_tests {

namespace {

class LensStartTest : public LensTest, public testing::WithParamInterface<Drive> {
protected:
    void SetUp() override {
        LensTest::SetUp();
        offer(GetParam());
    }

    static bool init() {
        return GetParam().init(GetIpcCookie());
    }

    static void fail(const std::string &operation) {
        core().fail(GetParam().function(operation), kRefused);
    }

    static void discoveries(std::size_t count, const scripted::Targets &targets) {
        for (std::size_t i = 0; i < count; ++i) {
            core().targetsOnce(GetParam().service, targets);
        }
    }

    static void expectRegistered(bool registered) {
        for (const Object &object : GetParam().objects) {
            EXPECT_EQ(requests::registeredName(object.identifier()), registered ? object.name : "");
        }
    }

    /** Nothing but these calls, and those that open the exposure service all the same. */
    static void expectDown(const Lines &calls, const std::string &text) {
        Lines expected = calls;
        if (GetParam().opensExposure) {
            expected.insert(expected.end(), {kDiscoverExposure, openCall("exposure")});
        }
        EXPECT_EQ(core().calls(), expected);
        EXPECT_THAT(core().logs(), ElementsAre(logs::error(text)));
        expectRegistered(false);
    }

    static void expectUp(std::size_t discoveries) {
        EXPECT_EQ(core().calls(), startCalls(GetParam(), discoveries));
        EXPECT_EQ(core().logs(), startLines(GetParam(), logs::info(GetParam().rangeLine(kLens))));
        expectRegistered(true);
    }

    static void moveToMinimum() {
        forget();
        commit(GetParam().position(), command(2, 0, 0));
    }

    static std::string initiatorLine() {
        return std::string(GetParam().initName) + ": failed " + GetParam().initiatorText + " initiator init";
    }
};

const scripted::Targets kNone{false, {}};

INSTANTIATE_TEST_SUITE_P(Drives, LensStartTest, testing::ValuesIn(allDrives()), titleOf);

} // namespace

TEST_P(LensStartTest, OpensTheServiceReadsTheLimitsAndRegistersInOrder) {
    EXPECT_TRUE(init());
    expectUp(1);
    EXPECT_THAT(core().sleeps(), IsEmpty());
}

TEST_P(LensStartTest, LogsLimitsOfAnySize) {
    const Lens lens = GetParam().isUnsigned ? Lens{4294967295, 2147483648, 4000000000}
                                            : Lens{-2147483648, 2147483647, -1, -7, -2147483648};
    answer(GetParam(), lens);
    EXPECT_TRUE(init());
    EXPECT_EQ(core().logs().front(), logs::info(GetParam().rangeLine(lens)));
}

TEST_P(LensStartTest, LimitsThatCannotBeReadAreLogged) {
    fail(GetParam().readRange);
    EXPECT_TRUE(init());
    EXPECT_EQ(core().calls(), startCalls(GetParam()));
    EXPECT_EQ(core().logs(), startLines(GetParam(), logs::failed(GetParam().readRangeText)));
    expectRegistered(true);
    moveToMinimum();
    EXPECT_THAT(core().calls(), ElementsAre(GetParam().moveCall(0, 0)));
}

TEST_P(LensStartTest, LimitsThatCannotBeReadAreNotThoseOfAnEarlierStart) {
    ASSERT_TRUE(init());
    GetParam().deinit();
    UnregisterAll();
    fail(GetParam().readRange);
    ASSERT_TRUE(init());
    moveToMinimum();
    EXPECT_THAT(core().calls(), ElementsAre(GetParam().moveCall(0, 0)));
}

TEST_P(LensStartTest, AServiceThatDoesNotOpenRegistersNothing) {
    fail("initiator_init");
    // The zoom stepper says that it is up nevertheless; that is kept.
    EXPECT_EQ(init(), GetParam().title == std::string("ZoomStepper"));
    expectDown({discoverCall(GetParam()), openCall(GetParam().service)}, initiatorLine());
    EXPECT_THAT(core().sleeps(), IsEmpty());
}

TEST_P(LensStartTest, AServiceThatNeverComesIsGivenUp) {
    discoveries(6, kNone);
    EXPECT_FALSE(init());
    if (GetParam().waits) {
        expectDown(Lines(6, discoverCall(GetParam())), GetParam().noTargetText);
        EXPECT_THAT(core().sleeps(), ElementsAre(2, 2, 2, 2, 2));
    } else {
        expectDown({discoverCall(GetParam())}, GetParam().noTargetText);
        EXPECT_THAT(core().sleeps(), IsEmpty());
    }
}

TEST_P(LensStartTest, AServiceThatComesLateIsWaitedForIfTheFeatureWaits) {
    for (std::size_t late = 1; late <= 5; ++late) {
        SCOPED_TRACE(late);
        forget();
        core().reset();
        openCore();
        offer(GetParam());
        discoveries(late, kNone);
        EXPECT_EQ(init(), GetParam().waits);
        if (GetParam().waits) {
            expectUp(late + 1);
            EXPECT_EQ(core().sleeps(), std::vector<unsigned int>(late, 2));
        } else {
            expectDown({discoverCall(GetParam())}, GetParam().noTargetText);
            EXPECT_THAT(core().sleeps(), IsEmpty());
        }
        UnregisterAll();
    }
}

TEST_P(LensStartTest, AnEmptyListIsNoTargetAndNotWaitedFor) {
    core().targets(GetParam().service, {});
    EXPECT_FALSE(init());
    expectDown({discoverCall(GetParam())}, GetParam().noTargetText);
    EXPECT_THAT(core().sleeps(), IsEmpty());
}

TEST_P(LensStartTest, TargetsOfAFailedDiscoveryCountIfTheFeatureWaits) {
    const std::string first = std::string(GetParam().service) + "/1";
    discoveries(1, {false, {first}});
    discoveries(5, kNone);
    EXPECT_EQ(init(), GetParam().waits);
    if (GetParam().waits) {
        expectUp(6);
        EXPECT_EQ(core().sleeps().size(), 5U);
    } else {
        expectDown({discoverCall(GetParam())}, GetParam().noTargetText);
    }
}

TEST_P(LensStartTest, EachObjectIsAnsweredByItsOwnHandler) {
    ASSERT_TRUE(init());
    for (const std::string service : {GetParam().service, "exposure"}) {
        core().answer("zorva_api_" + service + "_get_manual_mode_enable_send", {std::int64_t{1}});
    }
    for (const Object &object : GetParam().objects) {
        forget();
        EXPECT_THAT(get(object.instance()), isAccepted()) << object.name;
        ASSERT_FALSE(core().logs().empty()) << object.name;
        EXPECT_EQ(core().logs().front(), enter(object));
    }
}

TEST_P(LensStartTest, ARefusedRegistrationDoesNotMatter) {
    const Object &second = GetParam().objects.at(1);
    std::vector<oid> taken = requests::identifier(second.identifier());
    ASSERT_TRUE(
        registerScalar({"taken", [](auto...) { return SNMP_ERR_NOERROR; }, taken.data(), 12, HANDLER_CAN_RWRITE}));
    forget();
    EXPECT_TRUE(init());
    std::vector<LogLine> expected = startLines(GetParam(), logs::info(GetParam().rangeLine(kLens)));
    expected.at(3) = registrationLines(GetParam(), second, false).front();
    EXPECT_EQ(core().logs(), expected);
    EXPECT_EQ(requests::registeredName(second.identifier()), "taken");
    UnregisterAll();
}

TEST_P(LensStartTest, TheEndClosesWhatWasOpened) {
    start(GetParam());
    GetParam().deinit();
    Lines expected{closeCall(GetParam().service)};
    if (GetParam().opensExposure) {
        expected.push_back(closeCall("exposure"));
    }
    EXPECT_EQ(core().calls(), expected);
    EXPECT_THAT(core().logs(), IsEmpty());
}

TEST_P(LensStartTest, TheEndClosesNoServiceThatDidNotOpenThisTime) {
    start(GetParam());
    GetParam().deinit();
    UnregisterAll();
    fail("initiator_init");
    core().targets("exposure", {});
    init();
    forget();
    GetParam().deinit();
    EXPECT_THAT(core().calls(), IsEmpty());
}

TEST_P(LensStartTest, ASecondStartUsesItsOwnConnectionAndTargets) {
    start(GetParam());
    GetParam().deinit();
    UnregisterAll();
    core().targets(GetParam().service, {"another"});
    ASSERT_TRUE(init());
    moveToMinimum();
    std::string expected = GetParam().moveCall(kLens.min);
    expected.replace(expected.find(std::string(GetParam().service) + "/1"), std::string(GetParam().service).size() + 2,
                     "another");
    EXPECT_THAT(core().calls(), ElementsAre(expected));
}

TEST_P(LensStartTest, ASecondStartWithoutTargetsIsDown) {
    start(GetParam());
    GetParam().deinit();
    UnregisterAll();
    core().targets(GetParam().service, {});
    forget();
    EXPECT_FALSE(init());
    expectDown({discoverCall(GetParam())}, GetParam().noTargetText);
}

} // namespace lens_tests
