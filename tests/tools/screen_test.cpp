// SPDX-License-Identifier: Apache-2.0
// Live screen of `watch`.
#include <cstdlib>
#include <ctime>
#include <sstream>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "command_line.h"
#include "run.h"
#include "screen.h"

using namespace ptzctl;
using testing::HasSubstr;
using testing::StartsWith;

TEST(Screen, TheHeadingHasCameraTimeAndInterval) {
    setenv("TZ", "UTC", 1);
    tzset();
    Invocation invocation;
    invocation.hosts = {"192.0.2.20"};
    invocation.intervalSeconds = 0.5;
    const std::time_t now = 1795305600;
    EXPECT_EQ(screenHeading(invocation, now),
              "192.0.2.20  2026-11-22 00:00:00, every 0.5 s; * changed; Ctrl-C ends\n\n");
    invocation.hosts = {"192.0.2.20", "192.0.2.21"};
    EXPECT_EQ(screenHeading(invocation, now), "2026-11-22 00:00:00, every 0.5 s; * changed; Ctrl-C ends\n\n");
}

TEST(Screen, ChangesAreMarked) {
    EXPECT_EQ(markChanges("Pan   stop\nTilt  up\n", "Pan   stop\nTilt  stop\n", {}), "Pan   stop\nTilt  up  *\n");
    EXPECT_EQ(markChanges("Pan   stop\n", "Pan   stop\n", {}), "Pan   stop\n");
    EXPECT_EQ(markChanges("Pan  left\n", "Pan  stop\n", Style{true}), "Pan  left  \033[32m*\033[0m\n");
}

TEST(Screen, NothingIsMarkedWithAnotherNumberOfLines) {
    EXPECT_EQ(markChanges("Pan   stop\nTilt  stop\n", "", {}), "Pan   stop\nTilt  stop\n");
    EXPECT_EQ(markChanges("Tilt  stop\n", "Pan   stop\nTilt  stop\n", {}), "Tilt  stop\n");
    EXPECT_EQ(markChanges("", "Pan   stop\n", {}), "");
}

TEST(Screen, ATerminalShowsItWithoutAnAnswer) {
    Invocation invocation;
    const std::unique_ptr<CLI::App> app = commandLine(invocation);
    app->parse("--host 127.0.0.1:9 --community x --timeout 0.05 watch --count 1");
    for (const bool terminal : {true, false}) {
        std::istringstream input;
        std::ostringstream output;
        std::ostringstream errors;
        EXPECT_EQ(run(invocation, input, output, errors, terminal), ExitCode::NoAnswer);
        if (terminal) {
            EXPECT_THAT(output.str(), StartsWith("\033[H\033[2J127.0.0.1:9  "));
        } else {
            EXPECT_EQ(output.str(), "");
        }
        EXPECT_THAT(errors.str(), HasSubstr("no answer"));
    }
}
