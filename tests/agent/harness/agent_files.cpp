// SPDX-License-Identifier: Apache-2.0
#include "agent_files.h"

#include <stdexcept>

#include "settings.h"

namespace harness {

std::string agentConfiguration(const AgentOptions &options, std::uint16_t port) {
    // One community can have one view only, so the subtrees are gathered in views first.
    std::string text = "agentAddress udp:127.0.0.1:" + std::to_string(port) +
                       "\n"
                       "dontLogTCPWrappersConnects yes\n"
                       "view readable included .1.3.6.1.2.1.1\n"
                       "view readable included .1.3.6.1.4.1.1206\n"
                       "view readable included .1.3.6.1.4.1.99999\n"
                       "view writable included .1.3.6.1.2.1.1\n"
                       "view writable included .1.3.6.1.4.1.1206\n"
                       "view writable included .1.3.6.1.4.1.99999\n";
    if (options.showModules) {
        text += "view readable included .1.3.6.1.4.1.2021.13.14\n"
                "view writable included .1.3.6.1.4.1.2021.13.14\n";
    }
    text += "rocommunity public 127.0.0.1 -V readable\n"
            "rwcommunity private 127.0.0.1 -V writable\n";
    for (const std::string &line : options.configuration) {
        text += line + "\n";
    }
    if (!options.module.empty()) {
        text += "dlmod " + options.moduleName + " " + options.module + "\n";
    }
    return text;
}

std::map<std::string, std::string> agentEnvironment(const AgentOptions &options, const TemporaryDirectory &directory,
                                                    const std::string &moduleLogPath) {
    const std::string persistent = directory.file(kPersistentDirectory);
    std::map<std::string, std::string> result = {
        {"SNMP_PERSISTENT_DIR", persistent},
        {"SNMPCONFPATH", directory.path() + ":" + persistent},
        {"MIBS", ""},
        {"MIBDIRS", directory.path()},
        {"QUARNSNMP_LOG_FILE", moduleLogPath},
        {"QUARNSNMP_LOG_LEVEL", "7"},
    };
    if (!options.cameraDirectory.empty()) {
        result["QUARNSNMP_CAMERA_DIR"] = options.cameraDirectory;
    }
    std::vector<std::string> preloaded = sanitizerRuntimes();
    if (!preloaded.empty()) {
        // The agent is the distribution's and is no subject of the leak search.
        const std::string common = "abort_on_error=1:halt_on_error=1:log_path=" + directory.file(kSanitizerLog);
        result["ASAN_OPTIONS"] = common + ":detect_leaks=0:verify_asan_link_order=0";
        result["UBSAN_OPTIONS"] = common + ":print_stacktrace=1";
        result["TSAN_OPTIONS"] = common;
    }
    if (!options.fakeTime.empty()) {
        if (fakeTimeLibraryPath().empty()) {
            throw std::runtime_error("libfaketimeMT.so.1 is missing; on Debian: apt-get install faketime");
        }
        // In front: a sanitizer's runtime asks for the time while it starts, and the library, asked before it has
        // started itself, allocates memory from the runtime.
        preloaded.insert(preloaded.begin(), fakeTimeLibraryPath());
        result["FAKETIME"] = options.fakeTime;
    }
    std::string list;
    for (const std::string &library : preloaded) {
        list += (list.empty() ? "" : ":") + library;
    }
    if (!list.empty()) {
        result["LD_PRELOAD"] = list;
    }
    for (const auto &[name, value] : options.environment) {
        result[name] = value;
    }
    return result;
}

} // namespace harness
