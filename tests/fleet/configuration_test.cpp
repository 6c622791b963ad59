// SPDX-License-Identifier: Apache-2.0
// What the fleet writes for agents and for other programs.
#include <stdexcept>

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include "agent_files.h"
#include "lists.h"
#include "temporary_directory.h"

using namespace fleet;
using testing::HasSubstr;
using testing::Not;

namespace {

CameraPlan cameraAt(const std::string &address) {
    CameraPlan plan;
    plan.number = 1;
    plan.name = "camera-0001";
    plan.kind = "dome";
    plan.file = "/cameras/dome.json";
    plan.serial = "QN1-0001";
    plan.address = parseEndpoint(address);
    plan.directory = "/fleet/0001";
    return plan;
}

TEST(FleetAgent, ShowsTheCameraOnly) {
    const std::string text = agentConfiguration(cameraAt("127.1.0.1:1161"), "/lib/module.so", std::nullopt);
    EXPECT_THAT(text, HasSubstr("agentAddress udp:127.1.0.1:1161\n"));
    EXPECT_THAT(text, HasSubstr("[snmp] clientaddr 127.1.0.1\n"));
    EXPECT_THAT(text, HasSubstr("sysName camera-0001\n"));
    EXPECT_THAT(text, HasSubstr("rwcommunity private 127.0.0.0/8 -V writable\n"));
    EXPECT_THAT(text, HasSubstr("dlmod quarnsnmp /lib/module.so\n"));
    EXPECT_THAT(text, Not(HasSubstr("trap")));
    EXPECT_THAT(text, Not(HasSubstr("2021")));
}

TEST(FleetAgent, SendsTrapsOnRequest) {
    EXPECT_THAT(agentConfiguration(cameraAt("127.1.0.1:1161"), "/m.so", parseEndpoint("127.0.0.1:1162")),
                HasSubstr("trap2sink 127.0.0.1:1162 public\n"));
}

TEST(FleetAgent, IsForEverybodyAtAnAddressOfANetwork) {
    const std::string text = agentConfiguration(cameraAt("192.0.2.1:161"), "/m.so", std::nullopt);
    EXPECT_THAT(text, HasSubstr("rwcommunity private default -V writable\n"));
}

TEST(FleetLists, AreForTheirPrograms) {
    const std::vector<CameraPlan> cameras = {cameraAt("127.1.0.1:1161"), cameraAt("127.1.0.2:1161")};
    EXPECT_EQ("127.1.0.1:1161 # camera-0001 dome\n127.1.0.2:1161 # camera-0001 dome\n", hostsText(cameras));
    const nlohmann::json targets = nlohmann::json::parse(targetsText(cameras));
    ASSERT_EQ(2U, targets.size());
    EXPECT_EQ((nlohmann::json{{"targets", {"127.1.0.2:1161"}},
                              {"labels", {{"name", "camera-0001"}, {"kind", "dome"}, {"serial", "QN1-0001"}}}}),
              targets[1]);
}

TEST(FleetLists, AreTriedBeforeTheStart) {
    const support::TemporaryDirectory directory;
    EXPECT_NO_THROW(checkWritable(directory.file("hosts")));
    EXPECT_NO_THROW(checkWritable(directory.write("there", "x")));
    EXPECT_THROW(checkWritable(directory.path()), std::runtime_error);
    EXPECT_THROW(checkWritable(directory.file("missing/hosts")), std::runtime_error);
    EXPECT_THROW(checkWritable("/dev/null"), std::runtime_error);
}

} // namespace
