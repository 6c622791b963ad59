// SPDX-License-Identifier: Apache-2.0
// Planned motions against a simulation in small steps, and against what must hold for each of them.
#include <algorithm>
#include <cmath>
#include <limits>
#include <random>

#include <gtest/gtest.h>

#include "motion.h"

using namespace camera;

namespace {

constexpr double kInfinite = std::numeric_limits<double>::infinity();

void expectPoint(const Motion &motion, double time, double position, double velocity) {
    const MotionPoint point = motion.at(time);
    EXPECT_NEAR(position, point.position, 1e-9) << "at " << time;
    EXPECT_NEAR(velocity, point.velocity, 1e-9) << "at " << time;
}

TEST(AMove, SpeedsUpGoesOnAndBrakes) {
    const Motion motion = planMove(10.0, {100.0, 0.0}, 400.0, 100.0, 50.0);
    EXPECT_DOUBLE_EQ(15.0, motion.endTime);
    expectPoint(motion, 10.0, 100.0, 0.0);
    expectPoint(motion, 11.0, 125.0, 50.0);
    expectPoint(motion, 12.0, 200.0, 100.0);
    expectPoint(motion, 12.5, 250.0, 100.0);
    expectPoint(motion, 14.0, 375.0, 50.0);
    expectPoint(motion, 15.0, 400.0, 0.0);
}

TEST(AMove, OfAShortWayNeverGetsFast) {
    const Motion motion = planMove(0.0, {0.0, 0.0}, -50.0, 100.0, 50.0);
    EXPECT_DOUBLE_EQ(2.0, motion.endTime);
    expectPoint(motion, 1.0, -25.0, -50.0);
}

TEST(AMove, TheOtherWayBrakesFirst) {
    const Motion motion = planMove(0.0, {0.0, 50.0}, -75.0, 100.0, 50.0);
    expectPoint(motion, 1.0, 25.0, 0.0);
    expectPoint(motion, 1.0 + std::sqrt(2.0), -25.0, -50.0 * std::sqrt(2.0));
    EXPECT_NEAR(1.0 + 2.0 * std::sqrt(2.0), motion.endTime, 1e-12);
}

TEST(AMove, ThatCannotStopInTimeComesBack) {
    const Motion motion = planMove(0.0, {0.0, 100.0}, 50.0, 100.0, 50.0);
    expectPoint(motion, 2.0, 100.0, 0.0);
    expectPoint(motion, 3.0, 75.0, -50.0);
    expectPoint(motion, 4.0, 50.0, 0.0);
    EXPECT_DOUBLE_EQ(4.0, motion.endTime);
}

TEST(AMove, ThatIsTooFastSlowsDownFirst) {
    const Motion motion = planMove(0.0, {0.0, -100.0}, -300.0, 50.0, 50.0);
    expectPoint(motion, 1.0, -75.0, -50.0);
    expectPoint(motion, 2.0, -125.0, -50.0);
}

TEST(AMove, WithoutAccelerationHasItsSpeedAtOnce) {
    const Motion motion = planMove(1.0, {0.0, -30.0}, 50.0, 25.0, 0.0);
    expectPoint(motion, 1.0, 0.0, 25.0);
    expectPoint(motion, 2.0, 25.0, 25.0);
    EXPECT_DOUBLE_EQ(3.0, motion.endTime);
}

TEST(AMove, ToWhereTheAxisRestsIsOver) {
    const Motion motion = planMove(7.0, {50.0, 0.0}, 50.0, 25.0, 10.0);
    EXPECT_EQ(7.0, motion.endTime);
    EXPECT_EQ(50.0, motion.at(7.0).position);
}

TEST(ARun, StopsAtTheWall) {
    const Motion motion = planRun(0.0, {0.0, 0.0}, 100.0, 300.0, 50.0);
    expectPoint(motion, 2.5, 150.0, 100.0);
    EXPECT_DOUBLE_EQ(5.0, motion.endTime);
    EXPECT_EQ(300.0, motion.at(5.0).position);
}

TEST(ARun, WithoutAWallGoesOn) {
    const Motion motion = planRun(0.0, {0.0, 20.0}, -100.0, -kInfinite, 60.0);
    EXPECT_EQ(kInfinite, motion.endTime);
    expectPoint(motion, 2.0, -80.0, -100.0);
    expectPoint(motion, 1000002.0, -100000080.0, -100.0);
}

TEST(ARun, BeyondTheWallBrakesAndStaysThere) {
    const Motion motion = planRun(0.0, {90.0, 50.0}, 100.0, 100.0, 50.0);
    EXPECT_EQ(1.0, motion.endTime);
    EXPECT_EQ(115.0, motion.endPosition);
    const Motion resting = planRun(3.0, {101.0, 0.0}, 100.0, 100.0, 50.0);
    EXPECT_EQ(3.0, resting.endTime);
    EXPECT_EQ(101.0, resting.endPosition);
}

TEST(AStop, Brakes) {
    const Motion motion = planStop(2.0, {0.0, -100.0}, 50.0);
    expectPoint(motion, 3.0, -75.0, -50.0);
    EXPECT_EQ(4.0, motion.endTime);
    EXPECT_EQ(-100.0, motion.endPosition);
    EXPECT_EQ(2.0, planStop(2.0, {0.0, -100.0}, 0.0).endTime);
}

TEST(AnEndOfTheMechanics, StopsWhatCouldNotBrake) {
    const Motion free = planStop(0.0, {0.0, 100.0}, 50.0);
    const Motion motion = stoppedByEnds(free, -10.0, 75.0);
    EXPECT_NEAR(1.0, motion.endTime, 1e-12);
    EXPECT_EQ(75.0, motion.at(1.5).position);
    EXPECT_EQ(0.0, motion.at(1.5).velocity);
    expectPoint(motion, 0.5, free.at(0.5).position, free.at(0.5).velocity);
}

TEST(AnEndOfTheMechanics, LeavesWhatBrakesAtItAlone) {
    const Motion motion = stoppedByEnds(planMove(0.1, {0.3, 0.0}, 70000.7, 123.4, 50.3), 0.3, 70000.7);
    EXPECT_EQ(3U, motion.phases.size());
    EXPECT_EQ(70000.7, motion.endPosition);
}

TEST(AnEndOfTheMechanics, EndsARunForEver) {
    const Motion motion = stoppedByEnds(planRun(0.0, {0.0, 0.0}, 10.0, kInfinite, 0.0), 0.0, 50.0);
    EXPECT_DOUBLE_EQ(5.0, motion.endTime);
    EXPECT_EQ(50.0, motion.endPosition);
}

/** A move with everything that it depends on. */
struct Task {
    double time;
    MotionPoint from;
    double target;
    double speed;
    double acceleration;
};

std::vector<Task> randomTasks() {
    constexpr int kTasks = 400;
    std::mt19937 random(20260312);
    std::uniform_real_distribution<double> positions(-500.0, 500.0);
    std::uniform_real_distribution<double> velocities(-200.0, 200.0);
    std::uniform_real_distribution<double> speeds(1.0, 200.0);
    std::uniform_real_distribution<double> accelerations(20.0, 1000.0);
    std::vector<Task> tasks;
    for (int i = 0; i < kTasks; ++i) {
        const double target = positions(random);
        const MotionPoint from = {i % 5 == 0 ? target : positions(random), i % 3 == 0 ? 0.0 : velocities(random)};
        tasks.push_back({positions(random) + 500.0, from, target, speeds(random), accelerations(random)});
    }
    return tasks;
}

Motion planned(const Task &task) {
    return planMove(task.time, task.from, task.target, task.speed, task.acceleration);
}

/** What an axis does within a step: it looks where it is, and speeds up, brakes or goes on. */
MotionPoint stepped(const MotionPoint &now, const Task &task, double seconds) {
    const double way = task.target - now.position;
    const double braking = now.velocity * now.velocity / (2.0 * task.acceleration);
    const double towards = way < 0.0 ? -1.0 : 1.0;
    const bool brakes = now.velocity * towards > 0.0 && braking >= std::fabs(way);
    const double wanted = brakes ? 0.0 : towards * task.speed;
    const double most = task.acceleration * seconds;
    const double velocity = now.velocity + std::clamp(wanted - now.velocity, -most, most);
    return {now.position + (now.velocity + velocity) / 2.0 * seconds, velocity};
}

TEST(EachMove, IsWhatASimulationInSmallStepsDoes) {
    constexpr int kSteps = 20000;
    for (const Task &task : randomTasks()) {
        const Motion motion = planned(task);
        const double step = (motion.endTime - task.time) / kSteps;
        const double fastest = std::max(task.speed, std::fabs(task.from.velocity));
        // It decides at most one step late.
        const double tolerance = 1e-6 + 2.0 * step * fastest;
        MotionPoint point = task.from;
        for (int i = 0; i < kSteps; ++i) {
            const double planned = motion.at(task.time + i * step).position;
            ASSERT_NEAR(point.position, planned, tolerance) << "step " << i << " of " << task.from.position << " at "
                                                            << task.from.velocity << " to " << task.target;
            point = stepped(point, task, step);
        }
    }
}

TEST(EachMove, EndsExactlyAtItsTarget) {
    for (const Task &task : randomTasks()) {
        const Motion motion = planned(task);
        ASSERT_TRUE(std::isfinite(motion.endTime));
        ASSERT_GE(motion.endTime, task.time);
        for (const double later : {0.0, 1e-9, 1.0, 1e9}) {
            EXPECT_EQ(task.target, motion.at(motion.endTime + later).position);
            EXPECT_EQ(0.0, motion.at(motion.endTime + later).velocity);
        }
    }
}

TEST(EachMove, StartsWhereTheAxisIs) {
    for (const Task &task : randomTasks()) {
        const Motion motion = planned(task);
        EXPECT_NEAR(task.from.position, motion.at(task.time).position, 1e-9);
        EXPECT_NEAR(task.from.velocity, motion.at(task.time).velocity, 1e-9);
    }
}

TEST(EachMove, IsNeverTooFastAndNeverJumps) {
    constexpr int kSteps = 5000;
    for (const Task &task : randomTasks()) {
        const Motion motion = planned(task);
        const double step = (motion.endTime - task.time) / kSteps;
        MotionPoint before = motion.at(task.time);
        for (int i = 1; i <= kSteps; ++i) {
            const MotionPoint point = motion.at(task.time + i * step);
            const double allowed = std::max(task.speed, std::fabs(before.velocity));
            ASSERT_LE(std::fabs(point.velocity), allowed + 1e-7);
            ASSERT_LE(std::fabs(point.velocity - before.velocity), task.acceleration * step + 1e-7);
            const double fastest =
                std::max(std::fabs(point.velocity), std::fabs(before.velocity)) + task.acceleration * step;
            ASSERT_LE(std::fabs(point.position - before.position), fastest * step + 1e-7);
            before = point;
        }
    }
}

TEST(EachMove, GoesOnAsItWasWhenItIsPlannedAgainOnItsWay) {
    constexpr double kParts = 7.0;
    for (const Task &task : randomTasks()) {
        const Motion motion = planned(task);
        for (double part = 1.0; part < kParts; ++part) {
            const double time = task.time + (motion.endTime - task.time) * part / kParts;
            const Motion again = planMove(time, motion.at(time), task.target, task.speed, task.acceleration);
            // Rounding may leave a way of its own size to go back.
            EXPECT_NEAR(motion.endTime, again.endTime, 1e-4);
            const double later = (time + motion.endTime) / 2.0;
            EXPECT_NEAR(motion.at(later).position, again.at(later).position, 1e-4);
        }
    }
}

TEST(EachRun, RestsAtItsWallOrWhereItCanStop) {
    for (const Task &task : randomTasks()) {
        const double velocity = task.target < task.from.position ? -task.speed : task.speed;
        const Motion motion = planRun(task.time, task.from, velocity, task.target, task.acceleration);
        const double rest = restPosition(task.from, task.acceleration);
        const bool canStop = (task.target - rest) * velocity > 0.0;
        EXPECT_NEAR(canStop ? task.target : rest, motion.at(motion.endTime).position, 1e-9);
        if (canStop) {
            EXPECT_EQ(task.target, motion.endPosition);
        }
    }
}

TEST(EachMove, EndsAtTheMechanicsWhereItWouldLeaveThem) {
    for (const Task &task : randomTasks()) {
        const double lowest = std::min(task.from.position, task.target);
        const double highest = std::max(task.from.position, task.target);
        const Motion free = planned(task);
        const Motion motion = stoppedByEnds(free, lowest, highest);
        for (int i = 0; i <= 1000; ++i) {
            const double position = motion.at(task.time + (free.endTime - task.time) * i / 1000.0).position;
            ASSERT_GE(position, lowest - 1e-3);
            ASSERT_LE(position, highest + 1e-3);
        }
        EXPECT_TRUE(motion.endPosition == task.target || motion.endPosition == lowest || motion.endPosition == highest);
    }
}

} // namespace
