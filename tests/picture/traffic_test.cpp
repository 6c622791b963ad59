// SPDX-License-Identifier: Apache-2.0
#include <gmock/gmock.h>

#include "scene_file.h"
#include "traffic.h"

using namespace panel;

namespace {

std::vector<SignalStep> twoSteps() {
    return {{{"main"}, 10.0, 3.0, 2.0}, {{"side", "always"}, 5.0, 3.0, 2.0}};
}

TEST(SignalCycle, AGroupIsGreenYellowAndRed) {
    const SignalCycle cycle(twoSteps());
    const std::pair<double, Aspect> cases[] = {
        {0.0, Aspect::green},   {9.9, Aspect::green},       {10.1, Aspect::yellow}, {13.1, Aspect::red},
        {15.1, Aspect::red},    {24.9, Aspect::red},        {25.1, Aspect::green},  {-14.9, Aspect::yellow},
        {-24.9, Aspect::green}, {25e6 + 1.0, Aspect::green}};
    for (const auto &[time, aspect] : cases) {
        EXPECT_EQ(aspect, cycle.at("main", time)) << time;
    }
}

TEST(SignalCycle, AGroupOfTwoStepsHasNoYellowBetween) {
    std::vector<SignalStep> steps = twoSteps();
    steps[0].green.emplace_back("always");
    const SignalCycle cycle(steps);
    EXPECT_EQ(Aspect::green, cycle.at("always", 14.0));
}

TEST(SignalCycle, WithoutStepsEverythingIsGreen) {
    EXPECT_EQ(Aspect::green, SignalCycle({}).at("", 5.0));
}

TEST(Route, CornersAreRounded) {
    const Route route({{0, 0}, {0, 50}, {50, 50}}, 13.0);
    EXPECT_LT(route.length(), 100.0);
    EXPECT_GT(route.length(), 85.0);
    EXPECT_LT(route.speedAt(42.0), 8.0);
    EXPECT_EQ(13.0, route.speedAt(0.0));
}

/** One lane to the north with a stop line at 200 m, and its end at 400 m. */
Scene lane(const std::vector<SignalStep> &cycle) {
    Scene scene;
    scene.signalCycle = cycle;
    Lane lane;
    lane.points = {{0, 0}, {0, 200}};
    lane.ways = {{{0, 400}}};
    lane.group = "main";
    lane.every = 4.0;
    scene.lanes.push_back(lane);
    return scene;
}

TEST(Traffic, VehiclesStopAtRed) {
    Traffic traffic(lane({{{"other"}, 1000000.0, 1.0, 1.0}, {{"main"}, 1.0, 1.0, 1.0}}));
    traffic.advanceTo(2000.0);
    const std::vector<VehiclePose> vehicles = traffic.vehicles();
    ASSERT_GT(vehicles.size(), 5U);
    for (const VehiclePose &vehicle : vehicles) {
        EXPECT_LT(vehicle.at.y + lengthOf(vehicle.kind) / 2.0, 200.5);
    }
    EXPECT_GT(vehicles.front().at.y + lengthOf(vehicles.front().kind) / 2.0, 195.0);
    EXPECT_TRUE(vehicles.front().braking);
}

TEST(Traffic, VehiclesDriveOnGreenAndKeepApart) {
    Traffic traffic(lane({{{"main"}, 20.0, 3.0, 12.0}}));
    double farthest = 0.0;
    for (double time = 5000.0; time < 5080.0; time += 1.0 / 15.0) {
        traffic.advanceTo(time);
        const std::vector<VehiclePose> vehicles = traffic.vehicles();
        for (std::size_t i = 0; i < vehicles.size(); ++i) {
            farthest = std::max(farthest, vehicles[i].at.y);
            if (i > 0) {
                const double gap = vehicles[i - 1].at.y - vehicles[i].at.y -
                                   (lengthOf(vehicles[i - 1].kind) + lengthOf(vehicles[i].kind)) / 2.0;
                EXPECT_GT(gap, 0.3) << time;
            }
        }
    }
    EXPECT_GT(farthest, 380.0);
}

TEST(Traffic, ALongPauseIsNoLongWay) {
    Traffic traffic(readScene(QUARNSNMP_SCENES "/intersection.json"));
    traffic.advanceTo(1000.0);
    const std::size_t before = traffic.vehicles().size();
    traffic.advanceTo(1.7e9);
    EXPECT_GT(before, 40U);
    EXPECT_GT(traffic.vehicles().size(), before / 2);
}

} // namespace
