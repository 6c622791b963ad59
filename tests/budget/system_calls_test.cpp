// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * An object that the module holds costs the agent no system call beyond those of the agent's own objects.
 */
#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <map>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "agent.h"
#include "camera.h"
#include "eventually.h"

namespace {

using namespace harness;

constexpr int kRequests = 20;

/** The names of the system calls from the arrival of a request to the departure of its answer, in one text. */
using Calls = std::string;

/** Starts the agents of this process under strace, which follows their main thread. */
class TracedAgents {
public:
    explicit TracedAgents(const std::string &trace) {
        // The agent itself is the child, so that it is ended as any other.
        ::setenv(kPrefix, ("strace -D -q -o " + trace).c_str(), 1);
    }
    ~TracedAgents() {
        ::unsetenv(kPrefix);
    }
    TracedAgents(const TracedAgents &) = delete;
    TracedAgents &operator=(const TracedAgents &) = delete;

private:
    static constexpr const char *kPrefix = "QUARNSNMP_SNMPD_PREFIX";
};

/** Returns the system calls of each answered request, in order. */
std::vector<Calls> readTrace(const std::string &trace) {
    std::vector<Calls> result;
    std::ifstream file(trace);
    Calls calls;
    bool isBusy = false;
    for (std::string line; std::getline(file, line);) {
        const std::string name = line.substr(0, line.find('('));
        if (name == "recvmsg") {
            calls.clear();
            isBusy = true;
        } else if (name == "sendmsg" && isBusy) {
            result.push_back(calls);
            isBusy = false;
        }
        calls += name + " ";
    }
    return result;
}

/** Asks for an object several times, and waits until the trace has all of it. @return what the agent did each time */
std::vector<Calls> callsOf(const Agent &agent, const std::string &trace, const std::string &identifier) {
    const std::size_t before = readTrace(trace).size();
    Manager manager(agent.peer());
    for (int i = 0; i < kRequests; ++i) {
        EXPECT_TRUE(manager.get(identifier).ok()) << identifier;
    }
    std::vector<Calls> all;
    EXPECT_TRUE(eventually(std::chrono::seconds(10), [&] {
        all = readTrace(trace);
        return all.size() >= before + kRequests;
    }));
    all.erase(all.begin(), all.begin() + static_cast<std::ptrdiff_t>(std::min(before, all.size())));
    return all;
}

TEST(SystemCallsTest, HeldObjectsNeedNone) {
    const TemporaryDirectory directory;
    const std::string trace = directory.file("trace");
    const Camera camera("dome");
    AgentOptions options = withModule(camera.directory());
    // As on a camera, where debug lines are not wanted.
    options.environment["QUARNSNMP_LOG_LEVEL"] = "info";
    const TracedAgents traced(trace);
    const Agent agent(options);

    const std::vector<Calls> own = callsOf(agent, trace, ".1.3.6.1.2.1.1.3.0");
    ASSERT_EQ(own.size(), static_cast<std::size_t>(kRequests));
    EXPECT_EQ(own, std::vector<Calls>(kRequests, own[0]));
    for (const char *held : {".1.3.6.1.4.1.99999.1.1.2.0.0", ".1.3.6.1.4.1.1206.4.2.6.1.3.1.6.0",
                             ".1.3.6.1.4.1.1206.4.2.7.1.5.0", ".1.3.6.1.4.1.1206.4.2.7.2.1.0"}) {
        EXPECT_EQ(callsOf(agent, trace, held), own) << held;
    }
    // A request that calls the camera shows that the comparison can fail.
    EXPECT_NE(callsOf(agent, trace, ".1.3.6.1.4.1.99999.1.1.7.0.0"), own);
}

} // namespace
