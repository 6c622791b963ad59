// SPDX-License-Identifier: Apache-2.0
// The module comes and goes with its agent: at start and stop, at a reload, and at run time.
#include <algorithm>
#include <fstream>
#include <iostream>
#include <iterator>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "camera.h"
#include "camera_agent.h"
#include "eventually.h"
#include "footprint.h"
#include "object_oids.h"
#include "process_information.h"
#include "settings.h"

namespace {

using namespace harness;
using std::chrono::milliseconds;
using std::chrono::seconds;

/** Lines of the agent's log about objects of this module that were there twice. */
std::size_t duplicates(const Agent &agent) {
    std::size_t count = 0;
    for (const std::string &line : agent.log().lines()) {
        const bool ours =
            line.find(oids::kVendorSubtree) != std::string::npos || line.find(oids::kNtcipSubtree) != std::string::npos;
        count += ours && line.find("duplicate registration") != std::string::npos ? 1U : 0U;
    }
    return count;
}

// Columns of the agent's own table of loadable modules, and the values that load and unload one.
constexpr const char *kModuleNames = ".1.3.6.1.4.1.2021.13.14.2.1.2";
constexpr const char *kModuleStatuses = ".1.3.6.1.4.1.2021.13.14.2.1.5";
constexpr std::int64_t kLoad = 4;
constexpr std::int64_t kUnload = 5;

/** The status object of this module in the agent's table of loadable modules. */
std::string statusObject(Manager &manager) {
    for (const Varbind &name : manager.walk(kModuleNames)) {
        if (name.octets == "quarnsnmp") {
            return kModuleStatuses + name.oid.substr(name.oid.rfind('.'));
        }
    }
    ADD_FAILURE() << "the agent does not list the module";
    return kModuleStatuses;
}

AgentOptions daemon(const Camera &camera) {
    AgentOptions options = withModule(camera.directory());
    options.daemonised = true;
    return options;
}

AgentOptions withModuleTable(const Camera &camera) {
    AgentOptions options = withModule(camera.directory());
    options.showModules = true;
    return options;
}

void startAndStop(const AgentOptions &options, int times) {
    Agent agent(options);
    for (int i = 0; i < times; ++i) {
        if (i > 0) {
            agent.start();
        }
        ASSERT_NE(modelName(agent), "") << "start " << i;
        ASSERT_EQ(threadCount(agent.pid()), threadsWithModule()) << "start " << i;
        const pid_t pid = agent.pid();
        const AgentEnd end = agent.stop();
        ASSERT_TRUE(end.status.clean()) << end.status.describe();
        ASSERT_LT(end.duration, patient(seconds(2))) << "stop " << i;
        ASSERT_FALSE(runs(pid));
    }
    EXPECT_EQ(duplicates(agent), 0U);
}

/** Reloads an agent many times. @return by how much its memory has grown, in kilobytes */
std::size_t growthOverReloads(Agent &agent, int times) {
    // The first reloads fill the caches of agent, loader and allocator.
    for (int i = 0; i < 20; ++i) {
        agent.hup();
    }
    const std::string name = modelName(agent);
    const Footprint before = footprint(agent);
    for (int i = 0; i < times; ++i) {
        agent.hup();
        EXPECT_EQ(modelName(agent), name) << "reload " << i;
    }
    const Footprint after = footprint(agent);
    EXPECT_TRUE(hasNoMoreThan(before, agent)) << before << ", then " << after;
    EXPECT_EQ(duplicates(agent), 0U);
    return after.kilobytes - std::min(before.kilobytes, after.kilobytes);
}

/** The agent itself loses some memory at each reload, so it is compared with one that has no module. */
void compareReloads(const AgentOptions &options, int times) {
    AgentOptions without = options;
    without.module.clear();
    Agent bare(without);
    Agent agent(options);
    ASSERT_NE(modelName(agent), "");
    ASSERT_EQ(threadCount(agent.pid()), threadsWithModule());
    const std::size_t ownGrowth = growthOverReloads(bare, times);
    const std::size_t growth = growthOverReloads(agent, times);
    if (memoryTells()) {
        EXPECT_LE(growth, ownGrowth + kSlackKilobytes);
    }
    ASSERT_EQ(threadCount(agent.pid()), threadsWithModule());
    std::cout << "growth: " << ownGrowth << " kB without, " << growth << " kB with the module\n";
}

constexpr const char *kFirstLine = "no zorva API focuses";
constexpr const char *kFirstLineOfTheUpgrade = "NO zorva API focuses";

/** Returns the module as a later build whose log shows that it runs. */
std::string upgradedModule() {
    std::ifstream input(modulePath(), std::ios::binary);
    std::string content{std::istreambuf_iterator<char>(input), {}};
    const std::string text = kFirstLine;
    std::size_t place = content.find(text);
    if (place == std::string::npos) {
        throw std::runtime_error("the module does not have the text of its log");
    }
    // A build with sanitizers has the text once for each use.
    for (; place != std::string::npos; place = content.find(text, place)) {
        content.replace(place, text.size(), kFirstLineOfTheUpgrade);
    }
    return content;
}

/** Ways to replace a module that an agent has loaded. */
class LifecycleUpgrade : public testing::TestWithParam<const char *> {
protected:
    /** Replaces the module of the agent by another file. */
    void replace(const std::string &file) const {
        const CommandResult result = runCommand({GetParam(), file, module_});
        ASSERT_TRUE(result.status.clean()) << result.errors;
    }

    TemporaryDirectory files_;
    std::string module_ = files_.file("module.so");
};

} // namespace

TEST_P(LifecycleUpgrade, IsServedAfterAReloadAndCanBeTakenBack) {
    ASSERT_TRUE(runCommand({"install", modulePath(), module_}).status.clean());
    const Camera camera("dome");
    AgentOptions options = withModule(camera.directory());
    options.module = module_;
    Agent agent(options);
    const std::vector<Varbind> before = Manager(agent.peer()).walk(oids::kVendorSubtree);
    ASSERT_FALSE(before.empty());

    replace(files_.write("upgrade.so", upgradedModule()));
    // The old module serves until the reload.
    EXPECT_EQ(Manager(agent.peer()).walk(oids::kVendorSubtree), before);
    EXPECT_EQ(agent.moduleLog().count(kFirstLineOfTheUpgrade), 0U);
    agent.hup();
    EXPECT_EQ(Manager(agent.peer()).walk(oids::kVendorSubtree), before);
    EXPECT_EQ(agent.moduleLog().count(kFirstLineOfTheUpgrade), 1U);

    ASSERT_TRUE(runCommand({"install", modulePath(), files_.file("former.so")}).status.clean());
    replace(files_.file("former.so"));
    const std::size_t starts = agent.moduleLog().count(kFirstLine);
    agent.hup();
    EXPECT_EQ(Manager(agent.peer()).walk(oids::kVendorSubtree), before);
    EXPECT_EQ(agent.moduleLog().count(kFirstLine), starts + 1);
    EXPECT_EQ(agent.moduleLog().count(kFirstLineOfTheUpgrade), 1U);
    EXPECT_EQ(duplicates(agent), 0U);
}

INSTANTIATE_TEST_SUITE_P(Programs, LifecycleUpgrade, testing::Values("install", "mv"));

TEST(Lifecycle, AReloadBringsEverythingBack) {
    const Camera camera("dome");
    Agent agent(withModule(camera.directory()));
    const std::vector<Varbind> before = Manager(agent.peer()).walk(oids::kVendorSubtree);
    ASSERT_FALSE(before.empty());
    agent.hup();
    EXPECT_EQ(Manager(agent.peer()).walk(oids::kVendorSubtree), before);
    EXPECT_EQ(threadCount(agent.pid()), threadsWithModule());
    EXPECT_EQ(duplicates(agent), 0U);
    EXPECT_EQ(agent.moduleLog().count("timer_thread_func: LEAVING IN THREAD FUNC due to interruption"), 1U);
}

TEST(Lifecycle, ADaemonHasThePollThreadAndReloads) {
    const Camera camera("dome");
    Agent agent(daemon(camera));
    EXPECT_NE(modelName(agent), "");
    EXPECT_EQ(threadCount(agent.pid()), threadsWithModule());
    agent.hup();
    EXPECT_NE(modelName(agent), "");
    EXPECT_EQ(threadCount(agent.pid()), threadsWithModule());
    EXPECT_LT(agent.stop().duration, patient(seconds(2)));
}

TEST(Lifecycle, UnloadingReallyUnloads) {
    const Camera camera("dome");
    Agent agent(withModuleTable(camera));
    Manager manager(agent.peer());
    const std::string status = statusObject(manager);
    ASSERT_TRUE(mapsFile(agent.pid(), modulePath()));

    ASSERT_TRUE(manager.set(status, Type::Integer, kUnload).ok());
    EXPECT_FALSE(mapsFile(agent.pid(), modulePath()));
    EXPECT_EQ(threadCount(agent.pid()), threadsWithoutModule());
    EXPECT_EQ(manager.get(oids::modelName).single().type, Type::NoSuchObject);
    EXPECT_THAT(manager.walk(oids::kVendorSubtree), testing::IsEmpty());

    ASSERT_TRUE(manager.set(status, Type::Integer, kLoad).ok());
    EXPECT_TRUE(mapsFile(agent.pid(), modulePath()));
    EXPECT_EQ(threadCount(agent.pid()), threadsWithModule());
    EXPECT_NE(modelName(agent), "");
    EXPECT_EQ(duplicates(agent), 0U);
}

TEST(Lifecycle, NothingOfTheModuleIsCalledAfterItIsUnloaded) {
    const Camera camera("dome");
    AgentOptions options = withModuleTable(camera);
    options.fakeTime = "+0 x60";
    Agent agent(options);
    Manager manager(agent.peer());
    ASSERT_TRUE(manager.set(statusObject(manager), Type::Integer, kUnload).ok());
    // Two of the poll thread's periods, with all kinds of requests in between.
    constexpr std::int64_t kTwoMinutes = std::int64_t{2} * 60 * 100;
    const std::int64_t start = manager.get(oids::sysUpTime).single().number;
    ASSERT_TRUE(eventually(seconds(30), [&] {
        EXPECT_EQ(manager.get(oids::modelName).single().type, Type::NoSuchObject);
        EXPECT_TRUE(manager.walk(oids::kVendorSubtree).empty());
        EXPECT_NE(manager.set({octetString(oids::modelName, "x")}).error, ErrorStatus::None);
        return manager.get(oids::sysUpTime).single().number > start + kTwoMinutes;
    }));
    EXPECT_TRUE(agent.running());
}

TEST(Lifecycle, AnAgentThatStartsProgramsGoesOn) {
    const Camera camera("dome");
    AgentOptions options = withModule(camera.directory());
    options.configuration = {"view readable included .1.3.6.1.4.1.8072.1.3.2",
                             "extend -cacheTime 0 echo /bin/echo hello"};
    Agent agent(options);
    Manager manager(agent.peer(), "public");
    const Footprint before = footprint(agent);
    // nsExtendOutput1Line."echo", whose index is the name's length and letters
    constexpr const char *kOutput = ".1.3.6.1.4.1.8072.1.3.2.3.1.1.4.101.99.104.111";
    for (int i = 0; i < 50; ++i) {
        ASSERT_EQ(manager.get(kOutput).single().octets, "hello") << i;
    }
    expectFlat(before, footprint(agent), 4 * kSlackKilobytes);
    EXPECT_EQ(before.threads, threadsWithModule());
    EXPECT_NE(modelName(agent), "");
}

// These run alone: beside other work the agent keeps more memory at each reload, with and without a leak.
TEST(LifecycleSlowTiming, AThousandReloads) {
    const Camera camera("dome");
    compareReloads(withModule(camera.directory()), 1000);
}

TEST(LifecycleSlowTiming, AThousandReloadsOfADaemon) {
    const Camera camera("dome");
    compareReloads(daemon(camera), 1000);
}

TEST(LifecycleSlowTiming, AThousandUnloadsAndLoadsAtRunTime) {
    const Camera camera("dome");
    Agent agent(withModuleTable(camera));
    Manager manager(agent.peer());
    const std::string status = statusObject(manager);
    constexpr int kWarmUp = 100;
    Footprint before{};
    for (int i = 0; i < 1000 + kWarmUp; ++i) {
        if (i == kWarmUp) {
            before = footprint(agent);
        }
        ASSERT_TRUE(manager.set(status, Type::Integer, kUnload).ok()) << i;
        ASSERT_EQ(manager.get(oids::modelName).single().type, Type::NoSuchObject) << i;
        ASSERT_TRUE(manager.set(status, Type::Integer, kLoad).ok()) << i;
        ASSERT_EQ(manager.get(oids::modelName).single().type, Type::Octets) << i;
    }
    expectFlat(before, footprint(agent));
    EXPECT_EQ(duplicates(agent), 0U);
}

TEST(LifecycleSlow, TwoHundredStartsAndStops) {
    const Camera camera("dome");
    startAndStop(withModule(camera.directory()), 200);
}

TEST(LifecycleSlow, TwoHundredStartsAndStopsOfADaemon) {
    const Camera camera("dome");
    startAndStop(daemon(camera), 200);
}
