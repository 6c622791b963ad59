// SPDX-License-Identifier: Apache-2.0
// The simulated camera as the harness starts and ends it.
#include <csignal>
#include <stdexcept>

#include <gmock/gmock.h>
#include <gtest/gtest-spi.h>
#include <gtest/gtest.h>

#include "camera.h"
#include "eventually.h"
#include "process_information.h"

namespace harness {
namespace {

using testing::HasSubstr;

TEST(Camera, IsReadyWhenItIsConstructed) {
    const Camera camera("dome");
    EXPECT_TRUE(runs(camera.pid()));
    const CommandResult state = camera.control("state");
    EXPECT_TRUE(state.status.clean()) << state.errors;
    EXPECT_THAT(state.output, HasSubstr("positioning"));
}

TEST(Camera, TakesCommandsWithArguments) {
    const Camera camera("dome");
    const CommandResult set = camera.control("set", "alarm/1", "state", "1");
    EXPECT_TRUE(set.status.clean()) << set.errors;
    EXPECT_FALSE(camera.control("set", "nothing/1", "state", "1").status.clean());
}

TEST(Camera, ComesBackAfterAShutdownAndAPowerCut) {
    Camera camera("dome");
    const pid_t first = camera.pid();
    EXPECT_TRUE(camera.stop().clean());
    EXPECT_FALSE(camera.control("state").status.clean());
    camera.start();
    EXPECT_NE(camera.pid(), first);
    camera.kill();
    EXPECT_THROW(camera.stop(), std::runtime_error);
    EXPECT_FALSE(camera.control("state").status.clean());
    camera.restart();
    camera.restart();
    EXPECT_TRUE(camera.control("state").status.clean());
}

TEST(Camera, SaysWhyItDoesNotStart) {
    try {
        const Camera camera("no such camera");
        FAIL() << "a camera that does not exist was started";
    } catch (const std::runtime_error &error) {
        EXPECT_THAT(error.what(), HasSubstr("no such camera"));
    }
}

TEST(Camera, MakesTheTestFailWhenItEndsByItself) {
    EXPECT_NONFATAL_FAILURE(
        {
            const Camera camera("dome");
            ASSERT_EQ(kill(camera.pid(), SIGKILL), 0);
            ASSERT_TRUE(eventually(std::chrono::seconds(10), [&] { return !runs(camera.pid()); }));
        },
        "ended by itself");
}

} // namespace
} // namespace harness
