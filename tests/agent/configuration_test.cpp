// SPDX-License-Identifier: Apache-2.0
// The shipped configurations in a real agent: the rights of communities and users.
#include <algorithm>
#include <memory>
#include <stdexcept>

#include <sys/stat.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "configured_agent.h"
#include "object_oids.h"
#include "process_information.h"
#include "trap_receiver.h"

namespace {

using namespace configured_agent;
using namespace harness;
using nlohmann::json;
using std::chrono::milliseconds;
using testing::AnyOf;
using testing::Each;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::MatchesRegex;
using testing::Not;
using testing::SizeIs;
using testing::UnorderedElementsAre;

constexpr const char *kColdStart = ".1.3.6.1.6.3.1.1.5.1";

/** A manager that is not answered does not wait longer than this; a request that is answered comes behind in a test. */
constexpr milliseconds kShortWait{150};

const ReservedPort &nobodysPort() {
    static const ReservedPort port;
    return port;
}

std::string nobody() {
    return "127.0.0.1:" + std::to_string(nobodysPort().number());
}

class LabConfiguration : public CameraAgent {
protected:
    LabConfiguration() : CameraAgent("dome", labAgent(nobody())), reader_(agent_.peer(), "public") {}

    Manager reader_; // the fixture's own manager is "private"
};

class FieldConfiguration : public CameraAgent {
protected:
    explicit FieldConfiguration(const std::vector<Replacement> &further = {})
        : CameraAgent("dome", fieldAgent(nobody(), further)), viewer_(agent_.peer(), kViewer),
          operator_(agent_.peer(), kOperator) {}

    json presets() const {
        return targetState(camera_, "presets_tours/1").at("presets");
    }

    Manager viewer_;
    Manager operator_;
};

/** The operator with nothing but control, as the file says how. */
class FieldConfigurationWithoutMaintenance : public FieldConfiguration {
protected:
    FieldConfigurationWithoutMaintenance()
        : FieldConfiguration({{"access operators \"\" usm priv exact readable maintenance none",
                               "access operators \"\" usm priv exact readable control none"}}) {}
};

/** A view that is too wide: the mistake that the other tests must notice. */
class FieldConfigurationWithAWideView : public FieldConfiguration {
protected:
    FieldConfigurationWithAWideView()
        : FieldConfiguration({{"view maintenance included .1.3.6.1.4.1.99999.1\n",
                               "view maintenance included .1\nview readable included .1\n"}}) {}
};

void expectNoAnswer(Manager &&manager, const std::string &who) {
    manager.setTimeout(kShortWait);
    const Result result = manager.get(oids::modelName);
    EXPECT_FALSE(result.answered) << who << ": " << result;
    EXPECT_THAT(result.report, IsEmpty()) << who;
}

/** Returns the sockets of an agent, except the module's connections to the camera. */
std::vector<std::string> socketsOfTheAgent(const Agent &agent) {
    std::vector<std::string> opened = sockets(agent.pid());
    const auto connections = std::remove(opened.begin(), opened.end(), "unix");
    EXPECT_NE(connections, opened.end()) << "no connection to the camera";
    opened.erase(connections, opened.end());
    return opened;
}

/** Expects one socket for requests, one that sends traps, and the kernel's notifications about network interfaces. */
void expectSocketsOnOneAddress(Agent &agent) {
    const std::string requests = "udp " + agent.peer();
    const auto traps = MatchesRegex("udp 127\\.0\\.0\\.1:[0-9]+");
    EXPECT_THAT(socketsOfTheAgent(agent), UnorderedElementsAre(requests, traps, "netlink"));
    agent.hup();
    // A reload opens a new socket for traps; the agent leaves the old one open.
    EXPECT_THAT(socketsOfTheAgent(agent), Each(AnyOf(requests, traps, "netlink")));
}

std::optional<Trap> coldStartOf(const TrapReceiver &receiver) {
    return receiver.waitFor([](const Trap &trap) { return trap.notification() == kColdStart; });
}

/** A user with wrong credentials, and the agent's answer. */
struct Stranger {
    const char *name;
    User user;
    ErrorStatus error;  ///< status of the answer; None without an answer
    const char *report; ///< start of the report; an agent without error and report does not answer
};

void PrintTo(const Stranger &stranger, std::ostream *stream) {
    *stream << stranger.name;
}

class FieldConfigurationRefuses : public FieldConfiguration, public testing::WithParamInterface<Stranger> {};

const Stranger kStrangers[] = {
    {"AnUnknownUser", {"somebody", kViewer.authentication, kViewer.privacy}, ErrorStatus::None, "Unknown user name"},
    {"AnUnknownUserWithoutKeys",
     {"somebody", "", "", SecurityLevel::NoAuthNoPriv},
     ErrorStatus::None,
     "Unknown user name"},
    {"AWrongSigningKey",
     {"operator", kViewer.authentication, kOperator.privacy},
     ErrorStatus::None,
     "Authentication failure"},
    {"AWrongEncryptionKey", {"operator", kOperator.authentication, kViewer.privacy}, ErrorStatus::None, ""},
    {"TheViewerUnsigned", {"viewer", "", "", SecurityLevel::NoAuthNoPriv}, ErrorStatus::AuthorizationError, ""},
    {"TheOperatorUnsigned", {"operator", "", "", SecurityLevel::NoAuthNoPriv}, ErrorStatus::AuthorizationError, ""},
    {"TheViewerUnencrypted",
     {"viewer", kViewer.authentication, "", SecurityLevel::AuthNoPriv},
     ErrorStatus::AuthorizationError,
     ""},
    {"TheOperatorUnencrypted",
     {"operator", kOperator.authentication, "", SecurityLevel::AuthNoPriv},
     ErrorStatus::AuthorizationError,
     ""},
    {"AUserInNoGroup", kNotifier, ErrorStatus::AuthorizationError, ""},
};

INSTANTIATE_TEST_SUITE_P(Requests, FieldConfigurationRefuses, testing::ValuesIn(kStrangers),
                         [](const auto &each) { return std::string(each.param.name); });

} // namespace

TEST(ShippedConfiguration, IsNotAdaptedWhereAPassageIsMissingOrThereTwice) {
    EXPECT_THROW(shippedConfiguration("snmpd-lab.conf", {{"trap2sink 127.0.0.2", ""}}), std::runtime_error);
    EXPECT_THROW(shippedConfiguration("snmpd-lab.conf", {{"view readable included", ""}}), std::runtime_error);
    EXPECT_THROW(shippedConfiguration("snmpd-nowhere.conf"), std::runtime_error);
    EXPECT_THAT(shippedConfiguration("snmpd-lab.conf", {{"127.0.0.1:1162", "127.0.0.1:7"}}), HasSubstr("127.0.0.1:7"));
}

TEST_F(LabConfiguration, OpensSocketsOnTheLoopbackInterfaceOnly) {
    expectSocketsOnOneAddress(agent_);
}

TEST_F(LabConfiguration, PublicSeesTheSystemAndTheCameraAndWritesNothing) {
    expectToSeeOnly(reader_, {oids::kSystemSubtree, oids::kNtcipSubtree, oids::kVendorSubtree});
    expectWrites(reader_, commands(), ErrorStatus::NoAccess);
    expectWrites(reader_, settings(), ErrorStatus::NoAccess);
    expectWrites(reader_, objectsOfTheAgent(), ErrorStatus::NoAccess);
}

TEST_F(LabConfiguration, PrivateWritesTheCameraAndNothingElse) {
    expectToSeeOnly(manager_, {oids::kNtcipSubtree, oids::kVendorSubtree});
    expectWrites(manager_, commands(), ErrorStatus::None);
    expectWrites(manager_, settings(), ErrorStatus::None);
    expectWrites(manager_, objectsOfTheAgent(), ErrorStatus::NoAccess);
    EXPECT_EQ(get(oids::modelName), "\"QN-4000 Dome\"") << "the module is still there";
}

TEST_F(LabConfiguration, ReadsAddNothingToTheModulesLog) {
    const std::size_t before = agent_.moduleLog().size();
    EXPECT_THAT(reader_.bulkWalk(oids::kNtcipSubtree), Not(IsEmpty()));
    EXPECT_THAT(reader_.bulkWalk(oids::kVendorSubtree), Not(IsEmpty()));
    EXPECT_TRUE(reader_.get(oids::rangePanLeftLimit).ok());
    EXPECT_EQ(agent_.moduleLog().size(), before) << agent_.moduleLog().tail(5);
    EXPECT_FALSE(manager_.set({integer(oids::rangeTrueNorthOffset, 1)}).ok());
    EXPECT_EQ(logged("can only be 0 or 65535"), 1U) << "a refused value is logged";
}

TEST_F(LabConfiguration, OtherCommunitiesAreNotAnswered) {
    for (const char *community : {"", "Public", "admin"}) {
        expectNoAnswer(Manager(agent_.peer(), community), community);
    }
    EXPECT_TRUE(reader_.get(oids::modelName).ok());
}

TEST(LabConfigurationTraps, AreSentAsVersion2) {
    const Camera camera("minimal");
    const TrapReceiver receiver;
    const Agent agent(withCamera(labAgent(receiver.peer()), camera));
    const std::optional<Trap> trap = coldStartOf(receiver);
    ASSERT_TRUE(trap);
    EXPECT_THAT(trap->kind, HasSubstr("SNMP v2c"));
}

TEST_F(FieldConfiguration, TheViewerSeesTheSystemAndTheCameraAndWritesNothing) {
    expectToSeeOnly(viewer_, {oids::kSystemSubtree, oids::kNtcipSubtree, oids::kVendorSubtree});
    EXPECT_EQ(recordedValue(viewer_.get(oids::modelName).single()), "\"QN-4000 Dome\"");
    expectWrites(viewer_, commands(), ErrorStatus::NoAccess);
    expectWrites(viewer_, settings(), ErrorStatus::NoAccess);
    expectWrites(viewer_, objectsOfTheAgent(), ErrorStatus::NoAccess);
}

TEST_F(FieldConfiguration, TheOperatorWritesTheCameraAndNothingElse) {
    expectToSeeOnly(operator_, {oids::kSystemSubtree, oids::kNtcipSubtree, oids::kVendorSubtree});
    expectWrites(operator_, commands(), ErrorStatus::None);
    EXPECT_THAT(presets(), IsEmpty());
    expectWrites(operator_, settings(), ErrorStatus::None);
    EXPECT_THAT(presets(), SizeIs(1));
    expectWrites(operator_, objectsOfTheAgent(), ErrorStatus::NoAccess);
    EXPECT_TRUE(operator_.get(oids::modelName).ok()) << "the module is still there";
}

TEST_F(FieldConfiguration, TheOperatorRestartsTheCameraAndTheViewerDoesNot) {
    const CameraEvents events(camera_);
    EXPECT_EQ(viewer_.set({reboot()}).error, ErrorStatus::NoAccess);
    EXPECT_TRUE(operator_.set({reboot()}).ok());
    EXPECT_TRUE(events.waitFor({{"event", "reboot"}}));
    EXPECT_THAT(operations(events), SizeIs(1)) << "the viewer's request has reached the camera";
}

TEST_F(FieldConfiguration, CommunitiesAreNotAnswered) {
    for (const CommunityVersion version : {CommunityVersion::V1, CommunityVersion::V2c}) {
        for (const char *community : {"public", "private", "viewer", "operator", ""}) {
            expectNoAnswer(Manager(agent_.peer(), community, version), community);
        }
    }
    EXPECT_TRUE(viewer_.get(oids::modelName).ok());
}

TEST_P(FieldConfigurationRefuses, WhatIsNotSignedAndEncryptedByItsUser) {
    const auto &[name, user, error, report] = GetParam();
    const bool answered = error != ErrorStatus::None;
    const bool reported = *report != '\0';
    auto stranger = std::make_unique<Manager>(agent_.peer(), user);
    if (!answered && !reported) {
        stranger->setTimeout(kShortWait);
    }
    for (const Result &result : {stranger->get(oids::modelName), stranger->set({reboot()})}) {
        EXPECT_EQ(result.answered, answered) << result;
        EXPECT_EQ(result.error, error) << result;
        EXPECT_EQ(!result.report.empty(), reported) << result;
        EXPECT_THAT(result.report, testing::StartsWith(report));
    }
    stranger.reset(); // its keys must not be taken for the operator's
    EXPECT_TRUE(operator_.get(oids::modelName).ok());
    EXPECT_EQ(logged("rebooting system now"), 0U);
}

TEST_F(FieldConfiguration, OpensSocketsOnOneAddressOnly) {
    expectSocketsOnOneAddress(agent_);
}

TEST_F(FieldConfiguration, KeepsKeysInPlaceOfPassphrasesForItsOwnUserOnly) {
    agent_.stop();
    const std::string kept = agent_.persistentData().text();
    for (const User &user : {kViewer, kOperator, kNotifier}) {
        EXPECT_THAT(kept, HasSubstr("\"" + user.name + "\""));
        EXPECT_THAT(kept, Not(HasSubstr(user.authentication)));
        EXPECT_THAT(kept, Not(HasSubstr(user.privacy)));
    }
    struct stat status {};
    ASSERT_EQ(stat(agent_.persistentData().path().c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 07777U, 0600U);
    agent_.start();
    EXPECT_TRUE(Manager(agent_.peer(), kOperator).set({commands().front().value}).ok()) << "the keys have been lost";
}

TEST_F(FieldConfigurationWithoutMaintenance, TheOperatorMovesTheCameraAndChangesNothing) {
    expectWrites(operator_, commands(), ErrorStatus::None);
    const CameraEvents events(camera_);
    expectWrites(operator_, settings(), ErrorStatus::NoAccess);
    EXPECT_EQ(operator_.set({reboot()}).error, ErrorStatus::NoAccess);
    EXPECT_THAT(finishedOperations(events), IsEmpty());
    EXPECT_THAT(presets(), IsEmpty());
}

TEST_F(FieldConfigurationWithAWideView, TheAgentTakesWhatTheShippedViewsKeepFromIt) {
    for (const Written &object : objectsOfTheAgent()) {
        const Result result = operator_.set({object.value});
        EXPECT_TRUE(result.answered) << object.name << ": " << result;
        EXPECT_NE(result.error, ErrorStatus::NoAccess) << object.name << ": " << result;
    }
    EXPECT_EQ(operator_.get(oids::modelName).single().type, Type::NoSuchObject) << "the module can be unloaded";
}

TEST(FieldConfigurationTraps, AreSignedAndEncryptedByTheNotifier) {
    const std::string engine = "0x80001f888001020304aabbccdd";
    const Camera camera("minimal");
    const TrapReceiver receiver(TrapReceiver::Transport::Datagram, {creationOf(kNotifier, engine)});
    AgentOptions options = fieldAgent(receiver.peer());
    options.persistentData.push_back("oldEngineID " + engine);
    const Agent agent(withCamera(options, camera));
    const std::optional<Trap> trap = coldStartOf(receiver);
    ASSERT_TRUE(trap);
    EXPECT_THAT(trap->kind, testing::AllOf(HasSubstr("SNMP v3"), HasSubstr("user notifier")));
}
