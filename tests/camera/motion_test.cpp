// SPDX-License-Identifier: Apache-2.0
// Planned motions: examples, general properties, and a comparison with a simulation in small steps.
#include <algorithm>
#include <cmath>
#include <limits>
#include <random>

#include <gtest/gtest.h>

#include "motion.h"

using namespace camera;

namespace {

constexpr double kInfinite = std::numeric_limits<double>::infinity();

/** Time, and the expected position and velocity. */
struct ExpectedPoint {
    double time;
    double position;
    double velocity;
};

/** Motion with some of its points, its end and its last position. */
struct Course {
    const char *name;
    Motion motion;
    std::vector<ExpectedPoint> points;
    double endTime;
    double endPosition;
};

void expectCourses(const std::vector<Course> &courses) {
    for (const Course &course : courses) {
        SCOPED_TRACE(course.name);
        for (const ExpectedPoint &expected : course.points) {
            const MotionPoint point = course.motion.at(expected.time);
            EXPECT_NEAR(expected.position, point.position, 1e-9) << "at " << expected.time;
            EXPECT_NEAR(expected.velocity, point.velocity, 1e-9) << "at " << expected.time;
        }
        EXPECT_DOUBLE_EQ(course.endTime, course.motion.endTime);
        EXPECT_EQ(course.endPosition, course.motion.endPosition);
        if (std::isfinite(course.endTime)) {
            EXPECT_EQ(course.endPosition, course.motion.at(course.motion.endTime).position);
        }
    }
}

TEST(AMove, HasItsPhases) {
    const double root = std::sqrt(2.0);
    expectCourses({
        {"accelerates, runs and brakes",
         planMove(10.0, {100.0, 0.0}, 400.0, 100.0, 50.0),
         {{10.0, 100.0, 0.0}, {11.0, 125.0, 50.0}, {12.0, 200.0, 100.0}, {12.5, 250.0, 100.0}, {14.0, 375.0, 50.0}},
         15.0,
         400.0},
        {"short", planMove(0.0, {0.0, 0.0}, -50.0, 100.0, 50.0), {{1.0, -25.0, -50.0}}, 2.0, -50.0},
        {"reverses",
         planMove(0.0, {0.0, 50.0}, -75.0, 100.0, 50.0),
         {{1.0, 25.0, 0.0}, {1.0 + root, -25.0, -50.0 * root}},
         1.0 + 2.0 * root,
         -75.0},
        {"cannot stop in time",
         planMove(0.0, {0.0, 100.0}, 50.0, 100.0, 50.0),
         {{2.0, 100.0, 0.0}, {3.0, 75.0, -50.0}},
         4.0,
         50.0},
        {"too fast",
         planMove(0.0, {0.0, -100.0}, -300.0, 50.0, 50.0),
         {{1.0, -75.0, -50.0}, {2.0, -125.0, -50.0}},
         6.0,
         -300.0},
        {"without acceleration",
         planMove(1.0, {0.0, -30.0}, 50.0, 25.0, 0.0),
         {{1.0, 0.0, 25.0}, {2.0, 25.0, 25.0}},
         3.0,
         50.0},
        {"to its own position", planMove(7.0, {50.0, 0.0}, 50.0, 25.0, 10.0), {}, 7.0, 50.0},
    });
}

TEST(ARun, EndsAtItsWallOrNever) {
    expectCourses({
        {"to a wall", planRun(0.0, {0.0, 0.0}, 100.0, 300.0, 50.0), {{2.5, 150.0, 100.0}}, 5.0, 300.0},
        {"without a wall",
         planRun(0.0, {0.0, 20.0}, -100.0, -kInfinite, 60.0),
         {{2.0, -80.0, -100.0}, {1000002.0, -100000080.0, -100.0}},
         kInfinite,
         -kInfinite},
        {"too close to the wall", planRun(0.0, {90.0, 50.0}, 100.0, 100.0, 50.0), {}, 1.0, 115.0},
        {"at rest beyond the wall", planRun(3.0, {101.0, 0.0}, 100.0, 100.0, 50.0), {}, 3.0, 101.0},
    });
}

TEST(AStop, Brakes) {
    expectCourses({
        {"with acceleration", planStop(2.0, {0.0, -100.0}, 50.0), {{3.0, -75.0, -50.0}}, 4.0, -100.0},
        {"without acceleration", planStop(2.0, {0.0, -100.0}, 0.0), {}, 2.0, 0.0},
    });
}

TEST(AnEndOfTheMechanics, EndsAMotion) {
    const Motion braking = planStop(0.0, {0.0, 100.0}, 50.0);
    expectCourses({
        {"cannot brake in time",
         stoppedByEnds(braking, -10.0, 75.0),
         {{0.5, braking.at(0.5).position, braking.at(0.5).velocity}, {1.5, 75.0, 0.0}},
         1.0,
         75.0},
        {"endless run", stoppedByEnds(planRun(0.0, {0.0, 0.0}, 10.0, kInfinite, 0.0), 0.0, 50.0), {}, 5.0, 50.0},
    });
}

TEST(AnEndOfTheMechanics, LeavesAMotionToItUnchanged) {
    const Motion motion = stoppedByEnds(planMove(0.1, {0.3, 0.0}, 70000.7, 123.4, 50.3), 0.3, 70000.7);
    EXPECT_EQ(3U, motion.phases.size());
    EXPECT_EQ(70000.7, motion.endPosition);
}

/** Arguments of a planned move. */
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

/** Simulates one step of an axis: depending on its position, it accelerates, brakes or keeps its velocity. */
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
        // The simulation reacts at most one step late.
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
            // A rounding error can leave a short way back.
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
