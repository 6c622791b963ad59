// SPDX-License-Identifier: Apache-2.0
// A fleet as its users see it.
#include <filesystem>
#include <fstream>
#include <set>

#include <boost/asio/io_context.hpp>
#include <boost/asio/ip/udp.hpp>

#include "manager.h"
#include "object_oids.h"
#include "process_information.h"
#include "running_fleet.h"

using namespace fleet_test;
using harness::Manager;
using testing::HasSubstr;

namespace {

constexpr const char *kSysName = ".1.3.6.1.2.1.1.5.0";
constexpr unsigned kCount = 10;

std::string host(unsigned number) {
    // The tests begin at 127.1.0.250, so the addresses carry over.
    constexpr unsigned kFirst = 250;
    const unsigned last = kFirst + number - 1;
    return "127.1." + std::to_string(last / 256) + "." + std::to_string(last % 256);
}

/** Ten cameras, eight of them domes. */
class Fleet : public testing::Test {
protected:
    void SetUp() override {
        fleet_.start({"10", "--base", "127.1.0.250", "--hosts-file", fleet_.file("hosts"), "--targets-file",
                      fleet_.file("targets"), "--camera", "dome:8", "stepper:1", "minimal:1"});
    }

    void TearDown() override {
        fleet_.stop();
        EXPECT_EQ("", fleet_.process().errors().text());
    }

    RunningFleet fleet_;
};

TEST_F(Fleet, HasACameraOfItsOwnAtEachAddress) {
    EXPECT_THAT(fleet_.process().output().text(), HasSubstr("10 cameras ready in "));
    std::set<std::string> serials;
    std::set<std::string> models;
    for (unsigned number = 1; number <= kCount; ++number) {
        Manager manager(fleet_.agent(host(number)), "public");
        EXPECT_EQ(std::string("camera-00") + (number < 10 ? "0" : "") + std::to_string(number),
                  manager.get(kSysName).single().octets);
        serials.insert(manager.get(oids::serialNumber).single().octets);
        models.insert(manager.get(oids::modelName).single().octets);
    }
    EXPECT_EQ(kCount, serials.size()) << testing::PrintToString(serials);
    EXPECT_EQ(1U, serials.count("QN4000004711-0001")) << testing::PrintToString(serials);
    EXPECT_EQ(3U, models.size()) << testing::PrintToString(models);
}

TEST_F(Fleet, ShowsNothingOfTheAgentItself) {
    Manager manager(fleet_.agent(host(1)));
    for (const char *const oid : {".1.3.6.1.4.1.2021.13.14.2.1.5.1", ".1.3.6.1.2.1.11.1.0", ".1.3.6.1.6.3.16.1.4.1"}) {
        const harness::Result result = manager.get(oid);
        EXPECT_TRUE(result.answered);
        EXPECT_FALSE(snmp::hasValue(result.single().type)) << oid;
    }
    constexpr std::int64_t kLoad = 4;
    EXPECT_EQ(harness::ErrorStatus::NoAccess,
              manager.set(".1.3.6.1.4.1.2021.13.14.2.1.5.9", snmp::Type::Integer, kLoad).error);
}

#ifdef FLEET_CLIENT
TEST_F(Fleet, IsWhatTheClientReadsFromTheHostsFile) {
    const std::map<std::string, std::string> environment = {{"SNMPCONFPATH", fleet_.directory()},
                                                            {"SNMP_PERSISTENT_DIR", fleet_.directory()}};
    const CommandResult result = runCommand(
        {FLEET_CLIENT, "--hosts-file", fleet_.file("hosts"), "-c", "public", "get", "serialNumber"}, environment);
    EXPECT_EQ(0, result.status.code) << result.output << result.errors;
    for (unsigned number = 1; number <= kCount; ++number) {
        EXPECT_THAT(result.output, HasSubstr(fleet_.agent(host(number))));
    }
}
#endif

TEST_F(Fleet, HasTargetsForPrometheus) {
    std::ifstream file(fleet_.file("targets"));
    const nlohmann::json targets = nlohmann::json::parse(file);
    ASSERT_EQ(kCount, targets.size());
    EXPECT_EQ(fleet_.agent(host(kCount)), targets.back().at("targets").at(0));
    EXPECT_EQ("camera-0010", targets.back().at("labels").at("name"));
}

TEST_F(Fleet, MovesOnlyTheCameraThatIsAsked) {
    Manager manager(fleet_.agent(host(2)));
    const std::string toNinety("\x02\x7F\x28\x23", 4);
    ASSERT_TRUE(manager.set({snmp::octetString(oids::positionPan, toNinety)}).ok());
    EXPECT_TRUE(eventually([&] { return fleet_.value(2, "positioning/1", "pan").at("position") == 90000; }));
    EXPECT_EQ(0, fleet_.value(1, "positioning/1", "pan").at("position"));
    EXPECT_EQ(0, fleet_.value(3, "positioning/1", "pan").at("position"));
}

TEST_F(Fleet, IsControlledInParts) {
    const CommandResult some = fleet_.control("1-2,127.1.0.252", {"set", "alarm/1", "state", "1"});
    EXPECT_EQ(0, some.status.code) << some.errors;
    EXPECT_EQ("alarm/1 state is 1 (3 cameras)\n", some.output);
    EXPECT_EQ(1, fleet_.value(3, "alarm/1", "state"));
    EXPECT_EQ(0, fleet_.value(5, "alarm/1", "state"));
    const CommandResult all = fleet_.control("*", {"set", "temperature/1", "temperature", "45000"});
    EXPECT_EQ(1, all.status.code) << "a minimal camera has no temperature";
    EXPECT_THAT(all.output, HasSubstr("temperature/1 temperature is 45000 ("));
    EXPECT_THAT(all.errors, HasSubstr("temperature/1"));
    EXPECT_EQ(45000, fleet_.value(1, "temperature/1", "temperature"));
    const CommandResult none = fleet_.control("cube", {"state"});
    EXPECT_EQ(1, none.status.code);
    EXPECT_EQ("quarnsnmp-fleet: 'cube' selects no camera\n", none.errors);
    const nlohmann::json states = nlohmann::json::parse(fleet_.control("minimal", {"state"}).output);
    EXPECT_EQ(1U, states.size());
}

TEST_F(Fleet, PlaysAScenarioWithAStagger) {
    const std::string scenario = fleet_.file("alarms.json");
    writeFile(scenario, R"({"name": "alarms", "skipMissingServices": true, "steps": [
        {"at": 0, "set": {"alarm/1": {"state": 1}}}, {"at": 60, "set": {"alarm/2": {"state": 1}}}]})");
    const CommandResult played =
        fleet_.control("dome,minimal", {"play", scenario, "--speed", "600"}, {"--stagger", "0.01"});
    EXPECT_EQ(0, played.status.code) << played.errors;
    EXPECT_EQ("alarm/1 state is 1 (8 cameras; 1 without the service)\n"
              "alarm/2 state is 1 (8 cameras; 1 without the service)\n",
              played.output);
    EXPECT_EQ(1, fleet_.value(1, "alarm/2", "state"));
    writeFile(scenario, R"({"name": "alarms", "steps": [{"at": 0, "set": {"alarm/9": {"state": 1}}}]})");
    const CommandResult refused = fleet_.control("1", {"play", scenario});
    EXPECT_EQ(1, refused.status.code);
    EXPECT_THAT(refused.errors, HasSubstr("camera-0001: "));
}

TEST_F(Fleet, ReportsWhatItsCamerasUse) {
    const CommandResult table = runFleetProgram({"status", "--directory", fleet_.directory(), "--interval", "0.1"});
    EXPECT_EQ(0, table.status.code) << table.errors;
    EXPECT_THAT(table.output, HasSubstr("camera-0001  127.1.0.250:" + fleet_.port()));
    EXPECT_THAT(table.output, HasSubstr("10 cameras, 10 ready, 0 restarts, "));
    const nlohmann::json idle = fleet_.status();
    ASSERT_EQ(kCount, idle.size());
    for (const auto &camera : idle) {
        EXPECT_TRUE(camera.at("ready").get<bool>());
        EXPECT_GT(camera.at("kilobytes").get<double>(), 100.0);
        EXPECT_EQ(0.0, camera.at("requestsPerSecond").get<double>()) << camera;
    }
}

TEST_F(Fleet, CountsRequests) {
    Process status({{FLEET_PROGRAM, "status", "--directory", fleet_.directory(), "--json", "--interval", "1"}});
    Manager manager(fleet_.agent(host(1)), "public");
    while (status.running()) {
        EXPECT_TRUE(manager.get(kSysName).ok());
    }
    const nlohmann::json cameras = nlohmann::json::parse(status.output().text());
    EXPECT_GT(cameras.at(0).at("requestsPerSecond").get<double>(), 1.0);
    EXPECT_EQ(0.0, cameras.at(1).at("requestsPerSecond").get<double>());
}

TEST_F(Fleet, IsTheOnlyOneInItsDirectory) {
    const CommandResult second = runFleetProgram({"1", "--directory", fleet_.directory()});
    EXPECT_EQ(1, second.status.code);
    EXPECT_EQ("quarnsnmp-fleet: another fleet runs in " + fleet_.directory() + "\n", second.errors);
}

TEST(FleetTraps, LeaveFromTheAddressOfTheirCamera) {
    boost::asio::io_context io;
    using boost::asio::ip::udp;
    udp::socket receiver(io, {boost::asio::ip::address_v4::loopback(), 0});
    receiver.non_blocking(true);
    RunningFleet fleet;
    fleet.start({"3", "--trap-to", "127.0.0.1:" + std::to_string(receiver.local_endpoint().port())});
    std::set<std::string> senders; // of the traps with which agents report their start
    EXPECT_TRUE(eventually([&] {
        char message[1500];
        udp::endpoint sender;
        boost::system::error_code error;
        if (receiver.receive_from(boost::asio::buffer(message), sender, 0, error) > 0) {
            senders.insert(sender.address().to_string());
        }
        return senders.size() == 3;
    }));
    EXPECT_THAT(senders, testing::ElementsAre("127.1.0.1", "127.1.0.2", "127.1.0.3"));
    fleet.stop();
}

TEST(FleetSlow, OfAHundredStartsAndEnds) {
    RunningFleet fleet;
    fleet.start({"100"});
    const std::vector<pid_t> processes = fleet.processes();
    EXPECT_EQ(200U, processes.size());
    const CommandResult all = fleet.control("*", {"set", "alarm/1", "state", "1"});
    EXPECT_EQ("alarm/1 state is 1 (100 cameras)\n", all.output) << all.errors;
    EXPECT_EQ(100U, fleet.status().size());
    fleet.stop();
    for (const pid_t process : processes) {
        EXPECT_FALSE(runs(process));
    }
}

} // namespace
