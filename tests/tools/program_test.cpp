// SPDX-License-Identifier: Apache-2.0
// The program around the commands: several cameras, exit codes, texts, the command line.
#include <algorithm>
#include <csignal>
#include <cstdlib>
#include <sstream>

#include <fcntl.h>
#include <sys/resource.h>
#include <unistd.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "command_line.h"
#include "commands/trap_text.h"
#include "host_processes.h"
#include "object_oids.h"
#include "parsed_command_line.h"
#include "run.h"
#include "security_level.h"

using namespace ptzctl;
using testing::HasSubstr;

namespace {

const std::vector<std::string> kTwo = {"one", "two"};

/** Removes the program's variables from the environment of the tests. */
class CleanEnvironment : public testing::Environment {
public:
    void SetUp() override {
        Invocation invocation;
        const std::unique_ptr<CLI::App> app = commandLine(invocation);
        for (const CLI::Option *option : app->get_options()) {
            if (!option->get_envname().empty()) {
                unsetenv(option->get_envname().c_str());
            }
        }
    }
};

const testing::Environment *const kEnvironment = testing::AddGlobalTestEnvironment(new CleanEnvironment);

/** Succeeds for the camera "one", and fails in one way or another for others. */
void command(const std::string &host, Report &report) {
    report.text = "pid " + std::to_string(getpid()) + "\n";
    report.data["name"] = host;
    if (host == "refusing") {
        throw snmp::Failure(snmp::Cause::Refused, "no", "ask again");
    }
    if (host == "two") {
        throw snmp::Failure(snmp::Cause::NoAnswer, "no answer", "look");
    }
    if (host == "dying") {
        std::raise(SIGKILL);
    }
    if (host == "throwing") {
        throw std::out_of_range("trouble");
    }
    if (host == "large") {
        report.text.assign(1U << 20U, 'x');
    }
}

std::vector<Outcome> outcomes(const std::vector<std::string> &hosts) {
    return runOnAll(hosts, command);
}

/** Returns the output of a command without a camera. */
std::string printed(const std::vector<std::string> &arguments) {
    Invocation invocation;
    EXPECT_EQ(complaint(invocation, arguments), "");
    return invocation.local ? invocation.local() : "";
}

} // namespace

TEST(Program, EachCameraHasAProcess) {
    const std::vector<Outcome> both = outcomes({"one", "large"});
    EXPECT_EQ(both[0].code, ExitCode::Done);
    EXPECT_NE(both[0].report.text, "pid " + std::to_string(getpid()) + "\n");
    EXPECT_EQ(both[0].report.data.at("name"), "one");
    EXPECT_EQ(both[1].report.text.size(), 1U << 20U);
}

TEST(Program, AFailureOfOneCameraDoesNotAffectTheOthers) {
    const std::vector<std::string> hosts = {"dying", "throwing", "one", "refusing"};
    const std::vector<Outcome> all = outcomes(hosts);
    EXPECT_EQ(all[0].code, ExitCode::BadResponse);
    EXPECT_EQ(all[1].error, "trouble");
    EXPECT_EQ(all[2].code, ExitCode::Done);
    EXPECT_EQ(all[3].code, ExitCode::Refused);
    EXPECT_EQ(errorsText(hosts, all), "ptzctl: dying: the child process died before it had an outcome\n"
                                      "ptzctl: throwing: trouble\n"
                                      "ptzctl: refusing: no\n  ask again\n");
}

TEST(Program, MoreCamerasThanDescriptorsAreAskedInTurn) {
    rlimit before{};
    ASSERT_EQ(getrlimit(RLIMIT_NOFILE, &before), 0);
    rlimit few = before;
    few.rlim_cur = 24;
    ASSERT_EQ(setrlimit(RLIMIT_NOFILE, &few), 0);
    std::vector<std::string> hosts(60, "one");
    hosts.back() = "two";
    const std::vector<Outcome> all = outcomes(hosts);
    EXPECT_EQ(setrlimit(RLIMIT_NOFILE, &before), 0);
    ASSERT_EQ(all.size(), hosts.size());
    EXPECT_TRUE(std::all_of(all.begin(), all.end() - 1, [](const Outcome &outcome) {
        return outcome.code == ExitCode::Done && outcome.report.data.at("name") == "one";
    }));
    EXPECT_EQ(all.back().code, ExitCode::NoAnswer);
}

TEST(Program, WithoutAnyDescriptorEachCameraHasAnError) {
    rlimit before{};
    ASSERT_EQ(getrlimit(RLIMIT_NOFILE, &before), 0);
    rlimit none = before;
    none.rlim_cur = 0;
    ASSERT_EQ(setrlimit(RLIMIT_NOFILE, &none), 0);
    const std::vector<Outcome> all = outcomes(kTwo);
    EXPECT_EQ(setrlimit(RLIMIT_NOFILE, &before), 0);
    EXPECT_EQ(errorsText(kTwo, all), "ptzctl: one: no process: Too many open files\n"
                                     "ptzctl: two: no process: Too many open files\n");
    EXPECT_EQ(all[1].code, ExitCode::BadResponse);
}

TEST(Program, TheExitCodeIsTheCommonOne) {
    const auto code = [](const std::vector<std::string> &hosts) {
        return static_cast<int>(overallCode(outcomes(hosts)));
    };
    EXPECT_EQ(code({"one"}), 0);
    EXPECT_EQ(code({"one", "one"}), 0);
    EXPECT_EQ(code({"refusing"}), 1);
    EXPECT_EQ(code({"two"}), 3);
    EXPECT_EQ(code({"two", "two"}), 3);
    EXPECT_EQ(code({"one", "two"}), 4);
    EXPECT_EQ(code({"refusing", "two"}), 4);
    EXPECT_EQ(code({"throwing"}), 5);
}

TEST(Program, SeveralCamerasHaveHeadings) {
    std::vector<Outcome> both = {{ExitCode::Done, {"fine\n", {{"x", 1}}}, "", ""},
                                 {ExitCode::NoAnswer, {}, "no answer", "look"}};
    EXPECT_EQ(outcomesText(kTwo, both, {}), "one\nfine\n\ntwo\nno answer\n");
    EXPECT_EQ(outcomesText({"one"}, {both.front()}, {}), "fine\n");
    EXPECT_EQ(outcomesJson(kTwo, both).dump(),
              R"([{"host":"one","ok":true,"x":1},)"
              R"({"host":"two","ok":false,"error":{"code":3,"text":"no answer","advice":"look"}}])");
    EXPECT_EQ(outcomesJson({"one"}, {both.front()}).dump(), R"({"host":"one","ok":true,"x":1})");
}

TEST(Program, TextsAreAlignedByTheirDisplayWidth) {
    const Style coloured{true};
    EXPECT_EQ(displayWidth("5 °C"), 4U);
    EXPECT_EQ(displayWidth(coloured.heading("Pan")), 3U);
    EXPECT_EQ(alignedRows({{"a", "1°", "x"}, {"bbb", "", "y"}, {"c", "22"}}), "a    1°  x\nbbb      y\nc    22\n");
    EXPECT_EQ(coloured.heading("Pan"), "\033[1mPan\033[0m");
    EXPECT_EQ(Style{}.trouble("Pan"), "Pan");
    EXPECT_EQ(coloured.trouble(""), "");
}

TEST(Program, OnlyTerminalsAreColouredUnlessNoColorIsSet) {
    const int terminal = posix_openpt(O_RDWR | O_NOCTTY);
    ASSERT_GE(terminal, 0);
    const int file = open("/dev/null", O_WRONLY);
    unsetenv("NO_COLOR");
    EXPECT_TRUE(wantsColours(terminal));
    EXPECT_FALSE(wantsColours(file));
    setenv("NO_COLOR", "", 1);
    EXPECT_TRUE(wantsColours(terminal));
    setenv("NO_COLOR", "1", 1);
    EXPECT_FALSE(wantsColours(terminal));
    unsetenv("NO_COLOR");
    close(file);
    close(terminal);
}

TEST(Program, WrongCommandLinesAreRefused) {
    const std::vector<std::pair<std::vector<std::string>, std::string>> wrong = {
        {{}, "A subcommand is required"},
        {{"frob"}, "unknown: 'frob'"},
        {{"pan"}, "A subcommand is required"},
        {{"pan", "up"}, "unknown: 'up'"},
        {{"pan", "to"}, "DEGREES is required"},
        {{"pan", "to", "x"}, "Could not convert: DEGREES = x"},
        {{"pan", "to", "361"}, "pan goes to positions from -360 to 360 degrees, not to 361"},
        {{"tilt", "by", "0"}, "tilt makes steps from 0.01 to 327.67 degrees in either direction, not 0"},
        {{"zoom", "to", "-1"}, "zoom goes to positions from 0 to 100 percent, not to -1"},
        {{"pan", "left", "--speed", "0"}, "--speed: '0' is not a number from 1 to 127 or from 1% to 100%"},
        {{"stop", "roll"}, "there is no axis 'roll'"},
        {{"auto", "focus"}, "A subcommand is required"},
        {{"preset", "go", "0"}, "Value 0 not in range 1 to 255"},
        {{"preset", "go", "256"}, "Value 256 not in range 1 to 255"},
        {{"relay", "0", "on"}, "Value 0 not in range 1 to 255"},
        {{"timeouts", "pan"}, "AXIS requires MILLISECONDS"},
        {{"timeouts", "pan", "65536"}, "Value 65536 not in range 0 to 65535"},
        {{"timeouts", "roll", "1"}, "there is no axis 'roll'"},
        {{"get"}, "NAME is required"},
        {{"get", "positionpan"}, "there is no object 'positionpan'"},
        {{"set", "modelName", "x"}, "modelName is read-only"},
        {{"set", "positionPan", "zz"}, "'zz' is not octets"},
        {{"set", "timeoutPan", "1.5"}, "'1.5' is not a number"},
        {{"decode", "pan", "02"}, "a command has 4 octets, not 1"},
        {{"decode", "pan", "05", "00", "00", "01"}, "there is no mode 5"},
        {{"--snmp-version", "1", "status"}, "1 not in {2c,3}"},
        {{"--byte-order", "middle", "status"}, "Check middle"},
        {{"--timeout", "0", "status"}, "not in range"},
        {{"status", "now"}, "unknown: 'now'"},
    };
    for (const auto &[arguments, text] : wrong) {
        EXPECT_THAT(complaint(arguments), HasSubstr(text)) << testing::PrintToString(arguments);
    }
}

TEST(Program, OctetsNeedNoCamera) {
    EXPECT_EQ(printed({"encode", "pan", "to", "270"}), "02 40 78 69\n");
    EXPECT_EQ(printed({"encode", "tilt", "to", "-30", "--speed", "100%"}), "02 7F E8 80\n");
    EXPECT_EQ(printed({"encode", "zoom", "out", "--speed", "1"}), "03 FF 00 00\n");
    EXPECT_EQ(printed({"encode", "iris", "stop"}), "00 00 00 00\n");
    EXPECT_EQ(printed({"--byte-order", "high", "encode", "pan", "to", "180"}), "02 40 46 50\n");
    EXPECT_EQ(printed({"decode", "pan", "02", "40", "78", "69"}), "to 270.00° at speed 64\n");
    EXPECT_EQ(printed({"decode", "pan", "02:40:46:50", "--byte-order", "high"}), "to 180.00° at speed 64\n");
    EXPECT_THAT(printed({"decode", "pan", "02407869", "--json"}), HasSubstr("\"degrees\": 270.0"));
    EXPECT_THAT(printed({"get", "--list", "--json"}), HasSubstr("\"name\": \"positionPan\""));
    EXPECT_THAT(printed({"get", "--list"}), HasSubstr("positionPan                1.3.6.1.4.1.1206.4.2.7.4.1.0"));
}

TEST(Program, SpeedsAreNumbersOrPercentages) {
    EXPECT_EQ(speedOf("1"), 1);
    EXPECT_EQ(speedOf("127"), 127);
    EXPECT_EQ(speedOf("50%"), 64);
    EXPECT_EQ(speedOf("100%"), 127);
    for (const char *text : {"", "%", "0", "128", "-1", "0%", "101%", "1.5", "50 %", "x"}) {
        EXPECT_THROW(speedOf(text), std::invalid_argument) << text;
    }
}

TEST(Program, HostsAreAListAndOptionsGoAnywhere) {
    Invocation invocation;
    EXPECT_EQ(complaint(invocation, {"-H", "a,b:1161", "status", "--host", "c", "-c", "private", "--json"}), "");
    EXPECT_THAT(invocation.hosts, testing::ElementsAre("a", "b:1161", "c"));
    EXPECT_EQ(invocation.credentials.community, "private");
    EXPECT_TRUE(invocation.json);
}

TEST(Program, TheEnvironmentReplacesOptions) {
    ASSERT_EQ(setenv("PTZCTL_HOST", "a,b", 1), 0);
    ASSERT_EQ(setenv("PTZCTL_BYTE_ORDER", "high", 1), 0);
    ASSERT_EQ(setenv("PTZCTL_TIMEOUT", "15", 1), 0);
    Invocation invocation;
    EXPECT_EQ(complaint(invocation, {"status"}), "");
    unsetenv("PTZCTL_HOST");
    unsetenv("PTZCTL_BYTE_ORDER");
    unsetenv("PTZCTL_TIMEOUT");
    EXPECT_THAT(invocation.hosts, testing::ElementsAre("a", "b"));
    EXPECT_EQ(invocation.settings.order, ptz::ByteOrder::HighFirst);
    EXPECT_EQ(invocation.timeoutSeconds, 15);
}

TEST(Program, ARestartNeedsAConfirmation) {
    Invocation invocation;
    ASSERT_EQ(complaint(invocation, {"-H", "camera", "reboot"}), "");
    bool sent = false;
    invocation.action = [&sent](Context &) { sent = true; };
    for (const bool terminal : {true, false}) {
        std::istringstream input("n\n");
        std::ostringstream output;
        std::ostringstream errors;
        EXPECT_EQ(run(invocation, input, output, errors, terminal), ExitCode::Usage);
        EXPECT_THAT(errors.str(), HasSubstr(terminal ? "Restart the camera? [y/N]" : "use --yes"));
        EXPECT_EQ(output.str(), "");
    }
    EXPECT_FALSE(sent);
}

TEST(Program, ACameraIsRequired) {
    Invocation invocation;
    ASSERT_EQ(complaint(invocation, {"status"}), "");
    std::istringstream input;
    std::ostringstream output;
    std::ostringstream errors;
    EXPECT_EQ(run(invocation, input, output, errors, false), ExitCode::Usage);
    EXPECT_THAT(errors.str(), HasSubstr("ptzctl: no camera given\n  use --host, --hosts-file or PTZCTL_HOST"));
}

TEST(Program, TrapsAreExplained) {
    const auto trap = [](const std::string &notification, std::vector<snmp::Varbind> values) {
        values.insert(values.begin(), {oids::snmpTrapOID, snmp::Type::Oid, 0, notification});
        return values;
    };
    const std::string temperature = oids::registered::temperature;
    const std::vector<snmp::Varbind> warm = trap(temperature, {{temperature, snmp::Type::Gauge32, 36, ""}});
    EXPECT_EQ(trapText(warm, {}), "temperature is 36 °C: it has moved by more than 2 degrees");
    EXPECT_EQ(trapJson(warm, {}).dump(),
              R"({"notification":"1.3.6.1.4.1.99999.1.1.7.0","name":"temperature","values":{"temperature":36}})");
    EXPECT_EQ(trapText(trap(".1.3.6.1.6.3.1.1.5.1", {}), {}), "coldStart: the agent has started");
    EXPECT_EQ(trapText(trap(".1.3.9", {snmp::integer(".1.3.8", 2)}), {}), "1.3.9, 1.3.8 is 2");
    EXPECT_EQ(trapText({}, {}), "a notification without a name");
    const std::vector<snmp::Varbind> power =
        trap(oids::registered::power, {{oids::registered::power, snmp::Type::Gauge32, 7, ""}});
    EXPECT_EQ(trapText(power, {}), "power is 7: the state of the power supply has changed");
}

TEST(Program, AValueOfTheWrongTypeInATrapIsNoValue) {
    const std::string temperature = oids::registered::temperature;
    const std::vector<snmp::Varbind> wrong = {{oids::snmpTrapOID, snmp::Type::Oid, 0, temperature},
                                              snmp::octetString(temperature, "hot"),
                                              snmp::integer(oids::positionPan, 5),
                                              snmp::nameOnly(".1.3.8")};
    EXPECT_EQ(trapText(wrong, {}), "temperature is OCTET STRING instead of Gauge32, positionPan is INTEGER instead of "
                                   "OCTET STRING, 1.3.8 is NULL: it has moved by more than 2 degrees");
    const nlohmann::ordered_json values = trapJson(wrong, {}).at("values");
    EXPECT_EQ(values.at("temperature").at("problem"), "OCTET STRING instead of Gauge32");
    EXPECT_TRUE(values.at("1.3.8").is_null());
}

TEST(Program, TheLevelIsThatOfThePassphrases) {
    EXPECT_EQ(snmp::levelOfPassphrases("", ""), snmp::SecurityLevel::NoAuthNoPriv);
    EXPECT_EQ(snmp::levelOfPassphrases("a", ""), snmp::SecurityLevel::AuthNoPriv);
    EXPECT_EQ(snmp::levelOfPassphrases("a", "b"), snmp::SecurityLevel::AuthPriv);
    EXPECT_EQ(snmp::levelOfPassphrases("", "b"), snmp::SecurityLevel::AuthPriv) << "never less than asked for";
    for (const char *name : {"noAuthNoPriv", "authNoPriv", "authPriv"}) {
        EXPECT_EQ(snmp::levelName(snmp::levelNamed(name)), name);
    }
    EXPECT_THROW(snmp::levelNamed("none"), std::invalid_argument);
}
