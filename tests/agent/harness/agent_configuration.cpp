// SPDX-License-Identifier: Apache-2.0
#include "agent_configuration.h"

#include <algorithm>
#include <iterator>

namespace harness {

namespace {

bool loadsModule(const std::string &line) {
    return line.rfind("dlmod ", 0) == 0;
}

std::string lineOfModule(const AgentOptions &options) {
    return options.module.empty() ? "" : "dlmod " + options.moduleName + " " + options.module + "\n";
}

std::string joined(const std::vector<std::string> &lines) {
    std::string text;
    for (const std::string &line : lines) {
        text += line + "\n";
    }
    return text;
}

/** A request that is sent twice is executed twice, and a trap that is sent twice arrives twice. */
std::vector<std::string> linesOfBoth(const AgentOptions &options, const std::string &socket) {
    return {"agentXSocket unix:" + socket, "agentXTimeout " + std::to_string(options.isolation.value().timeout.count()),
            "agentXRetries 0"};
}

} // namespace

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
    return text + joined(options.configuration) + lineOfModule(options);
}

AgentOptions masterOptions(const AgentOptions &options, const std::string &socket) {
    AgentOptions master = options;
    master.module.clear();
    master.daemonised = false;
    master.isolation.reset();
    std::vector<std::string> &lines = master.configuration;
    lines.erase(std::remove_if(lines.begin(), lines.end(), loadsModule), lines.end());
    lines.insert(lines.end(),
                 {"master agentx", "agentXSocket unix:" + socket, "agentXPerms 0600 0700",
                  "agentXTimeout " + std::to_string(options.isolation.value().timeout.count()), "agentXRetries 0"});
    return master;
}

AgentOptions subagentOptions(const AgentOptions &options, const std::string &socket) {
    AgentOptions subagent = options;
    std::vector<std::string> lines = linesOfBoth(options, socket);
    lines.emplace_back("agentXPingInterval 1");
    std::copy_if(options.configuration.begin(), options.configuration.end(), std::back_inserter(lines), loadsModule);
    subagent.wholeConfiguration = [text = joined(lines) + lineOfModule(options)](std::uint16_t) { return text; };
    subagent.asker.reset();
    subagent.persistentData.clear();
    return subagent;
}

} // namespace harness
