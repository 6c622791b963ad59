// The module as a file: what it needs, and what it must not have.
#include <regex>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "process.h"
#include "settings.h"

namespace {

using testing::HasSubstr;
using testing::Not;

std::string readelf(const std::string &option, const std::string &file) {
    const harness::CommandResult result = harness::runCommand({"readelf", "-W", option, file});
    EXPECT_TRUE(result.status.clean()) << result.errors;
    EXPECT_NE(result.output, "");
    return result.output;
}

} // namespace

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
