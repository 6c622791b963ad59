// SPDX-License-Identifier: Apache-2.0
// The MIB modules that are shipped, in the programs that managers use: everything that an agent with the module serves
// and sends has a name, and the names reach it.
#include <filesystem>
#include <sstream>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "camera_agent.h"
#include "eventually.h"
#include "object_oids.h"
#include "polled_sensors.h"
#include "settings.h"
#include "trap_receiver.h"

namespace {

using namespace harness;
using std::chrono::seconds;
using testing::AllOf;
using testing::Contains;
using testing::EndsWith;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::MatchesRegex;
using testing::Not;

constexpr const char *kObjectModule = "QUARN-NTCIP-1205-MIB"; // brings the others with objects
constexpr const char *kTrapModule = "QUARN-CAMERA-TRAPS-MIB";

std::vector<std::string> linesOf(const std::string &text) {
    std::vector<std::string> lines;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);) {
        lines.push_back(line);
    }
    return lines;
}

class NamedAgent : public CameraAgent {
protected:
    using CameraAgent::CameraAgent;

    /** Runs one of Net-SNMP's programs on the agent. @param objects  arguments after the address */
    CommandResult run(const std::string &program, const std::vector<std::string> &options,
                      const std::vector<std::string> &objects) const {
        std::vector<std::string> command{program, "-v2c", "-c", "private", "-M", mibsDirectory(), "-m", kObjectModule};
        command.insert(command.end(), options.begin(), options.end());
        command.push_back(agent_.peer());
        command.insert(command.end(), objects.begin(), objects.end());
        // The programs say so when they make this directory.
        std::filesystem::create_directories(persistent_.file("cert_indexes"));
        return runCommand(command, {{"SNMPCONFPATH", persistent_.path()}, {"SNMP_PERSISTENT_DIR", persistent_.path()}});
    }

    /** Runs a program that must not write errors. @return its output */
    std::string output(const std::string &program, const std::vector<std::string> &objects,
                       const std::vector<std::string> &options = {}) const {
        const CommandResult result = run(program, options, objects);
        EXPECT_TRUE(result.status.clean()) << result.status.describe();
        EXPECT_THAT(result.errors, IsEmpty());
        return result.output;
    }

private:
    TemporaryDirectory persistent_;
};

class NamesOfDome : public NamedAgent {
protected:
    NamesOfDome() : NamedAgent("dome") {}
};

class NamesOfEach : public NamedAgent, public testing::WithParamInterface<const char *> {
protected:
    NamesOfEach() : NamedAgent(GetParam()) {}
};

/** A receiver that knows names, and an agent that sends its traps there. */
struct NamingReceiver {
    NamingReceiver() {
        agent.fakeTime = "+0 x60";
        agent.configuration = {receiver.configurationLine()};
    }
    TrapReceiver receiver{TrapReceiver::Transport::Datagram, {}, kTrapModule};
    AgentOptions agent;
};

class NamesOfTraps : protected NamingReceiver, public CameraAgent, protected PolledSensors {
protected:
    NamesOfTraps() : CameraAgent("dome", agent), PolledSensors(camera_) {}

    /** Waits for a trap whose OID and value are printed with this name. */
    void expectPrinted(const std::string &name, const std::string &value) const {
        const std::string qualified = std::string(kTrapModule) + "::" + name;
        const auto line = AllOf(HasSubstr(" = OID: " + qualified + "\t"), EndsWith("\t" + qualified + " = " + value));
        eventually(seconds(20), [&] { return testing::Matches(Contains(line))(receiver.printed()); });
        EXPECT_THAT(receiver.printed(), Contains(line));
    }
};

} // namespace

TEST_P(NamesOfEach, EveryLineOfAWalkHasAName) {
    const std::vector<std::pair<std::string, std::string>> subtrees{{"nema", oids::kNtcipSubtree},
                                                                    {"quarn", oids::kVendorSubtree}};
    for (const auto &[name, oid] : subtrees) {
        std::vector<std::string> lines = linesOf(output("snmpwalk", {name}));
        // The program's last line if no object follows the subtree.
        if (!lines.empty() && lines.back().find(" = No more variables left") != std::string::npos) {
            lines.pop_back();
        }
        EXPECT_EQ(lines.size(), manager_.walk(oid).size()) << name;
        EXPECT_THAT(lines, Not(IsEmpty()));
        for (const std::string &line : lines) {
            EXPECT_THAT(
                line, MatchesRegex("QUARN-(CAMERA|NTCIP-1201|NTCIP-1205)-MIB::[a-zA-Z]+\\.[0-9]+ = [A-Za-z0-9]+: .+"));
            EXPECT_THAT(line, Not(HasSubstr("Wrong Type")));
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Cameras, NamesOfEach, testing::Values("dome", "stepper", "twinfocus", "minimal"));

TEST_F(NamesOfDome, ReachTheObjects) {
    EXPECT_EQ(output("snmpget", {"modelName.0"}), "QUARN-CAMERA-MIB::modelName.0 = STRING: QN-4000 Dome\n");
    EXPECT_EQ(output("snmpset", {"positionPan.0", "x", "027F5046"}),
              "QUARN-NTCIP-1205-MIB::positionPan.0 = STRING: 2 7f 50 46\n");
    EXPECT_EQ(get(oids::positionPan), "0x027f5046");
    EXPECT_EQ(output("snmpset", {"timeoutPan.0", "i", "5000"}),
              "QUARN-NTCIP-1205-MIB::timeoutPan.0 = INTEGER: 5000 milliseconds\n");
    EXPECT_EQ(output("snmpset", {"relayStatesState.2", "i", "1"}),
              "QUARN-CAMERA-MIB::relayStatesState.2 = INTEGER: 1\n");
    EXPECT_EQ(output("snmpget", {"outputStatus.0"}), "QUARN-NTCIP-1205-MIB::outputStatus.0 = STRING: 2\n");
}

TEST_F(NamesOfDome, KeepAMistakeFromBeingSent) {
    const CommandResult wrong = run("snmpset", {}, {"rangeTrueNorthOffset.0", "i", "18000"});
    EXPECT_THAT(wrong.errors, HasSubstr("Value out of range"));
    EXPECT_FALSE(wrong.status.clean());
    const CommandResult tooShort = run("snmpset", {}, {"positionPan.0", "x", "0240"});
    EXPECT_THAT(tooShort.errors, HasSubstr("Bad string length"));
    // A preset is an integer in a SET only.
    const CommandResult refused = run("snmpset", {}, {"presetStorePosition.0", "i", "7"});
    EXPECT_THAT(refused.errors, HasSubstr("Type of attribute is OCTET STRING, not INTEGER"));
    output("snmpset", {"presetStorePosition.0", "i", "7"}, {"-Ir"});
    EXPECT_EQ(output("snmpget", {"presetStorePosition.0"}),
              "QUARN-NTCIP-1205-MIB::presetStorePosition.0 = STRING: 7\n");
}

TEST_F(NamesOfTraps, AreWhatAReceiverPrints) {
    pollWith(kTemperatureSensor, 20000);
    awaitPoll(kVoltageSensor);
    pollWith(kTemperatureSensor, 45500);
    expectPrinted("temperatureChanged", "Gauge32: 45");
    pollWith(kPowerSensor, 2);
    expectPrinted("powerChanged", "Gauge32: 2");
    pollWith(kVoltageSensor, 3);
    expectPrinted("voltageChanged", "Gauge32: 3");
}
