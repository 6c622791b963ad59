// SPDX-License-Identifier: Apache-2.0
// `ptzctl probe` with a real agent, by itself and in the monitoring systems that run it.
#include <fstream>
#include <regex>

#include <sys/types.h>
#include <unistd.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "eventually.h"
#include "ptzctl_client.h"
#include "user_name.h"

namespace {

using namespace harness;
using namespace ptzctl_client;
using std::chrono::seconds;
using testing::AllOf;
using testing::ContainsRegex;
using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

constexpr int kWarning = 1;
constexpr int kCritical = 2;
constexpr int kUnknown = 3;

constexpr const char *kIcinga = "/usr/sbin/icinga2";
constexpr const char *kNagios = "/usr/sbin/nagios4";

class Probe : public CameraClient {
protected:
    /** Probes the camera. @return the line */
    std::string line(int code, std::vector<std::string> options) const {
        options.insert(options.begin(), "probe");
        const CommandResult result = ends(code, std::move(options), "public");
        EXPECT_EQ(result.errors, "");
        return result.output;
    }
};

class ProbeOfMinimal : public CameraClient {
protected:
    ProbeOfMinimal() : CameraClient("minimal") {}
};

class ProbeTiming : public Probe {};

/** Returns a shipped file that runs the program of this build. */
std::string shippedCommand(const std::string &name) {
    std::ifstream file(MONITORING_DIRECTORY "/" + name);
    EXPECT_TRUE(file) << name;
    const std::string text{std::istreambuf_iterator<char>(file), {}};
    EXPECT_THAT(text, HasSubstr("/usr/bin/ptzctl"));
    return std::regex_replace(text, std::regex("/usr/bin/ptzctl"), PTZCTL_PROGRAM);
}

/** A monitoring system that checks a camera once a second. */
class MonitoringSystem : public CameraClient {
protected:
    /**
     * Validates the configuration, and waits until a running system has written a result.
     * @param results  start of the names of the files with results
     * @return its line
     */
    std::string resultOf(const std::vector<std::string> &validation, const std::vector<std::string> &command,
                         const std::string &results) {
        const CommandResult check = runCommand(validation, environment());
        EXPECT_TRUE(check.status.clean()) << check.output << check.errors;
        EXPECT_THAT(check.output, Not(HasSubstr("arning:"))) << "a complaint about the configuration";
        Process system({command, environment()});
        std::string line;
        EXPECT_TRUE(eventually(seconds(60), [&] {
            line = firstResult(results);
            return !line.empty() || !system.running();
        }));
        system.signal(SIGTERM);
        EXPECT_TRUE(system.wait(patient(seconds(20))));
        return line;
    }

    /** Returns the first line about the camera in files whose names have the same start. */
    std::string firstResult(const std::string &start) const {
        for (const std::string &name : entriesOf(directory_.path())) {
            if (name.rfind(start, 0) != 0) {
                continue;
            }
            for (const std::string &line : LogFile(directory_.file(name)).lines()) {
                if (line.find("CAMERA ") != std::string::npos) {
                    return line;
                }
            }
        }
        return "";
    }

    std::map<std::string, std::string> environment() const {
        const std::string &directory = client_.directory.path();
        return {{"HOME", directory},
                {"SNMPCONFPATH", directory},
                {"ICINGA2_USER", userName()},
                {"ICINGA2_GROUP", groupName()}};
    }

    /** Writes a file of the system's directory, with each `@@` replaced by the directory. @return its path */
    std::string write(const std::string &name, const std::string &content) const {
        return directory_.write(name, std::regex_replace(content, std::regex("@@"), directory_.path()));
    }

    TemporaryDirectory directory_;
};

class Icinga : public MonitoringSystem {};
class Nagios : public MonitoringSystem {};

} // namespace

TEST_F(Probe, ALineHasTheStateOfTheCamera) {
    EXPECT_THAT(line(0, {"-w", "-20:60", "-c", "-30:70", "--power", "0", "--voltage", "0", "--input", "1=off,2=off"}),
                AllOf(StartsWith("CAMERA OK - QN-4000 Dome, temperature 31 °C, power 0, voltage 0, inputs off"
                                 "|'temperature'=31;-20:60;-30:70;; 'power'=0;;0:0;; 'voltage'=0;;0:0;; "
                                 "'input_1'=0;;0:0;0; 'input_2'=0;;0:0;0; 'input_3'=0;;;0; 'input_4'=0;;;0; "),
                      ContainsRegex(" 'latency'=[0-9]+\\.[0-9]{3}s;;;0;\n$")));
    setField(camera_, "temperature/1", "temperature", -25000);
    EXPECT_THAT(line(kWarning, {"-w", "-20:60", "-c", "-30:70"}),
                AllOf(StartsWith("CAMERA WARNING - temperature -25 °C is outside -20:60, QN-4000 Dome, "),
                      HasSubstr("|'temperature'=-25;-20:60;-30:70;; ")));
    setField(camera_, "power/1", "powerState", 2);
    setField(camera_, "alarm/3", "state", 1);
    EXPECT_THAT(line(kCritical, {"--power", "0", "--input", "3=off"}),
                StartsWith("CAMERA CRITICAL - power 2 instead of 0, input 3 is on, QN-4000 Dome, "));
}

TEST_F(Probe, AServiceThatIsDownIsUnreadable) {
    control("down", "temperature");
    EXPECT_THAT(line(kUnknown, {"-w", "60"}), StartsWith("CAMERA UNKNOWN - temperature: "));
    EXPECT_THAT(line(kCritical, {"-w", "60", "--unreadable", "critical"}),
                StartsWith("CAMERA CRITICAL - temperature: "));
}

TEST_F(Probe, OneLineEachForSeveralCameras) {
    const ReservedPort nobody;
    const std::string dead = "127.0.0.1:" + std::to_string(nobody.number());
    EXPECT_THAT(line(kUnknown, {"-t", "2", "-H", dead}),
                AllOf(StartsWith(agent_.peer() + ": CAMERA OK - QN-4000 Dome, "),
                      EndsWith("\n" + dead + ": CAMERA UNKNOWN - no answer\n")));
}

TEST_F(ProbeOfMinimal, WhatTheCameraDoesNotHaveIsLeftOut) {
    EXPECT_THAT(done({"probe"}), StartsWith("CAMERA OK - QN-100 Minimal|'latency'="));
    EXPECT_THAT(ends(kUnknown, {"probe", "-w", "60"}).output,
                StartsWith("CAMERA UNKNOWN - temperature: the camera does not have it, QN-100 Minimal|"));
}

// Each call to a hanging service takes the agent two seconds, and the last line can come late.
TEST_F(ProbeTiming, AProbeEndsWithinItsTimeOut) {
    for (const char *service : {"temperature", "power", "alarm"}) {
        control("delay", service, "*", "60000", "--always");
    }
    for (const int timeout : {2, 3}) {
        const auto start = kernelTime();
        EXPECT_THAT(line(kUnknown, {"-t", std::to_string(timeout)}), StartsWith("CAMERA UNKNOWN - "));
        EXPECT_LE(kernelTime() - start, patient(seconds(timeout)));
    }
    control("clear");
}

TEST_F(Icinga, RunsTheShippedCommand) {
    if (access(kIcinga, X_OK) != 0) {
        GTEST_SKIP() << kIcinga << " is missing; the Debian package is icinga2-bin";
    }
    write("ptzctl.conf", shippedCommand("icinga2/ptzctl.conf"));
    const std::string configuration = write("icinga2.conf", R"(include <itl>
include "@@/ptzctl.conf"
object CheckerComponent "checker" { }
object PerfdataWriter "results" {
  service_perfdata_path = "@@/results"
  service_temp_path = "@@/new"
  rotation_interval = 1
  host_perfdata_path = "@@/hosts"
  host_temp_path = "@@/hosts.new"
  service_format_template = "$service.state$ $service.output$|$service.perfdata$"
}
object Host "camera" {
  address = ")" + agent_.peer() + R"("
  check_command = "dummy"
}
object Service "camera" {
  host_name = "camera"
  check_command = "ptzctl"
  check_interval = 1
  vars.ptzctl_community = "public"
  vars.ptzctl_warning = "-20:30"
  vars.ptzctl_critical = "-30:70"
  vars.ptzctl_power = 0
  vars.ptzctl_inputs = [ "1=off", "2=off" ]
}
)");
    std::vector<std::string> command = {kIcinga, "daemon", "-c", configuration};
    for (const char *place : {"DataDir", "LogDir", "CacheDir", "InitRunDir", "SpoolDir"}) {
        command.insert(command.end(), {"-D", std::string(place) + "=" + directory_.path()});
    }
    std::vector<std::string> validation = command;
    validation.emplace_back("-C");
    EXPECT_THAT(
        resultOf(validation, command, "results"),
        AllOf(StartsWith("WARNING CAMERA WARNING - temperature 31 °C is outside -20:30, QN-4000 Dome, power 0, "),
              HasSubstr("|temperature=31;-20:30;-30:70;; power=0;;0:0;; ")));
}

TEST_F(Nagios, RunsTheShippedCommand) {
    if (access(kNagios, X_OK) != 0) {
        GTEST_SKIP() << kNagios << " is missing; the Debian package is nagios4-core";
    }
    // Where the file says that the community belongs.
    client_.directory.write("snmp.conf", "defCommunity public\n");
    write("ptzctl.cfg", shippedCommand("nagios/ptzctl.cfg"));
    write(
        "objects.cfg",
        R"(
define timeperiod {
    timeperiod_name  always
    alias            always
)" +
            [] {
                std::string days;
                for (const char *day : {"monday", "tuesday", "wednesday", "thursday", "friday", "saturday", "sunday"}) {
                    days += std::string("    ") + day + "  00:00-24:00\n";
                }
                return days;
            }() +
            R"(}
define contact {
    contact_name                   nobody
    host_notifications_enabled     0
    service_notifications_enabled  0
    host_notification_period       always
    service_notification_period    always
    host_notification_commands     nothing
    service_notification_commands  nothing
}
define command {
    command_name  nothing
    command_line  /bin/true
}
define host {
    host_name            camera
    address              )" +
            agent_.peer() + R"(
    max_check_attempts   1
    contacts             nobody
    check_period         always
    notification_period  always
}
define service {
    host_name            camera
    service_description  camera
    check_command        ptzctl!-20:30!-30:70!--power 0 --input 1=off,2=off
    check_interval       1
    max_check_attempts   1
    check_period         always
    notification_period  always
    contacts             nobody
}
)");
    const std::string configuration = write("nagios.cfg", R"(log_file=@@/log
cfg_file=@@/ptzctl.cfg
cfg_file=@@/objects.cfg
object_cache_file=@@/objects.cache
status_file=@@/status
temp_file=@@/temporary
temp_path=@@
check_result_path=@@
command_file=@@/commands
lock_file=@@/lock
query_socket=@@/queries
state_retention_file=@@/retention
check_for_updates=0
illegal_macro_output_chars=`~$&|'"<>
process_performance_data=1
interval_length=1
service_perfdata_file=@@/results
service_perfdata_file_mode=a
service_perfdata_file_template=$SERVICESTATE$ $SERVICEOUTPUT$|$SERVICEPERFDATA$
)"
                                                          "nagios_user=" +
                                                              userName() + "\nnagios_group=" + groupName() + "\n");
    EXPECT_THAT(
        resultOf({kNagios, "-v", configuration}, {kNagios, configuration}, "results"),
        AllOf(StartsWith("WARNING CAMERA WARNING - temperature 31 °C is outside -20:30, QN-4000 Dome, power 0, "),
              HasSubstr("|'temperature'=31;-20:30;-30:70;; 'power'=0;;0:0;; ")));
}
