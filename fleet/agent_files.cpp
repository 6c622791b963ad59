// SPDX-License-Identifier: Apache-2.0
#include "agent_files.h"

#include <map>

#include <unistd.h>

namespace fleet {

namespace {

/** Parts of the agent that a camera needs; the others cost memory, and those for interfaces processor time. */
constexpr const char *kAgentParts =
    "vacm_conf,vacm_vars,usmUser,usmConf,snmpEngine,snmp_mib,system_mib,sysORTable,dlmod";

} // namespace

std::string agentConfiguration(const CameraPlan &camera, const std::string &module,
                               const std::optional<boost::asio::ip::udp::endpoint> &trapTo) {
    const std::string address = camera.address.address().to_string();
    // Addresses of the loopback network have no clients but on this machine.
    const std::string clients = camera.address.address().is_loopback() ? "127.0.0.0/8" : "default";
    std::string text = "agentAddress udp:" + textOf(camera.address) +
                       "\n"
                       "[snmp] clientaddr " +
                       address +
                       "\n"
                       "dontLogTCPWrappersConnects yes\n"
                       "sysName " +
                       camera.name +
                       "\n"
                       "sysDescr Simulated camera " +
                       camera.kind +
                       "\n"
                       // A community has a single view. Write access must not reach the agent's table of loadable
                       // modules, because a module is a program.
                       "view readable included .1.3.6.1.2.1.1\n"
                       "view readable included .1.3.6.1.4.1.1206\n"
                       "view readable included .1.3.6.1.4.1.99999\n"
                       "view writable included .1.3.6.1.4.1.1206\n"
                       "view writable included .1.3.6.1.4.1.99999\n"
                       "view counter included " +
                       std::string(kReceivedMessages) +
                       "\n"
                       "rocommunity public " +
                       clients + " -V readable\nrwcommunity private " + clients + " -V writable\nrocommunity " +
                       kCounterCommunity + " 127.0.0.0/8 -V counter\n";
    if (trapTo) {
        text += "trap2sink " + textOf(*trapTo) + " public\n";
    }
    return text + "dlmod quarnsnmp " + module + "\n";
}

std::string configurationPath(const CameraPlan &camera) {
    return camera.directory + "/snmpd.conf";
}

std::string logPath(const CameraPlan &camera) {
    return camera.directory + "/log";
}

std::string presetsPath(const CameraPlan &camera) {
    return camera.directory + "/presets.json";
}

std::string persistentDirectory(const CameraPlan &camera) {
    return camera.directory + "/persistent";
}

std::vector<std::string> cameraCommand(const CameraPlan &camera, const std::string &program) {
    std::vector<std::string> command = {program,          "--camera",  camera.file,        "--directory",
                                        camera.directory, "--presets", presetsPath(camera)};
    if (!camera.serial.empty()) {
        command.insert(command.end(), {"--serial", camera.serial});
    }
    return command;
}

std::vector<std::string> agentCommand(const CameraPlan &camera, const std::string &program) {
    return {program, "-f", "-r", "-C", "-c", configurationPath(camera), "-I", kAgentParts, "-LEw"};
}

std::vector<std::string> agentEnvironment(const CameraPlan &camera) {
    std::map<std::string, std::string> changes = {{"MIBS", ""},
                                                  {"MIBDIRS", camera.directory},
                                                  {"SNMPCONFPATH", camera.directory},
                                                  {"SNMP_PERSISTENT_DIR", persistentDirectory(camera)},
                                                  {"QUARNSNMP_CAMERA_DIR", camera.directory},
                                                  {"QUARNSNMP_LOG_LEVEL", "notice"}};
    std::vector<std::string> environment;
    for (char **entry = environ; *entry != nullptr; ++entry) {
        const std::string variable = *entry;
        const std::string name = variable.substr(0, variable.find('='));
        // All modules would write to one file. The module's own default is the agent's standard error.
        const bool isShared = name == "QUARNSNMP_LOG_FILE";
        if (name == "QUARNSNMP_LOG_LEVEL") {
            changes.erase(name);
        }
        if (!isShared && changes.count(name) == 0) {
            environment.push_back(variable);
        }
    }
    for (const auto &[name, value] : changes) {
        environment.push_back(std::string(name).append("=").append(value));
    }
    return environment;
}

} // namespace fleet
