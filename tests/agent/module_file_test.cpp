// SPDX-License-Identifier: Apache-2.0
// The module as a file: its dependencies and its exports.
#include <array>
#include <regex>

#include <dlfcn.h>
#include <pthread.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "process.h"
#include "settings.h"

namespace {

using testing::HasSubstr;
using testing::Not;

std::string readelf(const std::string &option, const std::string &file) {
    const support::CommandResult result = support::runCommand({"readelf", "-W", option, file});
    EXPECT_TRUE(result.status.clean()) << result.errors;
    EXPECT_NE(result.output, "");
    return result.output;
}

/** Returns the number of free thread-specific keys of the process. */
std::size_t freeThreadKeys() {
    std::array<pthread_key_t, 2048> keys{};
    std::size_t count = 0;
    while (count < keys.size() && pthread_key_create(&keys.at(count), nullptr) == 0) {
        ++count;
    }
    for (std::size_t i = 0; i < count; ++i) {
        pthread_key_delete(keys.at(i));
    }
    return count;
}

/** Loads and unloads the module as an agent does that finds no camera. */
void loadAndUnload() {
    void *module = dlopen(harness::modulePath().c_str(), RTLD_NOW | RTLD_GLOBAL);
    ASSERT_NE(module, nullptr) << dlerror();
    const auto deinit = reinterpret_cast<int (*)()>(dlsym(module, "deinit_quarnsnmp"));
    ASSERT_NE(deinit, nullptr);
    EXPECT_EQ(deinit(), 0);
    EXPECT_EQ(dlclose(module), 0);
    EXPECT_EQ(dlopen(harness::modulePath().c_str(), RTLD_NOW | RTLD_NOLOAD), nullptr) << "it stays mapped";
}

} // namespace

TEST(ModuleFile, UsesUpNoThreadKeysWithItsLoads) {
    loadAndUnload();
    const std::size_t before = freeThreadKeys();
    for (int i = 0; i < 10; ++i) {
        loadAndUnload();
    }
    EXPECT_EQ(freeThreadKeys(), before);
}

TEST(ModuleFile, HasNoUniqueSymbolsThatWouldKeepItMapped) {
    EXPECT_THAT(readelf("-s", harness::modulePath()), Not(HasSubstr(" UNIQUE ")));
}

TEST(ModuleFile, FindsTheCoreLibraryByRunpathSoThatTheEnvironmentCanPutAnotherFirst) {
    const std::string dynamic = readelf("-d", harness::modulePath());
    EXPECT_THAT(dynamic, HasSubstr("(NEEDED)             Shared library: [libzorva-core.so]"));
    EXPECT_THAT(dynamic, HasSubstr("(RUNPATH)"));
    EXPECT_THAT(dynamic, Not(HasSubstr("(RPATH)")));
}

TEST(ModuleFile, HasItsEntryPointsByTheirPlainNames) {
    const std::string symbols = readelf("--dyn-syms", harness::modulePath());
    for (const char *name : {"init_quarnsnmp", "deinit_quarnsnmp"}) {
        EXPECT_TRUE(std::regex_search(symbols, std::regex("FUNC +GLOBAL +DEFAULT +[0-9]+ " + std::string(name) + "\n")))
            << name;
    }
}

TEST(ModuleFile, IsNamedAsTheAgentsConfigurationNamesIt) {
    EXPECT_THAT(harness::modulePath(), testing::EndsWith("/libquarnsnmp_Morvek.so"));
}
