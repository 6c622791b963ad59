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

    static ClientEnvironment withoutLevel(const User &user) {
        ClientEnvironment environment = asUser(user);
        environment.erase("PTZCTL_LEVEL");
        return environment;
    }

    /** Engine ID of the agent. */
    std::string engine() const {
        const std::string lines = agent_.persistentData().text();
        const std::size_t start = lines.find("0x", lines.find("oldEngineID"));
        EXPECT_NE(start, std::string::npos) << lines;
        return lines.substr(start, lines.find_first_of(" \n", start) - start);
    }

    /** Sends a trap about the power to the receiver. @param credentials options of the sending program */
    void forgeTrap(const std::vector<std::string> &credentials) const {
        std::vector<std::string> command = {"snmptrap"};
        command.insert(command.end(), credentials.begin(), credentials.end());
        command.insert(command.end(),
                       {"-m", "", traps(), "1", oids::registered::power, oids::registered::power, "u", "7"});
        const CommandResult sender = runCommand(command, client_.completed({}));
        EXPECT_TRUE(sender.status.clean()) << sender.errors;
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

TEST_F(PtzctlField, ThePassphrasesGiveTheLevel) {
    ClientEnvironment environment = asUser(configured_agent::kViewer);
    environment.erase("PTZCTL_LEVEL");
    EXPECT_EQ(run({"get", "modelName"}, environment).output, "modelName  QN-4000 Dome\n");
    // They outweigh a lower level of the file, which an option outweighs.
    client_.directory.write("snmp.conf", "defSecurityLevel authNoPriv\n");
    EXPECT_EQ(run({"get", "modelName"}, environment).output, "modelName  QN-4000 Dome\n");
    EXPECT_NE(run({"get", "modelName", "--level", "authNoPriv"}, environment).status.code, 0);
}

TEST_F(PtzctlField, SignedAndEncryptedTrapsAreRead) {
    const std::string output = client_.directory.file("out");
    const std::string errors = client_.directory.file("err");
    Process receiver({Client::commandLine({"traps", traps(), "--engine", engine(), "--count", "1", "--json"}),
                      client_.completed(withoutLevel(configured_agent::kNotifier)), output, errors});
    ASSERT_TRUE(LogFile(errors).waitFor("Receiving at", seconds(10))) << LogFile(errors).text();
    // Anyone can send these two.
    forgeTrap({"-v2c", "-c", "public"});
    forgeTrap({"-v3", "-e", engine(), "-u", configured_agent::kNotifier.name, "-l", "noAuthNoPriv"});
    ASSERT_TRUE(
        LogFile(errors).waitFor("discarded a notification of the level noAuthNoPriv from 127.0.0.1", seconds(10)));
    agent_.hup();
    const std::optional<ExitStatus> status = receiver.wait(patient(seconds(15)));
    ASSERT_TRUE(status) << LogFile(errors).text();
    EXPECT_TRUE(status->clean());
    const json printed = json::parse(LogFile(output).text());
    EXPECT_EQ(printed.at("name"), "nsNotifyRestart");
    EXPECT_EQ(printed.at("level"), "authPriv");
    EXPECT_THAT(LogFile(errors).text(), testing::EndsWith("ptzctl: discarded 2 notifications\n"));
}

TEST_F(PtzctlField, TrapsOfALowerLevelCanBeAccepted) {
    const std::string output = client_.directory.file("out");
    const std::string errors = client_.directory.file("err");
    Process receiver({Client::commandLine({"traps", traps(), "--engine", engine(), "--level", "noAuthNoPriv"}),
                      client_.completed(withoutLevel(configured_agent::kNotifier)), output, errors});
    ASSERT_TRUE(LogFile(errors).waitFor("Receiving at", seconds(10))) << LogFile(errors).text();
    forgeTrap({"-v2c", "-c", "public"});
    EXPECT_TRUE(LogFile(output).waitFor("127.0.0.1 (noAuthNoPriv)  power is 7", seconds(10)));
    agent_.hup();
    EXPECT_TRUE(LogFile(output).waitFor("127.0.0.1  nsNotifyRestart", seconds(10)));
}

TEST_F(PtzctlField, SignedTrapsNeedTheEngine) {
    const CommandResult result = client_.run({"traps", traps()}, withoutLevel(configured_agent::kNotifier));
    EXPECT_EQ(result.status.code, kUsage);
    EXPECT_THAT(result.errors, HasSubstr("traps of the level authPriv need --engine\n"));
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

TEST_F(PtzctlTraps, ReceptionEndsWhenTheOutputCannotBeWritten) {
    const ReservedPort port;
    const std::string address = "127.0.0.1:" + std::to_string(port.number());
    const std::string errors = client_.directory.file("full");
    Process receiver({Client::commandLine({"traps", address}), client_.completed({}), "/dev/full", errors});
    ASSERT_TRUE(LogFile(errors).waitFor("Receiving at", seconds(10)));
    runCommand({"snmptrap", "-v2c", "-c", "public", "-m", "", address, "1", oids::registered::power},
               client_.completed({}));
    const std::optional<ExitStatus> status = receiver.wait(patient(seconds(10)));
    ASSERT_TRUE(status);
    EXPECT_EQ(status->code, kLocalError);
    EXPECT_THAT(LogFile(errors).text(), testing::EndsWith("ptzctl: cannot write the output\n"));
}

TEST_F(PtzctlTraps, AnInformIsAnswered) {
    const CommandResult sender = runCommand({"snmpinform", "-v2c", "-c", "public", "-m", "", "-r", "0", "-t", "10",
                                             traps(), "1", oids::registered::power, oids::registered::power, "u", "7"},
                                            client_.completed({}), seconds(30));
    EXPECT_TRUE(sender.status.clean()) << sender.errors;
    EXPECT_TRUE(received().waitFor("power is 7: the state of the power supply has changed", seconds(10)));
}
