// SPDX-License-Identifier: Apache-2.0
// Every object of the cameras, through the whole chain: manager, agent, module, core library, camera process.
#include <gtest/gtest.h>

#include "camera_agent.h"
#include "golden_walk.h"

TEST(FirstRequest, CamerasAnswerAsRecorded) {
    for (const char *name : {"dome", "minimal", "stepper", "twinfocus"}) {
        const harness::Camera camera(name);
        const harness::Agent agent(harness::withModule(camera.directory()));
        harness::Manager manager(agent.peer());
        EXPECT_TRUE(harness::matchesGoldenWalk(manager, ".1.3.6.1.4.1", name)) << name;
    }
}
