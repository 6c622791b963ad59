// SPDX-License-Identifier: Apache-2.0
#include <gmock/gmock.h>

#include "control.h"

using namespace fleet;
using nlohmann::json;

namespace {

TEST(FleetControl, TakesTheCommandsOfTheControlProgram) {
    EXPECT_EQ((json{{"command", "set"}, {"target", "alarm/1"}, {"field", "state"}, {"value", 1}}),
              parseCommand({"set", "alarm/1", "state", "1"}).command);
    EXPECT_EQ((json{{"command", "down"}, {"service", "alarm"}}), parseCommand({"down", "alarm"}).command);
    EXPECT_EQ((json{{"command", "state"}}), parseCommand({"state"}).command);
    const camera::ControlRequest play = parseCommand({"play", "warm-up", "--speed", "60"});
    EXPECT_EQ("warm-up", play.scenario);
    EXPECT_EQ(60.0, play.speed);
}

TEST(FleetControl, RefusesOtherCommands) {
    const std::vector<std::vector<std::string>> commands = {{},
                                                            {""},
                                                            {"follow"},
                                                            {"status"},
                                                            {"set"},
                                                            {"set", "alarm/1"},
                                                            {"--help"},
                                                            {"play", "warm-up", "--speed", "0"},
                                                            {"state", "more"},
                                                            {"down", "alarm", "up", "alarm"}};
    for (const std::vector<std::string> &words : commands) {
        EXPECT_THROW(parseCommand(words), CLI::ParseError) << testing::PrintToString(words);
    }
}

} // namespace
