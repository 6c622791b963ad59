// SPDX-License-Identifier: Apache-2.0
// Starts again, and ends.
#include <csignal>
#include <filesystem>

#include "manager.h"
#include "object_oids.h"
#include "process_information.h"
#include "running_fleet.h"

using namespace fleet_test;
using harness::Manager;
using testing::HasSubstr;

namespace {

/** Waits until a camera and its agent have been restarted a number of times and are ready. */
bool isReadyAfter(const RunningFleet &fleet, unsigned number, int cameraRestarts, int agentRestarts) {
    return eventually([&] {
        const nlohmann::json camera = fleet.camera(number);
        return camera.at("camera").at("restarts") == cameraRestarts && camera.at("camera").at("ready") == true &&
               camera.at("agent").at("restarts") == agentRestarts && camera.at("agent").at("ready") == true;
    });
}

void killPart(const RunningFleet &fleet, unsigned number, const char *part) {
    kill(fleet.camera(number).at(part).at("process").get<pid_t>(), SIGKILL);
}

void expectNoProcess(const std::vector<pid_t> &processes) {
    EXPECT_TRUE(eventually([&] { return std::none_of(processes.begin(), processes.end(), runs); }));
}

TEST(FleetSupervision, StartsADeadCameraAndADeadAgentAgain) {
    RunningFleet fleet;
    fleet.start({"2"});
    killPart(fleet, 1, "agent");
    EXPECT_TRUE(isReadyAfter(fleet, 1, 0, 1)) << fleet.camera(1);
    killPart(fleet, 1, "camera");
    EXPECT_TRUE(isReadyAfter(fleet, 1, 1, 1)) << fleet.camera(1);
    Manager manager(fleet.agent("127.1.0.1"));
    const std::string toNinety("\x02\x7F\x28\x23", 4);
    EXPECT_TRUE(eventually([&] { return manager.set({snmp::octetString(oids::positionPan, toNinety)}).ok(); }));
    EXPECT_EQ(0, fleet.camera(2).at("camera").at("restarts"));
    EXPECT_EQ(2, fleet.status().at(0).at("restarts"));
    const std::string errors = fleet.process().errors().text();
    EXPECT_THAT(errors, HasSubstr("camera-0001: the agent was ended by SIGKILL; it starts again in 0.2 s\n"));
    EXPECT_THAT(errors, HasSubstr("camera-0001: the camera was ended by SIGKILL; it starts again in 0.2 s\n"));
    EXPECT_TRUE(fleet.process().output().waitFor("camera-0001 is ready again"));
    fleet.stop();
}

TEST(FleetSupervision, StartsBothAgain) {
    RunningFleet fleet;
    fleet.start({"1"});
    killPart(fleet, 1, "camera");
    killPart(fleet, 1, "agent");
    EXPECT_TRUE(isReadyAfter(fleet, 1, 1, 1)) << fleet.camera(1);
    EXPECT_EQ("QN4000004711-0001", Manager(fleet.agent("127.1.0.1"), "public").get(oids::serialNumber).single().octets);
    fleet.stop();
}

TEST(FleetEnd, LeavesNothingBehind) {
    for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
        RunningFleet fleet;
        fleet.start({"3"});
        const std::vector<pid_t> processes = fleet.processes();
        fleet.process().signal(signal);
        const std::optional<ExitStatus> status = fleet.process().wait(kPatience);
        ASSERT_TRUE(status);
        EXPECT_TRUE(status->clean()) << status->describe();
        for (const pid_t process : processes) {
            EXPECT_FALSE(runs(process));
        }
        for (const auto &entry : std::filesystem::recursive_directory_iterator(fleet.directory())) {
            EXPECT_FALSE(entry.is_socket()) << entry.path();
            EXPECT_NE(".lock", entry.path().extension());
        }
    }
}

TEST(FleetEnd, RemovesItsTemporaryDirectory) {
    const TemporaryDirectory scripts;
    const TemporaryDirectory files;
    const harness::ReservedPort port;
    std::map<std::string, std::string> environment = fleetEnvironment(scripts);
    environment["TMPDIR"] = files.path();
    Process fleet({{FLEET_PROGRAM, "1", "--port", std::to_string(port.number())}, environment});
    ASSERT_TRUE(fleet.output().waitFor("1 camera ready in ")) << fleet.errors().text();
    EXPECT_EQ(1U, entriesOf(files.path()).size());
    EXPECT_TRUE(fleet.end(std::chrono::seconds(20)).clean());
    EXPECT_EQ(0U, entriesOf(files.path()).size());
}

TEST(FleetEnd, DoesNotWaitForACameraThatHangs) {
    RunningFleet fleet;
    fleet.start({"2"});
    const std::vector<pid_t> processes = fleet.processes();
    kill(processes[0], SIGSTOP);
    fleet.stop();
    expectNoProcess(processes);
}

TEST(FleetEnd, ComesWhileTheFleetStarts) {
    RunningFleet fleet;
    fleet.begin({"30"});
    ASSERT_TRUE(eventually([&] { return std::filesystem::exists(fleet.directory() + "/0001/alarm.sock"); }));
    fleet.stop();
    EXPECT_FALSE(std::filesystem::exists(fleet.directory() + "/0001/alarm.sock"));
}

TEST(FleetEnd, TakesTheProcessesAlongWhenTheFleetIsKilled) {
    RunningFleet fleet;
    fleet.start({"2"});
    const std::vector<pid_t> processes = fleet.processes();
    fleet.process().signal(SIGKILL);
    expectNoProcess(processes);
    // The next fleet finds the sockets of the killed cameras.
    fleet.start({"2"});
    fleet.stop();
}

TEST(FleetPresets, SurviveARestart) {
    RunningFleet fleet;
    fleet.start({"2"});
    ASSERT_TRUE(Manager(fleet.agent("127.1.0.1")).set(oids::presetStorePosition, snmp::Type::Integer, 7).ok());
    const nlohmann::json stored = fleet.value(1, "presets_tours/1", "presets");
    ASSERT_EQ(1U, stored.size());
    fleet.stop();
    fleet.start({"2"});
    EXPECT_EQ(stored, fleet.value(1, "presets_tours/1", "presets"));
    EXPECT_EQ(0U, fleet.value(2, "presets_tours/1", "presets").size());
    fleet.stop();
}

} // namespace
