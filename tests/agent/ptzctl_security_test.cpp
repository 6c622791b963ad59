// SPDX-License-Identifier: Apache-2.0
// The command-line client with SNMPv3, and as a receiver of traps.
#include <csignal>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "configured_agent.h"
#include "eventually.h"
#include "object_oids.h"
#include "polled_sensors.h"
#include "ptzctl_client.h"

namespace {

using namespace harness;
using namespace ptzctl_client;
using nlohmann::json;
using std::chrono::seconds;
using testing::HasSubstr;

/** The agent of the field, and its operator's environment. */
class PtzctlField : protected TrapAddress, public CameraAgent {
protected:
    PtzctlField() : CameraAgent("dome", configured_agent::fieldAgent(traps())) {}

    static ClientEnvironment asUser(const User &user) {
        return {{"PTZCTL_USER", user.name}, {"PTZCTL_LEVEL", "authPriv"},
                {"PTZCTL_AUTH", "SHA-256"}, {"PTZCTL_AUTH_PASSPHRASE", user.authentication},
                {"PTZCTL_PRIVACY", "AES"},  {"PTZCTL_PRIVACY_PASSPHRASE", user.privacy}};
    }

    CommandResult run(std::vector<std::string> arguments, const ClientEnvironment &environment) const {
        arguments.insert(arguments.begin(), {"--host", agent_.peer()});
        return client_.run(arguments, environment);
    }

    Client client_;
};

/** The program as a receiver, started before the agent that sends to it. */
class ReceivingClient : protected TrapAddress {
protected:
    ReceivingClient()
        : process_({Client::commandLine({"traps", traps()}), client_.completed({}), client_.directory.file("out"),
                    client_.directory.file("err")}) {
        EXPECT_TRUE(LogFile(client_.directory.file("err")).waitFor("Receiving at", seconds(10)));
        agentOptions_.fakeTime = "+0 x60";
        agentOptions_.configuration = {"trap2sink " + traps() + " public"};
    }

    LogFile received() const {
        return LogFile(client_.directory.file("out"));
    }

    Client client_;
    Process process_;
    AgentOptions agentOptions_;
};

class PtzctlTraps : protected ReceivingClient, public CameraAgent, protected PolledSensors {
protected:
    PtzctlTraps() : CameraAgent("dome", agentOptions_), PolledSensors(camera_) {}
};

} // namespace

TEST_F(PtzctlField, TheOperatorMovesTheCamera) {
    const CommandResult moved = run({"pan", "to", "45"}, asUser(configured_agent::kOperator));
    EXPECT_EQ(moved.status.code, 0) << moved.errors;
    EXPECT_TRUE(eventually(seconds(15),
                           [&] { return targetState(camera_, "positioning/1").at("pan").at("position") == 45000; }));
    const CommandResult refused = run({"pan", "stop"}, asUser(configured_agent::kViewer));
    EXPECT_EQ(refused.status.code, kRefused);
    EXPECT_THAT(refused.errors, HasSubstr("noAccess"));
}

TEST_F(PtzctlField, WhoIsNotLetInIsTold) {
    ClientEnvironment impostor = asUser(configured_agent::kOperator);
    impostor["PTZCTL_AUTH_PASSPHRASE"] = "something else";
    const CommandResult refused = run({"status"}, impostor);
    EXPECT_EQ(refused.status.code, kNoAnswer);
    EXPECT_THAT(refused.errors, HasSubstr("the agent rejects the credentials"));
    impostor.erase("PTZCTL_AUTH_PASSPHRASE");
    const CommandResult without = run({"status"}, impostor);
    EXPECT_EQ(without.status.code, kNoAnswer) << without.errors;
    EXPECT_THAT(without.errors, HasSubstr("PTZCTL_AUTH_PASSPHRASE"));
    EXPECT_EQ(run({"-c", "public", "-t", "0.2", "status"}, {}).status.code, kNoAnswer);
}

TEST_F(PtzctlField, TheFileOfTheManualLetsTheUserIn) {
    const User &user = configured_agent::kViewer;
    client_.directory.write("snmp.conf", "defVersion 3\ndefSecurityName viewer\ndefSecurityLevel authPriv\n"
                                         "defAuthType SHA-256\ndefPrivType AES\ndefAuthPassphrase " +
                                             user.authentication + "\ndefPrivPassphrase " + user.privacy + "\n");
    const CommandResult result = run({"get", "modelName"}, {});
    EXPECT_EQ(result.output, "modelName  QN-4000 Dome\n") << result.errors;
}

TEST_F(PtzctlField, SignedAndEncryptedTrapsAreRead) {
    const std::string lines = agent_.persistentData().text();
    const std::size_t start = lines.find("0x", lines.find("oldEngineID"));
    ASSERT_NE(start, std::string::npos) << lines;
    const std::string engine = lines.substr(start, lines.find_first_of(" \n", start) - start);
    const std::string output = client_.directory.file("out");
    const std::string errors = client_.directory.file("err");
    Process receiver({Client::commandLine({"traps", traps(), "--engine", engine, "--count", "1", "--json"}),
                      client_.completed(asUser(configured_agent::kNotifier)), output, errors});
    ASSERT_TRUE(LogFile(errors).waitFor("Receiving at", seconds(10))) << LogFile(errors).text();
    agent_.hup();
    const std::optional<ExitStatus> status = receiver.wait(patient(seconds(15)));
    ASSERT_TRUE(status) << LogFile(errors).text();
    EXPECT_TRUE(status->clean());
    EXPECT_EQ(json::parse(LogFile(output).text()).at("name"), "nsNotifyRestart");
}

TEST_F(PtzctlTraps, TrapsAreExplainedUntilCtrlC) {
    EXPECT_TRUE(received().waitFor("127.0.0.1  coldStart", seconds(10))) << received().text();
    awaitPoll(kTemperatureSensor);
    show(kTemperatureSensor, 45000);
    EXPECT_TRUE(received().waitFor("temperature is 45 °C: it has moved by more than 2 degrees", seconds(20)))
        << received().text();
    process_.signal(SIGINT);
    const std::optional<ExitStatus> status = process_.wait(patient(seconds(10)));
    ASSERT_TRUE(status);
    EXPECT_TRUE(status->clean()) << status->describe();
}

TEST_F(PtzctlTraps, AnInformIsAnswered) {
    const CommandResult sender = runCommand({"snmpinform", "-v2c", "-c", "public", "-m", "", "-r", "0", "-t", "10",
                                             traps(), "1", oids::registered::power, oids::registered::power, "u", "7"},
                                            client_.completed({}), seconds(30));
    EXPECT_TRUE(sender.status.clean()) << sender.errors;
    EXPECT_TRUE(received().waitFor("power is 7: the state of the power supply has changed", seconds(10)));
}
