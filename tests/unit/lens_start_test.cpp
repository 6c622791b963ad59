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
            EXPECT_EQ(requests::registeredName(object.registeredOid()), registered ? object.name : "");
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

} // namespace lens_tests
