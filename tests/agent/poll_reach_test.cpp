// SPDX-License-Identifier: Apache-2.0
// What the poll thread can call of the agent's libraries, which are the agent's own thread's: they have no locks.
//
// A test that runs polls sees only the calls of the ways they take. The linker knows all ways: of the module's objects,
// with a section for each function, it keeps the poll thread's function and everything that this function, or what it
// refers to, refers to. What is still undefined then can be called, and nothing else.
#include <set>
#include <sstream>

#include <dlfcn.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "process.h"

namespace {

using testing::Contains;
using testing::UnorderedElementsAre;

/** Returns the names that a library expects from others. */
std::set<std::string> expectedNames(const std::string &library) {
    const support::CommandResult result = support::runCommand({"nm", "--dynamic", "--undefined-only", "-j", library});
    EXPECT_TRUE(result.status.clean()) << result.errors;
    std::set<std::string> names;
    std::istringstream lines(result.output);
    for (std::string name; std::getline(lines, name);) {
        names.insert(name.substr(0, name.find('@')));
    }
    return names;
}

/** Returns the names that the agent's libraries define. */
std::set<std::string> agentNames(const std::string &library) {
    void *agent = dlopen(REACH_AGENT_LIBRARY, RTLD_NOW | RTLD_LOCAL);
    EXPECT_NE(agent, nullptr) << dlerror();
    std::set<std::string> result;
    for (const std::string &name : expectedNames(library)) {
        Dl_info found{};
        const void *address = dlsym(agent, name.c_str());
        if (address != nullptr && dladdr(address, &found) != 0 &&
            std::string(found.dli_fname).find("libnetsnmp") != std::string::npos) {
            result.insert(name);
        }
    }
    return result;
}

} // namespace

TEST(PollReach, PollsUseNothingOfTheAgentButTheVarbindsOfTheirTraps) {
    EXPECT_THAT(agentNames(REACH_POLL_THREAD), UnorderedElementsAre("snmp_varlist_add_variable", "snmp_free_varbind"));
    EXPECT_THAT(expectedNames(REACH_POLL_THREAD), Contains("zorva_api_power_get_power_state_send"));
    EXPECT_THAT(expectedNames(REACH_POLL_THREAD), Contains("zorva_api_temperature_get_temperature_send"));
}

TEST(PollReach, TheStartOfAFeatureReachesTheAgentSoTheCheckSeesIt) {
    EXPECT_THAT(agentNames(REACH_FEATURE_START), Contains("netsnmp_register_scalar"));
}
