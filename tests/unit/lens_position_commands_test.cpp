// SPDX-License-Identifier: Apache-2.0
#include "lens_test.h"

namespace lens_tests {

namespace {

/** Log lines and calls of each command, in order. */
class LensCommandTest : public LensDriveTest {
protected:
    void SetUp() override {
        LensDriveTest::SetUp();
        const Drive &drive = GetParam();
        for (const std::string &operation : {drive.readRange, drive.readPosition, drive.move}) {
            watch(drive.function(operation));
        }
        watch(drive.function("set_velocity_send"));
    }

    /** The lines between those of entering and leaving. */
    static void expectStory(const std::string &value, Lines expected) {
        EXPECT_THAT(commit(value), isAccepted());
        expected.insert(expected.begin(), line(enter(object())));
        expected.push_back(line(done(object())));
        EXPECT_EQ(story(), expected) << testing::PrintToString(value);
    }

    static std::string info(const std::string &text) {
        return line(said(object(), 6, text));
    }

    static Lines deltaStory(const Lens &lens, std::int64_t step, std::int64_t target) {
        return {GetParam().readPositionCall(), "6 " + GetParam().deltaLine(lens, step, target),
                GetParam().moveCall(target)};
    }

    static Lines absoluteStory(const Lens &lens, std::int64_t target, std::int64_t speed = kLens.maxSpeed) {
        return {GetParam().moveCall(target, speed), "6 " + GetParam().absoluteLine(lens, target)};
    }

    static Lines continuousStory(int speed) {
        const Drive &drive = GetParam();
        Lines result;
        if (!drive.runs) {
            return result;
        }
        if (drive.logsDirection && speed != 0) {
            result.push_back(info(drive.word + (speed > 0 ? " far" : " near")));
        }
        result.push_back(drive.velocityCall(speed < 0 ? 1 : 0, speed == 0 ? 0 : 1));
        result.push_back(info("continuous " + drive.word + "=3, speed=" + std::to_string(speed)));
        return result;
    }
};

INSTANTIATE_TEST_SUITE_P(Drives, LensCommandTest, testing::ValuesIn(allDrives()), nameOf<Drive>);

} // namespace

TEST_P(LensCommandTest, AStop) {
    const Drive &drive = GetParam();
    for (const unsigned int position : {0U, 0x3412U, 0xFFFFU}) {
        Lines expected;
        if (drive.logsStop) {
            expected.push_back(info("stop " + drive.word + " (0)"));
        }
        if (drive.runs) {
            expected.push_back(drive.velocityCall(0, 0));
        }
        expectStory(command(0, 0, position), expected);
    }
}

TEST_P(LensCommandTest, ADelta) {
    expectStory(command(1, 1, 0x4000), deltaStory(kLens, 2000, 6000));
    expectStory(command(1, -1, 0x4000), deltaStory(kLens, 2000, 2000));
    expectStory(command(1, 1, 0x0100), deltaStory(kLens, 31, 4031));
    expectStory(command(1, -1, 0x0100), deltaStory(kLens, 31, 3969));
    // Up to the limit.
    expectStory(command(1, 1, 0xA000), deltaStory(kLens, 5000, 9000));
    expectStory(command(1, 1, 0xFFFF), deltaStory(kLens, 8000, 9000));
    // By the sign of the speed.
    for (int speed = -128; speed <= 127; ++speed) {
        expectStory(command(1, speed, 0x4000), deltaStory(kLens, 2000, speed < 0 ? 2000 : 6000));
    }
}

TEST_P(LensCommandTest, AnAbsoluteMove) {
    expectStory(command(2, 0, 0), absoluteStory(kLens, 1000));
    expectStory(command(2, 0, 0x4000), absoluteStory(kLens, 3000));
    expectStory(command(2, 0, 0xFFFF), absoluteStory(kLens, 9000));
    // At any speed.
    for (int speed = -128; speed <= 127; ++speed) {
        expectStory(command(2, speed, 0x8000), absoluteStory(kLens, 5000));
    }
}

TEST_P(LensCommandTest, AContinuousMoveGoesWhereTheSignOfItsSpeedSays) {
    for (int speed = -128; speed <= 127; ++speed) {
        expectStory(command(3, speed, 0x1234), continuousStory(speed));
    }
}

TEST_P(LensCommandTest, ADeltaWithoutAPositionIsDroppedSilently) {
    core().fail(GetParam().function(GetParam().readPosition), kRefused);
    for (const int speed : {-1, 0, 1}) {
        const Answer answer = commit(command(1, speed, 0x4000));
        EXPECT_THAT(answer, isAccepted());
        EXPECT_EQ(answer.octets, command(1, speed, 0x4000));
        EXPECT_EQ(story(), (Lines{line(enter(object())), GetParam().readPositionCall(), line(done(object()))}));
        EXPECT_EQ(committed(), command(1, speed, 0x4000));
    }
}

TEST_P(LensCommandTest, AFailedReadLeavesTheLimits) {
    core().once(GetParam().function(GetParam().readPosition), {kRefused, {}});
    commit(command(1, 1, 0x4000));
    expectStory(command(2, 0, 0x4000), absoluteStory(kLens, 3000));
    expectStory(command(2, 0, 0xFFFF), absoluteStory(kLens, 9000));
    expectStory(command(1, 1, 0x4000), deltaStory(kLens, 2000, 6000));
}

TEST_P(LensCommandTest, AFailedReadLeavesTheLimitsOfTheLastDelta) {
    const Lens second{600, 100, 900};
    answer(GetParam(), second);
    commit(command(1, 1, 0x4000));
    core().once(GetParam().function(GetParam().readPosition), {kRefused, {}});
    commit(command(1, 1, 0x4000));
    const bool refreshed = !GetParam().isStepper;
    expectStory(command(2, 0, 0x4000), absoluteStory(refreshed ? second : kLens, refreshed ? 300 : 3000));
}

TEST_P(LensCommandTest, OnlyADeltaRefreshesTheLimitsAndOnlyIfThePositionComesWithThem) {
    const Lens second{600, 100, 900};
    answer(GetParam(), second);
    commit(command(0, 0, 0));
    commit(command(3, 1, 0));
    expectStory(command(2, 0, 0xFFFF), absoluteStory(kLens, 9000));
    commit(command(1, 1, 0x4000));
    if (GetParam().isStepper) {
        // 600 and a step of 2000 within the limits of the start
        EXPECT_EQ(story().at(3), GetParam().moveCall(2600));
        expectStory(command(2, 0, 0xFFFF), absoluteStory(kLens, 9000));
    } else {
        EXPECT_EQ(story().at(3), GetParam().moveCall(800));
        expectStory(command(2, 0, 0xFFFF), absoluteStory(second, 900));
    }
}

TEST_P(LensCommandTest, ACommandThatTheServiceRefusesIsAcceptedAllTheSame) {
    core().fail(GetParam().function(GetParam().move), kRefused);
    core().fail(GetParam().function("set_velocity_send"), kRefused);
    expectStory(command(1, 1, 0x4000), deltaStory(kLens, 2000, 6000));
    expectStory(command(2, 0, 0x4000), absoluteStory(kLens, 3000));
    expectStory(command(3, 1, 0), continuousStory(1));
    EXPECT_THAT(commit(command(0, 0, 1)), isAccepted());
    EXPECT_EQ(committed(), command(0, 0, 1));
}

TEST_P(LensCommandTest, WithoutLimitsAnAbsoluteMoveGoesToZero) {
    restartWithoutLimits();
    for (const unsigned int position : {0U, 0x8000U, 0xFFFFU}) {
        expectStory(command(2, 0, position), absoluteStory({0, 0, 0}, 0, GetParam().isStepper ? 0 : kLens.maxSpeed));
    }
}

TEST_P(LensCommandTest, WithoutLimitsADeltaReadsThemOrGoesToZero) {
    restartWithoutLimits();
    if (GetParam().isStepper) {
        const Lens none{4000, 0, 0};
        for (const int speed : {-1, 1}) {
            expectStory(
                command(1, speed, 0x4000),
                {GetParam().readPositionCall(), "6 " + GetParam().deltaLine(none, 0, 0), GetParam().moveCall(0, 0)});
        }
    } else {
        expectStory(command(1, 1, 0x4000), deltaStory(kLens, 2000, 6000));
        expectStory(command(2, 0, 0xFFFF), absoluteStory(kLens, 9000));
    }
}

TEST_P(LensCommandTest, MovesGoAtTheHighestSpeedOfTheLastStart) {
    for (const std::int64_t speed : {-5, 0, 1, 2147483647}) {
        const Lens lens{4000, 1000, 9000, 3, speed};
        restart(lens);
        commit(command(2, 1, 0));
        EXPECT_THAT(core().calls(), ElementsAre(GetParam().moveCall(1000, speed)));
        commit(command(1, 1, 0x4000));
        EXPECT_THAT(core().calls(), ElementsAre(GetParam().readPositionCall(), GetParam().moveCall(6000, speed)));
    }
}

TEST_P(LensCommandTest, OnlyTheCommitMoves) {
    for (const std::string &value :
         {command(0, 0, 0), command(1, 1, 0x4000), command(2, 1, 0x4000), command(3, 1, 0)}) {
        for (const int mode : std::initializer_list<int>{MODE_SET_RESERVE1, MODE_SET_RESERVE2, MODE_SET_ACTION,
                                                         MODE_SET_FREE, MODE_SET_UNDO, MODE_GET}) {
            phase(mode, value);
            EXPECT_THAT(core().calls(), IsEmpty()) << mode;
        }
    }
}

} // namespace lens_tests
