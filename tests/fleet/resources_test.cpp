// SPDX-License-Identifier: Apache-2.0
#include <gmock/gmock.h>

#include "pair.h"
#include "resources.h"

using namespace fleet;

namespace {

TEST(FleetResources, SayHowManyThereAreAndHowManyItTakes) {
    EXPECT_FALSE(shortage({"files", 10, 10, "raise it"}));
    EXPECT_EQ("too few files: there are 9, and the fleet takes 10; raise it",
              shortage({"files", 10, 9, "raise it"}).value_or(""));
}

TEST(FleetResources, DoNotSufficeForAnEndlessFleet) {
    EXPECT_NO_THROW(checkResources(1));
    EXPECT_THROW(checkResources(1000000000), std::runtime_error);
}

TEST(FleetPause, DoublesUpToHalfAMinute) {
    EXPECT_EQ(200, pauseAfter(0).count());
    EXPECT_EQ(200, pauseAfter(1).count());
    EXPECT_EQ(400, pauseAfter(2).count());
    EXPECT_EQ(25600, pauseAfter(8).count());
    for (const unsigned failures : {9U, 10U, 33U, 1000000U, ~0U}) {
        EXPECT_EQ(30000, pauseAfter(failures).count()) << failures;
    }
}

} // namespace
