// SPDX-License-Identifier: Apache-2.0
// The check of a camera's core library: it finds each defect, survives it, and commands nothing.
#include <algorithm>
#include <fstream>
#include <iterator>
#include <set>
#include <sstream>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "camera_events.h"
#include "eventually.h"
#include "process.h"
#include "settings.h"
#include "temporary_directory.h"

namespace {

using namespace support;
using nlohmann::json;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::Pair;

constexpr int kFailed = 1;
constexpr int kUsageError = 2;

// A sanitizer would report the crashes that the libraries make on purpose.
const std::map<std::string, std::string> kEnvironment = {
    {"ASAN_OPTIONS", "handle_segv=0:handle_abort=0:handle_sigbus=0:detect_leaks=0"}};

CommandResult run(const std::vector<std::string> &arguments, std::map<std::string, std::string> environment = {}) {
    std::vector<std::string> command = {CORE_CHECK};
    command.insert(command.end(), arguments.begin(), arguments.end());
    environment.insert(kEnvironment.begin(), kEnvironment.end());
    return runCommand(command, environment, std::chrono::minutes(1));
}

using Failures = std::map<std::string, std::string>; ///< detail of each failed check, by group and name

struct Outcome {
    ExitStatus status;
    std::size_t checks = 0;
    Failures failures;
    std::string text;
};

Outcome check(const std::string &library, const std::map<std::string, std::string> &environment,
              const std::vector<std::string> &options = {}) {
    std::vector<std::string> arguments = {"--json", "--patience", "5", library};
    arguments.insert(arguments.end(), options.begin(), options.end());
    const CommandResult result = run(arguments, environment);
    Outcome outcome{result.status, 0, {}, result.output + result.errors};
    const json report = json::parse(result.output);
    for (const json &entry : report.at("checks")) {
        ++outcome.checks;
        if (!entry.at("passed").get<bool>()) {
            outcome.failures[entry.at("group").get<std::string>() + ' ' + entry.at("check").get<std::string>()] =
                entry.at("detail").get<std::string>();
        }
    }
    EXPECT_EQ(report.at("failed"), outcome.failures.size());
    EXPECT_EQ(result.status.code, outcome.failures.empty() ? 0 : kFailed) << outcome.text;
    return outcome;
}

Outcome checkDefective(const std::string &defect) {
    return check(DEFECTIVE_CORE, {{"DEFECT", defect}});
}

std::set<std::string> linesOf(const std::string &text) {
    std::istringstream lines(text);
    std::set<std::string> result;
    for (std::string line; std::getline(lines, line);) {
        result.insert(line);
    }
    return result;
}

TEST(CoreCheck, PassesALibraryWithoutDefects) {
    EXPECT_THAT(checkDefective("").failures, IsEmpty());
    EXPECT_THAT(checkDefective("no hardware").failures, IsEmpty());
}

/** A defect, and the failed checks. */
struct Defect {
    std::string name;
    Failures failures;
};

void PrintTo(const Defect &defect, std::ostream *stream) {
    *stream << defect.name;
}

class CoreCheckOfADefect : public testing::TestWithParam<Defect> {};

TEST_P(CoreCheckOfADefect, ReportsItAndChecksTheRest) {
    const Outcome outcome = checkDefective(GetParam().name);
    EXPECT_EQ(outcome.failures, GetParam().failures) << outcome.text;
    EXPECT_GE(outcome.checks, 79U);
}

const std::string kPower = "power get_power_state_send power\\n1";
const std::string kVoltage = "power get_voltage_state_send power\\n1";

Failures bothPowerRequests(const std::string &detail) {
    return {{kPower, detail}, {kVoltage, detail}};
}

INSTANTIATE_TEST_SUITE_P(
    Requests, CoreCheckOfADefect,
    testing::Values(
        Defect{"crash in a request", bothPowerRequests("the process was killed by SIGSEGV")},
        Defect{"abort in a request", bothPowerRequests("the process was killed by SIGABRT")},
        Defect{"exit in a request", bothPowerRequests("the library ended the process with status 0")},
        Defect{"exception in a request", bothPowerRequests("an exception: not for C")},
        Defect{"other exception in a request", bothPowerRequests("an exception that is no std::exception")},
        Defect{"hang in a request", bothPowerRequests("hangs: no answer within 5 seconds")},
        Defect{"slow request", bothPowerRequests("too slow: a call must end after about two seconds")},
        Defect{"failing request", bothPowerRequests("status 77, no \\u001bluck")},
        Defect{"null text", {{"library statusToString", "status 0 has no text, but a null pointer"}}},
        Defect{"failing end",
               {{"library zorva_core_deinit", "status 77, no \\u001bluck"},
                {"fork use and end in the fork", "status 77, no \\u001bluck"},
                {"reload load, use, unload 1", "status 77, no \\u001bluck"}}},
        Defect{"crash at the unload",
               {{"fork use and end in the fork", "the process was killed by SIGSEGV"},
                {"reload load, use, unload 1", "the process was killed by SIGSEGV"}}},
        Defect{"crash after a fork", {{"fork use and end in the fork", "the process was killed by SIGSEGV"}}},
        Defect{"descriptor", {{"reload descriptors", "2 more descriptors are open after two reloads"}}},
        Defect{"log stays open", {{"reload descriptors", "2 more descriptors are open after two reloads"}}}));

TEST(CoreCheck, ReportsThreadsThatOutliveTheLibrary) {
    const Outcome outcome = checkDefective("thread");
    EXPECT_THAT(outcome.failures, ElementsAre(Pair("reload threads", "3 threads still run after the unload")));
}

TEST(CoreCheck, ReportsEachServiceWhoseDiscoveryFails) {
    const Outcome outcome = checkDefective("false for missing hardware");
    EXPECT_EQ(outcome.failures.size(), 13U);
    EXPECT_THAT(outcome.failures,
                Contains(Pair("power getTargetIds",
                              "false, so the query failed; for missing hardware, return true without targets")));
    for (const char *lens : {"lens_focus", "focus_stepper", "iris"}) {
        EXPECT_THAT(outcome.failures, Contains(Pair(lens + std::string(" getTargetIds"), HasSubstr("ten seconds"))));
    }
}

TEST(CoreCheck, ReportsEachServiceWithoutAHandle) {
    const Outcome outcome = checkDefective("null handle");
    EXPECT_EQ(outcome.failures.size(), 13U);
    EXPECT_THAT(outcome.failures, Contains(Pair("relay initiator_init", HasSubstr("null handle"))));
}

TEST(CoreCheck, StopsIfTheLibraryDoesNotStart) {
    EXPECT_THAT(checkDefective("crash in the start").failures,
                ElementsAre(Pair("library zorva_core_init", "the process was killed by SIGSEGV")));
    EXPECT_THAT(checkDefective("hang in the start").failures,
                ElementsAre(Pair("library zorva_core_init", "hangs: no answer within 5 seconds")));
}

TEST(CoreCheck, KeepsTheLibrarysOutputOutOfItsOwn) {
    const CommandResult result = run({DEFECTIVE_CORE}, {{"DEFECT", "output"}});
    EXPECT_TRUE(result.status.clean());
    EXPECT_THAT(result.output, Not(HasSubstr("noise")));
    EXPECT_THAT(result.errors, HasSubstr("noise\n"));
    EXPECT_THAT(result.output, HasSubstr(" checks passed, 0 failed.\n"));
}

TEST(CoreCheck, ListsAllMissingFunctionsAndNamesTheAbi) {
    const Outcome outcome = check(INCOMPLETE_CORE, {});
    EXPECT_THAT(outcome.failures, Contains(Pair("library zorva_api_iris_set_velocity_send", "missing")));
    EXPECT_THAT(outcome.failures, Contains(Pair(HasSubstr("getTargetIds"), HasSubstr("-D_GLIBCXX_USE_CXX11_ABI=1"))));
    EXPECT_THAT(outcome.failures,
                Contains(Pair("library SONAME", "'libincomplete-core.so'; expected libzorva-core.so")));
    EXPECT_THAT(outcome.failures, Contains(Pair("library symbols", HasSubstr("34 of 83;"))));
}

TEST(CoreCheck, NamesTheProcessorOfAnotherLibrary) {
    constexpr std::size_t kMachine = 18; // in the header of the file
    constexpr char kAarch64 = static_cast<char>(183);
    constexpr char kX86 = 62;
    std::ifstream input(DEFECTIVE_CORE, std::ios::binary);
    std::string library{std::istreambuf_iterator<char>(input), {}};
    const bool onX86 = library.at(kMachine) == kX86;
    library.at(kMachine) = onX86 ? kAarch64 : kX86;
    const TemporaryDirectory files;
    EXPECT_THAT(check(files.write("libzorva-core.so", library), {}).failures,
                ElementsAre(Pair("library file", onX86 ? "the library is for AArch64, this program for x86-64"
                                                       : "the library is for x86-64, this program for AArch64")));
}

TEST(CoreCheck, RefusesFilesThatAreNoLibraries) {
    const TemporaryDirectory files;
    std::ifstream input(DEFECTIVE_CORE, std::ios::binary);
    const std::string library{std::istreambuf_iterator<char>(input), {}};
    for (const std::string &content : {std::string(), std::string("INPUT(libother.so)\n"), library.substr(0, 40)}) {
        EXPECT_THAT(check(files.write("file", content), {}).failures,
                    ElementsAre(Pair("library file", "this is not a shared library")));
    }
    EXPECT_THAT(check(files.write("file", library.substr(0, library.size() / 4)), {}).failures,
                ElementsAre(Pair("library load", Not(""))));
}

TEST(CoreCheck, ExplainsUsageErrors) {
    EXPECT_EQ(run({}).status.code, kUsageError);
    EXPECT_EQ(run({"--patience", "1", DEFECTIVE_CORE}).status.code, kUsageError);
    const CommandResult unreadable = run({"/nowhere/libzorva-core.so"});
    EXPECT_EQ(unreadable.status.code, kUsageError);
    EXPECT_THAT(unreadable.errors, HasSubstr("quarnsnmp-core-check: /nowhere/libzorva-core.so is unreadable\n"));
    EXPECT_THAT(run({"--help"}).output, HasSubstr("Usage: quarnsnmp-core-check"));
}

TEST(CoreCheck, ListsTheFunctionsThatTheModuleImports) {
    const CommandResult symbols = run({"--symbols"});
    const CommandResult imports = runCommand({NM_PROGRAM, "--dynamic", "--undefined-only", harness::modulePath()});
    std::set<std::string> imported;
    for (const std::string &line : linesOf(imports.output)) {
        if (line.find("zorva") != std::string::npos) {
            imported.insert(line.substr(line.rfind(' ') + 1));
        }
    }
    EXPECT_EQ(linesOf(symbols.output), imported);
    EXPECT_EQ(imported.size(), 83U);
}

/** The stand-in with a simulated camera. */
class CoreCheckOfTheStandIn : public testing::Test {
protected:
    std::map<std::string, std::string> environment() const {
        return {{"QUARNSNMP_CAMERA_DIR", camera_.directory()},
                {"QUARNSNMP_LOG_FILE", log_},
                {"QUARNSNMP_LOG_LEVEL", level_}};
    }

    Failures failures() const {
        return check(harness::coreLibraryPath(), environment(), {"--log", log_}).failures;
    }

    /** Returns the state of the camera, without the time. */
    json state() const {
        json all = json::parse(camera_.control("state").output);
        all.erase("time");
        return all;
    }

    void control(const std::vector<std::string> &arguments) const {
        const CommandResult result = camera_.control(arguments);
        ASSERT_TRUE(result.status.clean()) << result.errors;
    }

    TemporaryDirectory files_;
    std::string log_ = files_.write("log", "");
    std::string level_ = "debug";
    const Camera camera_{"dome"};
};

TEST_F(CoreCheckOfTheStandIn, PassesAndCommandsNothing) {
    const harness::CameraEvents events(camera_);
    const json before = state();
    EXPECT_THAT(failures(), IsEmpty());
    EXPECT_EQ(state(), before);
    // An event behind all others.
    control({"set", "temperature/1", "temperature", "20000"});
    ASSERT_TRUE(events.waitFor({{"event", "changed"}, {"target", "temperature/1"}}));
    EXPECT_THAT(events.matching({{"event", "command"}}), IsEmpty());
}

TEST_F(CoreCheckOfTheStandIn, ReportsServicesThatFail) {
    control({"down", "iris"});
    control({"fail", "temperature", "get_temperature_send", "1", "--always"});
    control({"delay", "relay", "get_state_send", "60000", "--always"});
    control({"delay", "power", "*", "1000", "--always"});
    EXPECT_THAT(failures(),
                ElementsAre(Pair("iris getTargetIds", HasSubstr("false")),
                            Pair("relay get_state_send relay/1", HasSubstr("status 103, no answer in time")),
                            Pair("relay get_state_send relay/2", HasSubstr("status 103, no answer in time")),
                            Pair("temperature get_temperature_send temperature/1", "status 1, the device failed")));
}

TEST_F(CoreCheckOfTheStandIn, ReportsLevelsThatAreMissingInTheLog) {
    level_ = "notice";
    EXPECT_THAT(failures(), ElementsAre(Pair("library log file", "lacks the levels 6 7 of the name SNMP")));
}

} // namespace
