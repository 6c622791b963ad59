// SPDX-License-Identifier: Apache-2.0
// Builds of the module for a camera's own core library: what is refused at once, and where the module looks for it.
#include <algorithm>
#include <cctype>
#include <cstddef>
#include <cstdint>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include <elf.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "process.h"
#include "temporary_directory.h"

namespace {

using namespace support;
using testing::HasSubstr;
using testing::Not;

constexpr std::chrono::minutes kBuildLimit{8};

std::string contentOf(const std::string &file) {
    std::ifstream input(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(input), {}};
}

/** Configures a build for a core library. */
CommandResult configure(const TemporaryDirectory &build, const std::string &library,
                        const std::vector<std::string> &options = {}) {
    std::vector<std::string> command = {BUILD_CMAKE,
                                        "-S",
                                        BUILD_SOURCE,
                                        "-B",
                                        build.path(),
                                        "-DCMAKE_BUILD_TYPE=Debug",
                                        "-DCMAKE_CXX_COMPILER=" BUILD_COMPILER,
                                        "-DCMAKE_CXX_COMPILER_LAUNCHER=" BUILD_LAUNCHER,
                                        "-DQUARNSNMP_BUILD_TOOLS=OFF",
                                        "-DZORVA_CORE_LIBRARY=" + library};
    command.insert(command.end(), options.begin(), options.end());
    return runCommand(command, {}, kBuildLimit);
}

/** Configures a build that must be refused. @return the message, with all line breaks and indents as single blanks */
std::string refusal(const std::string &library, const std::vector<std::string> &options = {}) {
    const TemporaryDirectory build;
    const CommandResult result = configure(build, library, options);
    EXPECT_FALSE(result.status.clean()) << result.output;
    std::string text;
    for (const char letter : result.errors) {
        const bool blank = std::isspace(static_cast<unsigned char>(letter)) != 0;
        if (!blank || (!text.empty() && text.back() != ' ')) {
            text += blank ? ' ' : letter;
        }
    }
    return text;
}

void run(const std::vector<std::string> &command) {
    const CommandResult result = runCommand(command, {}, kBuildLimit);
    ASSERT_TRUE(result.status.clean()) << result.output << result.errors;
}

std::string dynamicSection(const std::string &file) {
    const CommandResult result = runCommand({BUILD_READELF, "--wide", "--dynamic", file});
    EXPECT_TRUE(result.status.clean()) << result.errors;
    return result.output;
}

/** Expects the core library to be searched on a path, under its plain name. */
void expectSearchPath(const std::string &module, const std::string &path) {
    const std::string section = dynamicSection(module);
    EXPECT_THAT(section, HasSubstr("Library runpath: [" + path + "]")) << module;
    EXPECT_THAT(section, Not(HasSubstr("(RPATH)"))) << module;
    EXPECT_THAT(section, HasSubstr("Shared library: [libzorva-core.so]")) << module;
}

TEST(CoreLibraryForABuild, MustExist) {
    EXPECT_THAT(refusal("/nowhere/libzorva-core.so"),
                HasSubstr("ZORVA_CORE_LIBRARY is '/nowhere/libzorva-core.so', which does not exist"));
}

TEST(CoreLibraryForABuild, MustBeASharedLibrary) {
    const TemporaryDirectory files;
    EXPECT_THAT(refusal(files.write("libzorva-core.so", "INPUT(libother.so)\n")),
                HasSubstr("which is not a shared library"));
    EXPECT_THAT(refusal(files.write("truncated.so", contentOf(BUILD_CORE_LIBRARY).substr(0, EI_NIDENT))),
                HasSubstr("which is not a shared library"));
}

TEST(CoreLibraryForABuild, MustBeForTheSameProcessor) {
    std::string library = contentOf(BUILD_CORE_LIBRARY);
    ASSERT_GT(library.size(), sizeof(Elf64_Ehdr));
    library.at(offsetof(Elf64_Ehdr, e_machine)) = static_cast<char>(EM_S390);
    library.at(offsetof(Elf64_Ehdr, e_machine) + 1) = 0;
    const TemporaryDirectory files;
    EXPECT_THAT(refusal(files.write("libzorva-core.so", library)),
                HasSubstr("/libzorva-core.so', a library for IBM S/390, but this build is for "));
}

TEST(CoreLibraryForABuild, MustHaveItsName) {
    EXPECT_THAT(refusal(BUILD_MODULE), HasSubstr("which does not have the SONAME libzorva-core.so"));
}

TEST(SearchPathOfABuild, MustNotDependOnTheCurrentDirectory) {
    EXPECT_THAT(refusal(BUILD_CORE_LIBRARY, {"-DQUARNSNMP_CORE_RPATH=/usr/lib/zorva;lib"}),
                HasSubstr("QUARNSNMP_CORE_RPATH contains 'lib'; expected an absolute path or $ORIGIN"));
}

TEST(SearchPathOfABuild, IsTheModulesDirectoryWithTheStandIn) {
    expectSearchPath(BUILD_MODULE, "$ORIGIN");
}

TEST(SearchPathOfASlowBuild, HasNoDirectoryOfTheBuildMachine) {
    const TemporaryDirectory build;
    const TemporaryDirectory prefix;
    const std::string module = "/libquarnsnmp_Morvek.so";
    const CommandResult configured = configure(build, BUILD_CORE_LIBRARY);
    ASSERT_TRUE(configured.status.clean()) << configured.errors;
    ASSERT_NO_FATAL_FAILURE(run({BUILD_CMAKE, "--build", build.path(), "--parallel", "2"}));
    ASSERT_NO_FATAL_FAILURE(
        run({BUILD_CMAKE, "--install", build.path(), "--component", "module", "--prefix", prefix.path()}));
    expectSearchPath(build.path() + "/lib" + module, "$ORIGIN");
    expectSearchPath(prefix.path() + "/lib/quarnsnmp" + module, "$ORIGIN");

    ASSERT_TRUE(configure(build, BUILD_CORE_LIBRARY, {"-DQUARNSNMP_CORE_RPATH=/usr/lib/zorva;$ORIGIN"}).status.clean());
    ASSERT_NO_FATAL_FAILURE(run({BUILD_CMAKE, "--build", build.path(), "--parallel", "2"}));
    expectSearchPath(build.path() + "/lib" + module, "/usr/lib/zorva:$ORIGIN");
}

} // namespace
