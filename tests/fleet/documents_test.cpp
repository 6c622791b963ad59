// SPDX-License-Identifier: Apache-2.0
// Completeness of the manual page, the completion and the guide.
#include <fstream>
#include <regex>
#include <set>
#include <sstream>

#include "running_fleet.h"

using namespace fleet_test;
using testing::HasSubstr;

namespace {

std::string contentOf(const std::string &path) {
    std::ifstream file(path);
    EXPECT_TRUE(file.is_open()) << path;
    std::ostringstream text;
    text << file.rdbuf();
    return text.str();
}

/** Returns the long options that the help of a command names. */
std::set<std::string> optionsOf(std::vector<std::string> command) {
    command.emplace_back("--help");
    const std::string help = runFleetProgram(command).output;
    const std::regex pattern("--[a-z-]+");
    std::set<std::string> options;
    for (std::sregex_iterator match(help.begin(), help.end(), pattern); match != std::sregex_iterator(); ++match) {
        options.insert(match->str());
    }
    return options;
}

TEST(FleetDocuments, HaveEachOption) {
    const std::string manual = contentOf(FLEET_MANUAL);
    const std::string completion = contentOf(FLEET_COMPLETION);
    const std::string guide = contentOf(FLEET_GUIDE);
    for (const std::vector<std::string> &command : {std::vector<std::string>(), {"status"}, {"control"}}) {
        const std::set<std::string> options = optionsOf(command);
        EXPECT_GT(options.size(), 3U);
        for (const std::string &option : options) {
            EXPECT_THAT(manual, HasSubstr("Fl " + option.substr(1)));
            EXPECT_THAT(completion, HasSubstr(option));
            EXPECT_THAT(guide, HasSubstr(option));
        }
    }
}

} // namespace
