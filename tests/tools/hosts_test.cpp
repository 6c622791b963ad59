// SPDX-License-Identifier: Apache-2.0
// Many cameras: lists of hosts, the number asked at once, progress, and the summary.
#include <algorithm>
#include <atomic>
#include <cstdlib>
#include <sstream>

#include <sys/mman.h>
#include <unistd.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "eventually.h"
#include "host_processes.h"
#include "hosts_file.h"
#include "parsed_command_line.h"
#include "progress.h"
#include "temporary_directory.h"

using namespace ptzctl;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

namespace {

/** Returns the hosts of a list. @param before those given before */
std::vector<std::string> hostsOf(const std::string &text, std::vector<std::string> before = {}) {
    std::istringstream list(text);
    addHosts(list, "list", before);
    return before;
}

/** Returns the error of a list, or an empty text. */
std::string errorOfList(const std::string &text, const std::vector<std::string> &before = {}) {
    try {
        hostsOf(text, before);
    } catch (const std::invalid_argument &error) {
        return error.what();
    }
    return "";
}

/** Counters that child processes share with the test. */
struct Counters {
    std::atomic<int> running;
    std::atomic<int> most;
    std::atomic<bool> crowded; ///< all that may run have run at once
};

class SharedCounters {
public:
    SharedCounters()
        : memory_(mmap(nullptr, sizeof(Counters), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0)),
          counters_(new (memory_) Counters{}) {}
    ~SharedCounters() {
        munmap(memory_, sizeof(Counters));
    }
    SharedCounters(const SharedCounters &) = delete;
    SharedCounters &operator=(const SharedCounters &) = delete;

    Counters *operator->() const {
        return counters_;
    }

private:
    void *memory_;
    Counters *counters_;
};

std::vector<Outcome> withCodes(std::initializer_list<ExitCode> codes) {
    std::vector<Outcome> outcomes;
    for (const ExitCode code : codes) {
        outcomes.push_back({code, {}, code == ExitCode::Done ? "" : "trouble", ""});
    }
    return outcomes;
}

} // namespace

TEST(Hosts, AListHasOneInEachLine) {
    EXPECT_THAT(hostsOf("one\n\n  two:1161\t# on the bridge\r\n# three\nudp6:[::1]:161\nfour#4\nfe80::1"),
                ElementsAre("one", "two:1161", "udp6:[::1]:161", "four#4", "fe80::1"));
    EXPECT_THAT(hostsOf("\xEF\xBB\xBFone\n"), ElementsAre("one"));
    EXPECT_THAT(hostsOf("two\n", {"one"}), ElementsAre("one", "two"));
}

TEST(Hosts, AnErrorOfAListHasItsLine) {
    constexpr const char *kOneHost = "a line has one host, of printable ASCII characters without blanks and commas";
    const std::vector<std::pair<std::string, std::string>> wrong = {
        {"one\ntwo three\n", std::string("list:2: ") + kOneHost},
        {"one,two\n", std::string("list:1: ") + kOneHost},
        {"\n\none\033[2J\n", std::string("list:3: ") + kOneHost},
        {"k\xC3\xB6ln\n", std::string("list:1: ") + kOneHost},
        {"--host\n", "list:1: '--host' is not a host"},
        {"one:0\n", "list:1: 'one:0' has no port from 1 to 65535 behind its colon"},
        {"one:65536\n", "list:1: 'one:65536' has no port from 1 to 65535 behind its colon"},
        {"one:\n", "list:1: 'one:' has no port from 1 to 65535 behind its colon"},
        {"one\n# two\none\n", "list:3: one is given in line 1 already"},
        {"one\none:161\n", "list:2: one:161 is given in line 1 already"},
        {std::string("one\n") + std::string(5000, 'x'), "list:2: the line is too long"},
        {std::string("one\0two\n", 8), "list:1: the line is not text"},
        {"# nothing\n", "list has no hosts"},
        {"", "list has no hosts"},
    };
    for (const auto &[text, error] : wrong) {
        EXPECT_EQ(errorOfList(text), error) << text;
    }
    EXPECT_EQ(errorOfList("two\none\n", {"one"}), "list:2: one is given before this list already");
}

TEST(Hosts, AFileIsReadBeforeTheCommand) {
    const support::TemporaryDirectory directory;
    const std::string list = directory.write("cameras", "one\ntwo # north\n");
    Invocation invocation;
    EXPECT_EQ(complaint(invocation, {"--hosts-file", list, "-H", "zero", "status"}), "");
    EXPECT_THAT(invocation.hosts, ElementsAre("zero", "one", "two"));
    EXPECT_EQ(complaint({"status", "--hosts-file", "/nowhere"}), "/nowhere cannot be read: No such file or directory");
    EXPECT_EQ(complaint({"status", "--hosts-file", directory.path()}), directory.path() + " cannot be read");
    EXPECT_EQ(complaint({"status", "--hosts-file", list, "--hosts-file", list}),
              list + ":1: one is given before this list already");
}

TEST(Hosts, AFileTakesPrecedenceOverTheEnvironment) {
    const support::TemporaryDirectory directory;
    ASSERT_EQ(setenv("PTZCTL_HOST", "zero", 1), 0);
    Invocation invocation;
    EXPECT_EQ(complaint(invocation, {"status", "--hosts-file", directory.write("cameras", "one\n")}), "");
    unsetenv("PTZCTL_HOST");
    EXPECT_THAT(invocation.hosts, ElementsAre("one"));
}

TEST(Hosts, SixtyFourAreAskedAtOnce) {
    const SharedCounters counters;
    const std::vector<std::string> hosts(200, "camera");
    const std::vector<Outcome> outcomes = runOnAll(hosts, [&](const std::string &, Report &) {
        const int running = ++counters->running;
        for (int most = counters->most; running > most && !counters->most.compare_exchange_weak(most, running);) {
        }
        counters->crowded = counters->crowded || running >= static_cast<int>(kMostCamerasAtOnce);
        // Without this wait the first ones would end before the last ones start.
        support::eventually([&] { return counters->crowded.load(); });
        --counters->running;
    });
    EXPECT_EQ(overallCode(outcomes), ExitCode::Done);
    EXPECT_EQ(counters->most, 64);
}

TEST(Hosts, AProcessThatTakesTooLongIsKilled) {
    Supervision supervision;
    supervision.longest = support::patient(std::chrono::seconds(1));
    std::vector<ExitCode> codes;
    supervision.ended = [&](const Outcome &outcome) { codes.push_back(outcome.code); };
    const std::vector<Outcome> outcomes = runOnAll(
        {"slow", "quick", "slow"},
        [](const std::string &host, Report &report) {
            report.text = host;
            while (host == "slow") {
                pause();
            }
        },
        supervision);
    EXPECT_EQ(outcomes[0].code, ExitCode::NoAnswer);
    EXPECT_EQ(outcomes[0].error, "no answer within the time-out");
    EXPECT_EQ(outcomes[1].report.text, "quick");
    EXPECT_EQ(outcomes[2].code, ExitCode::NoAnswer);
    EXPECT_THAT(codes, ElementsAre(ExitCode::Done, ExitCode::NoAnswer, ExitCode::NoAnswer));
}

TEST(Hosts, ASummaryCountsOutcomes) {
    EXPECT_EQ(summaryText(withCodes({ExitCode::NoAnswer, ExitCode::Done, ExitCode::Done})),
              "3 cameras: 2 done, 1 no answer\n");
    EXPECT_EQ(summaryText(withCodes({ExitCode::Refused, ExitCode::Usage, ExitCode::BadResponse, ExitCode::SomeFailed})),
              "4 cameras: 1 failed, 1 failed in part, 1 wrong usage, 1 error\n");
    EXPECT_EQ(summaryText(withCodes({ExitCode::Done})), "1 camera: 1 done\n");
}

TEST(Hosts, ProgressIsOneLineThatDisappears) {
    std::ostringstream terminal;
    {
        Progress progress(terminal, 12);
        progress.add(withCodes({ExitCode::NoAnswer}).front());
    }
    EXPECT_EQ(terminal.str(), "\r\033[K1 of 12 cameras, 1 without success\r\033[K");
}
