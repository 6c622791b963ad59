// SPDX-License-Identifier: Apache-2.0
#include "running_panel.h"

#include <stdexcept>
#include <utility>

#include <gtest/gtest.h>

namespace support {

namespace {

Launch launchOf(std::vector<std::string> arguments) {
    Launch launch;
    launch.arguments = {PANEL_PROGRAM, "--listen", "127.0.0.1:0"};
    launch.arguments.insert(launch.arguments.end(), arguments.begin(), arguments.end());
    return launch;
}

} // namespace

RunningPanel::RunningPanel(std::vector<std::string> arguments) : process_(launchOf(std::move(arguments))) {
    const std::string line = process_.output().awaitLine(0);
    if (line.rfind("The panel is at http://127.0.0.1:", 0) != 0) {
        throw std::runtime_error("the panel does not start: " + line + process_.errors().text());
    }
    port_ = static_cast<std::uint16_t>(std::stoul(line.substr(line.rfind(':') + 1)));
}

RunningPanel::~RunningPanel() {
    EXPECT_TRUE(process_.end().clean()) << process_.errors().text();
}

} // namespace support
