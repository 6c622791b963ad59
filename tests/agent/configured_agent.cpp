// SPDX-License-Identifier: Apache-2.0
#include "configured_agent.h"

#include <algorithm>
#include <fstream>
#include <iterator>
#include <regex>
#include <sstream>
#include <stdexcept>

#include "object_oids.h"
#include "settings.h"

namespace configured_agent {

using namespace harness;

namespace {

constexpr const char *kModuleLine = "dlmod quarnsnmp /usr/lib/quarnsnmp/libquarnsnmp_Morvek.so";

std::string contentOf(const std::string &path) {
    const std::ifstream stream(path);
    std::ostringstream content;
    content << stream.rdbuf();
    if (!stream || content.str().empty()) {
        throw std::runtime_error("cannot read " + path);
    }
    return content.str();
}

/** Adds the replacements that every shipped configuration needs for a test. */
std::vector<Replacement> placed(std::vector<Replacement> replacements, const std::vector<Replacement> &further) {
    replacements.push_back({kModuleLine, "dlmod quarnsnmp " + modulePath()});
    replacements.insert(replacements.end(), further.begin(), further.end());
    return replacements;
}

std::vector<std::string> wordsOf(const std::string &text) {
    std::istringstream stream(text);
    return {std::istream_iterator<std::string>(stream), {}};
}

} // namespace

std::string shippedConfiguration(const std::string &name, const std::vector<Replacement> &replacements) {
    const std::string path = examplesDirectory() + "/" + name;
    std::string text = contentOf(path);
    for (const auto &[passage, with] : replacements) {
        const std::size_t start = text.find(passage);
        if (start == std::string::npos || text.find(passage, start + 1) != std::string::npos) {
            throw std::runtime_error(std::string(path).append(" does not have exactly once: ").append(passage));
        }
        text.replace(start, passage.size(), with);
    }
    return text;
}

AgentCommand documentedCommand(const std::string &name) {
    static const std::regex kCommandLine("\\n#   ([A-Z_]+=.* )?snmpd (.*)");
    const std::string text = shippedConfiguration(name);
    std::smatch match;
    if (!std::regex_search(text, match, kCommandLine)) {
        throw std::runtime_error(name + " contains no command");
    }
    AgentCommand command;
    for (const std::string &assignment : wordsOf(match[1])) {
        const std::size_t sign = assignment.find('=');
        command.environment[assignment.substr(0, sign)] = assignment.substr(sign + 1);
    }
    for (const std::string &argument : wordsOf(match[2])) {
        if (argument != "-f" && argument != "-C" && argument != "-c" && argument != name && argument != "-Le") {
            command.arguments.push_back(argument);
        }
    }
    return command;
}

std::vector<Written> commands() {
    const std::string stop(4, '\0');
    return {
        {"positionPan", octetString(oids::positionPan, stop)},
        {"positionTilt", octetString(oids::positionTilt, stop)},
        {"positionZoomLens", octetString(oids::positionZoomLens, stop)},
        {"positionFocusLens", octetString(oids::positionFocusLens, stop)},
        {"positionIrisLens", octetString(oids::positionIrisLens, stop)},
        {"presetGotoPosition", integer(oids::presetGotoPosition, 9)},
        {"systemLensFeatureControl", octetString(oids::systemLensFeatureControl, {'\x40', '\0'})},
        {"outputControl", octetString(oids::outputControl, {'\x01', '\0'})},
        {"relayStatesTable.3", integer(oids::row(oids::relayStatesState, 1), 0)},
    };
}

std::vector<Written> settings() {
    return {
        {"rangeTrueNorthOffset", integer(oids::rangeTrueNorthOffset, 0)},
        {"timeoutPan", integer(oids::timeoutPan, 1000)},
        {"timeoutTilt", integer(oids::timeoutTilt, 1000)},
        {"timeoutZoom", integer(oids::timeoutZoom, 1000)},
        {"presetStorePosition", integer(oids::presetStorePosition, 9)},
        {"systemLensEquipped", octetString(oids::systemLensEquipped, "\x40")},
        {"rebootDevice", integer(reboot().oid, 0)},
    };
}

std::vector<Written> objectsOfTheAgent() {
    constexpr std::int64_t kUnload = 5;
    constexpr std::int64_t kCreateAndWait = 5;
    constexpr std::int64_t kFalse = 2;
    return {
        {"sysName", octetString(".1.3.6.1.2.1.1.5.0", "something")},
        {"snmpEnableAuthenTraps", integer(".1.3.6.1.2.1.11.30.0", kFalse)},
        {"nsDebugEnabled", integer(".1.3.6.1.4.1.8072.1.7.1.1.0", kFalse)},
        {"nsExtendStatus of a new command", integer(".1.3.6.1.4.1.8072.1.3.2.2.1.21.1.97", kCreateAndWait)},
        {"snmpTargetAddrRowStatus of a new one", integer(".1.3.6.1.6.3.12.1.2.1.9.1.97", kCreateAndWait)},
        {"usmUserStatus of a new user", integer(".1.3.6.1.6.3.15.1.2.2.1.13.5.128.0.0.0.1.1.97", kCreateAndWait)},
        {"vacmAccessStatus of a new group", integer(".1.3.6.1.6.3.16.1.4.1.9.1.97.0.3.3", kCreateAndWait)},
        {"dlmodStatus of the module", integer(".1.3.6.1.4.1.2021.13.14.2.1.5.1", kUnload)},
    };
}

Varbind reboot() {
    return integer(oids::rebootDevice, 1);
}

AgentOptions labAgent(const std::string &traps) {
    AgentOptions options;
    options.wholeConfiguration = [traps](std::uint16_t port) {
        return shippedConfiguration(
            "snmpd-lab.conf",
            placed({{"agentAddress udp:127.0.0.1:1161\n", "agentAddress udp:127.0.0.1:" + std::to_string(port) + "\n"},
                    {"trap2sink 127.0.0.1:1162 public\n", "trap2sink " + traps + " public\n"}},
                   {}));
    };
    const AgentCommand command = documentedCommand("snmpd-lab.conf");
    options.arguments = command.arguments;
    options.environment = command.environment;
    return options;
}

AgentOptions fieldAgent(const std::string &traps, const std::vector<Replacement> &further) {
    AgentOptions options;
    options.wholeConfiguration = [traps, further](std::uint16_t port) {
        return shippedConfiguration(
            "snmpd-field.conf",
            placed({{"agentAddress udp:192.0.2.10:161\n", "agentAddress udp:127.0.0.1:" + std::to_string(port) + "\n"},
                    {"[snmp] clientaddr 192.0.2.10\n", "[snmp] clientaddr 127.0.0.1\n"},
                    {"authPriv 192.0.2.20:162\n", "authPriv " + traps + "\n"}},
                   further));
    };
    options.arguments = {"-I", "-smux,mteTrigger,mteTriggerConf"}; // as in Debian's snmpd.service
    options.persistentData = {creationOf(kViewer), creationOf(kOperator), creationOf(kNotifier)};
    options.asker = kViewer;
    return options;
}

void expectWrites(Manager &manager, const std::vector<Written> &objects, ErrorStatus expected) {
    for (const Written &object : objects) {
        const Result result = manager.set({object.value});
        EXPECT_TRUE(result.answered) << object.name << ": " << result;
        EXPECT_EQ(result.error, expected) << object.name << ": " << result;
    }
}

void expectToSeeOnly(Manager &manager, const std::vector<std::string> &subtrees) {
    const std::vector<Varbind> seen = manager.bulkWalk(".1.3");
    for (const Varbind &varbind : seen) {
        EXPECT_TRUE(std::any_of(subtrees.begin(), subtrees.end(), [&](const std::string &subtree) {
            return isBelow(varbind.oid, subtree);
        })) << varbind;
    }
    for (const std::string &subtree : subtrees) {
        EXPECT_TRUE(std::any_of(seen.begin(), seen.end(), [&](const Varbind &varbind) {
            return isBelow(varbind.oid, subtree);
        })) << subtree;
    }
}

} // namespace configured_agent
