// SPDX-License-Identifier: Apache-2.0
// The module in a process of its own, a subagent: what only two processes can get wrong. Most suites of this program
// also run with a subagent, because a manager must not notice it.
#include <algorithm>
#include <atomic>
#include <csignal>
#include <functional>
#include <iostream>
#include <stdexcept>
#include <thread>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "camera_agent.h"
#include "eventually.h"
#include "object_oids.h"
#include "position_commands.h"
#include "process_information.h"
#include "settings.h"

namespace {

using namespace harness;
using namespace position_commands;
using Clock = std::chrono::steady_clock;
using std::chrono::milliseconds;
using std::chrono::seconds;

/** As the shipped configuration. */
constexpr seconds kTimeout{5};

milliseconds since(Clock::time_point start) {
    return std::chrono::duration_cast<milliseconds>(Clock::now() - start);
}

AgentOptions isolated() {
    AgentOptions options;
    options.isolation = Isolation{kTimeout};
    return options;
}

class IsolatedModule : public CameraAgent {
protected:
    IsolatedModule() : CameraAgent("dome", isolated()), before_(walk()) {
        manager_.setTimeout(patient(seconds(20)));
    }

    /** Returns true once the agent answers as at the start of the test; the subagent connects within a second. */
    testing::AssertionResult isAsBefore() {
        return becomes([this](const std::vector<Varbind> &now) { return now == before_; });
    }

    /** Returns true once the agent has the objects of the start of the test, and can read each of them. */
    testing::AssertionResult hasAllObjects() {
        return becomes([this](const std::vector<Varbind> &now) { return oidsOf(now) == oidsOf(before_); });
    }

    testing::AssertionResult becomes(const std::function<bool(const std::vector<Varbind> &)> &wanted) {
        std::string last;
        const bool arrived = eventually([&] {
            try {
                const std::vector<Varbind> now = walk();
                last = testing::PrintToString(now);
                return wanted(now);
            } catch (const std::runtime_error &error) {
                // The walk ends at an object that cannot be read yet.
                last = error.what();
                return false;
            }
        });
        return arrived ? testing::AssertionSuccess() : testing::AssertionFailure() << last;
    }

    std::vector<Varbind> before_;
};

/** A camera whose processes hang. */
class IsolatedHangSlowTiming : public IsolatedModule {
protected:
    void hang() {
        ASSERT_EQ(kill(camera_.pid(), SIGSTOP), 0);
    }

    void recover() {
        ASSERT_EQ(kill(camera_.pid(), SIGCONT), 0);
        EXPECT_TRUE(hasAllObjects());
        set(oids::positionPan, absolute(127, 100));
        EXPECT_TRUE(
            eventually([this] { return targetState(camera_, "positioning/1").at("pan").at("position") == 1000; }));
    }

    /** Sends requests for an object of the agent itself at a pace. @return the longest time until an answer */
    milliseconds slowestOf(int requests, milliseconds pace = milliseconds(0)) {
        Manager other(agent_.peer(), "public");
        milliseconds slowest{0};
        const Clock::time_point begin = Clock::now();
        for (int i = 0; i < requests; ++i) {
            std::this_thread::sleep_until(begin + i * pace);
            const Clock::time_point start = Clock::now();
            EXPECT_TRUE(other.get(oids::sysUpTime).ok()) << "request " << i;
            slowest = std::max(slowest, since(start));
        }
        return slowest;
    }
};

} // namespace

TEST_F(IsolatedModule, IsInTheSubagentOnly) {
    EXPECT_TRUE(mapsFile(agent_.pid(), modulePath()));
    EXPECT_FALSE(mapsFile(agent_.master().pid(), modulePath()));
    EXPECT_FALSE(before_.empty());
}

TEST_F(IsolatedModule, TwoSubtreesAndAnObjectOfTheMasterAreSetInOneRequest) {
    const Varbind contact = octetString(oids::sysContact, "somebody");
    const std::string row = oids::row(oids::relayStatesState, 2);
    const Varbind timeout = integer(oids::timeoutPan, 1500);
    ASSERT_TRUE(manager_.set({contact, timeout, integer(row, 1)}).ok());
    EXPECT_EQ(get(oids::sysContact), "\"somebody\"");
    EXPECT_EQ(get(oids::timeoutPan), "1500");
    EXPECT_EQ(get(row), "1");

    // A refused varbind, wherever it is, prevents the others.
    const Varbind otherContact = octetString(oids::sysContact, "nobody");
    const Varbind otherTimeout = integer(oids::timeoutPan, 99);
    const Varbind refused = octetString(row, "1");
    const std::vector<Varbind> values = {refused, otherTimeout, otherContact};
    for (std::size_t place = 0; place < values.size(); ++place) {
        std::vector<Varbind> turned = values;
        std::rotate(turned.begin(), turned.begin() + static_cast<std::ptrdiff_t>(place), turned.end());
        const Result result = manager_.set(turned);
        EXPECT_NE(result.error, ErrorStatus::None) << result;
        EXPECT_EQ(result.errorIndex, static_cast<long>((values.size() - place) % values.size() + 1)) << result;
        EXPECT_EQ(get(oids::sysContact), "\"somebody\"");
        EXPECT_EQ(get(oids::timeoutPan), "1500");
    }
}

TEST_F(IsolatedModule, EitherAgentReloads) {
    for (int i = 0; i < 3; ++i) {
        agent_.hup();
        EXPECT_TRUE(isAsBefore()) << "subagent, reload " << i;
        agent_.master().hup();
        EXPECT_TRUE(isAsBefore()) << "master, reload " << i;
    }
    EXPECT_EQ(threadCount(agent_.pid()), threadsWithModule());
}

TEST_F(IsolatedModule, TheSubagentIsKilledAndComesBack) {
    agent_.kill();
    EXPECT_TRUE(eventually([this] { return manager_.get(oids::modelName).single().type == Type::NoSuchObject; }));
    EXPECT_TRUE(manager_.get(oids::sysUpTime).ok());
    agent_.start();
    EXPECT_TRUE(isAsBefore());
}

TEST_F(IsolatedModule, TheMasterIsRestarted) {
    const pid_t subagent = agent_.pid();
    for (const bool killed : {false, true}) {
        if (killed) {
            agent_.master().kill();
        } else {
            agent_.master().stop();
        }
        agent_.master().start();
        EXPECT_TRUE(isAsBefore()) << (killed ? "killed" : "stopped");
    }
    EXPECT_EQ(agent_.pid(), subagent);
    EXPECT_TRUE(agent_.running());
}

TEST_F(IsolatedModule, TheSubagentStartsBeforeTheMaster) {
    agent_.stop();
    agent_.master().stop();
    agent_.start();
    agent_.master().start();
    EXPECT_TRUE(isAsBefore());
}

TEST_F(IsolatedHangSlowTiming, TheRestOfTheAgentAnswersAtOnce) {
    // A busy machine delays every agent.
    const milliseconds usual = slowestOf(1000, milliseconds(1));
    hang();
    std::atomic<bool> polling = true;
    std::atomic<int> failed = 0;
    // The requests of this thread keep the subagent busy all the time.
    std::thread poller([this, &polling, &failed] {
        Manager manager(agent_.peer());
        manager.setTimeout(patient(seconds(20)));
        while (polling) {
            failed += manager.get(oids::temperature, oids::rangePanLeftLimit, oids::inputStatus).ok() ? 0 : 1;
        }
    });
    // They take longer than the time-out, so the master also drops the subagent and gets it back.
    const milliseconds slowest = slowestOf(1000, milliseconds(10));
    polling = false;
    poller.join();
    EXPECT_LT(slowest.count(), (usual + milliseconds(50)).count()) << "milliseconds";
    EXPECT_GT(failed, 0) << "the requests for the camera must fail meanwhile";
    std::cout << "slowest answer of 1000: " << slowest.count() << " ms, before the hang: " << usual.count() << " ms\n";
    recover();
}

TEST_F(IsolatedHangSlowTiming, ARequestForTheCameraEndsAfterTheTimeout) {
    hang();
    const Clock::time_point start = Clock::now();
    const Result result = manager_.get(oids::temperature, oids::inputStatus, oids::rangePanLeftLimit, oids::voltage);
    EXPECT_EQ(result.error, ErrorStatus::GenErr) << result;
    EXPECT_GE(since(start), kTimeout);
    EXPECT_LT(since(start), kTimeout + patient(seconds(1)));
    // The master has dropped the subagent, which connects again once the camera's library has given up.
    EXPECT_EQ(manager_.get(oids::modelName).single().type, Type::NoSuchObject);
    EXPECT_NE(manager_.set({octetString(oids::positionPan, stop())}).error, ErrorStatus::None);
    recover();
}

TEST_F(IsolatedHangSlowTiming, ASetThatWaitsHoldsUpAllRequestsUntilTheTimeout) {
    hang();
    const Varbind pan = octetString(oids::positionPan, absolute(64, 9000));
    const Varbind tilt = octetString(oids::positionTilt, absolute(64, 500));
    const Varbind zoom = octetString(oids::positionZoomLens, absolute(64, 100));
    // It is answered before the subagent calls the camera, for 26 seconds.
    const Clock::time_point start = Clock::now();
    EXPECT_TRUE(manager_.set({pan, tilt, zoom}).ok());
    EXPECT_LT(since(start), patient(seconds(1)));
    EXPECT_LT(slowestOf(10), patient(milliseconds(500)));
    std::thread next([this] {
        Manager manager(agent_.peer());
        manager.setTimeout(patient(seconds(20)));
        const Result result = manager.set({octetString(oids::positionPan, stop())});
        EXPECT_EQ(result.error, ErrorStatus::GenErr) << result;
    });
    milliseconds slowest{0};
    EXPECT_TRUE(eventually([&] { return (slowest = slowestOf(1)) > seconds(1); })) << "no request was held up";
    next.join();
    EXPECT_LT(slowest, kTimeout + patient(seconds(1)));
    std::cout << "held up: " << slowest.count() << " ms\n";
    recover();
}

TEST_F(IsolatedModule, ASetIsAnsweredBeforeTheCameraObeysAndInOrder) {
    control("fail", "relay", "set_state_send", "2", "--always");
    EXPECT_TRUE(manager_.set({octetString(oids::outputControl, "\x02\x80")}).ok()) << "the failure comes later";
    EXPECT_EQ(get(oids::outputStatus), "0x00");
    control("clear");
    set(oids::outputControl, "\x02\x80");
    EXPECT_EQ(get(oids::outputStatus), "0x02") << "a request that follows waits for the camera";
}
