// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * The poll thread, with its minute cut to a tenth of a second.
 */
#include <algorithm>
#include <atomic>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <ctime>
#include <fstream>
#include <thread>

#include <dlfcn.h>
#include <pthread.h>
#include <sys/wait.h>
#include <unistd.h>

#include <boost/thread/exceptions.hpp>

#include "eventually.h"
#include "module_test.h"
#include "poll_thread.h"

using support::eventually;

namespace {

using Clock = std::chrono::steady_clock;

// The factor by which the test shortens the thread's sleep, and what is left of a poll period.
constexpr long kSpeed = 600;
constexpr auto kShortPeriod = std::chrono::milliseconds(100);

const LogLine kLeaving{7, "timer_thread_func: LEAVING IN THREAD FUNC due to interruption"};

std::atomic<long> gLongestSleep{0}; // nanoseconds, as asked for
std::atomic<int> gPolls{0};
std::atomic<int> gSecondPolls{0};
std::atomic<bool> gHold{false};
std::string gJoinError;
int gJoinErrorCode = 0;

/** Waits until the clock has moved on by so many short periods. */
void pass(int periods) {
    const Clock::time_point end = Clock::now() + periods * kShortPeriod;
    ASSERT_TRUE(eventually([end] { return Clock::now() > end; }));
}

/** A value that the kernel reports of the calling thread, such as "Threads". */
std::string ownStatus(const std::string &key) {
    std::ifstream status("/proc/thread-self/status");
    for (std::string line; std::getline(status, line);) {
        if (line.rfind(key + ":", 0) == 0) {
            return line.substr(key.size() + 1);
        }
    }
    return "0";
}

void up(std::size_t row, void (*poll)()) {
    gFeatureModules.at(row).init = [](void *) { return true; };
    gFeatureModules.at(row).deinit = [] {};
    gFeatureModules.at(row).poll = poll;
}

class PollThreadTest : public ModuleTest {
protected:
    void SetUp() override {
        emptyFeatureTable();
        gPolls = 0;
        gSecondPolls = 0;
        gHold = false;
    }
    void TearDown() override {
        gHold = false;
        deinit_quarnsnmp();
    }
};

/** ThreadSanitizer cannot follow a thread that is started in the child of a fork. */
using PollThreadForkTest = PollThreadTest;

} // namespace

/**
 * In place of the C library's function, which the thread's sleep ends in: the same wait on the same condition, so that
 * an interruption still wakes it, with a nearer end.
 */
extern "C" int pthread_cond_timedwait(pthread_cond_t *condition, pthread_mutex_t *mutex, const timespec *end) {
    using Wait = int (*)(pthread_cond_t *, pthread_mutex_t *, const timespec *);
    static const Wait next = reinterpret_cast<Wait>(dlsym(RTLD_NEXT, "pthread_cond_timedwait"));
    constexpr long kSecond = 1000000000;

    timespec now{};
    clock_gettime(CLOCK_MONOTONIC, &now);
    const long sleep = (end->tv_sec - now.tv_sec) * kSecond + (end->tv_nsec - now.tv_nsec);
    gLongestSleep = std::max(gLongestSleep.load(), sleep);
    const long nearer = now.tv_nsec + sleep / kSpeed;
    const timespec nearerEnd{now.tv_sec + nearer / kSecond, nearer % kSecond};
    return next(condition, mutex, &nearerEnd);
}

TEST_F(PollThreadTest, PollsWhatIsUpAfterAMinuteInTableOrder) {
    up(7, [] { ++gPolls; });
    up(10, [] { gSecondPolls = gPolls.load(); });
    gLongestSleep = 0;
    ASSERT_EQ(init_quarnsnmp(), 0);
    ASSERT_TRUE(eventually([] { return gPolls == 3 && gSecondPolls == 3; }));
    EXPECT_GT(gLongestSleep, 59 * 1000000000L);
    EXPECT_LE(gLongestSleep, 60 * 1000000000L);
}

TEST_F(PollThreadTest, NeverPollsAFeatureThatIsNotUp) {
    up(9, nullptr);
    gFeatureModules.at(7).poll = [] { ++gPolls; };
    gFeatureModules.at(10).poll = [] { ++gPolls; };
    ASSERT_EQ(init_quarnsnmp(), 0);
    pass(5);
    EXPECT_EQ(gPolls, 0);
}

TEST_F(PollThreadTest, AnInterruptionDuringAPollEndsTheThreadAfterThatPoll) {
    gHold = true;
    up(7, [] {
        ++gPolls;
        while (gHold) {
            std::this_thread::yield();
        }
        ++gSecondPolls;
    });
    ASSERT_EQ(init_quarnsnmp(), 0);
    ASSERT_TRUE(eventually([] { return gPolls == 1; }));
    std::atomic<bool> ended{false};
    std::thread ending([&ended] {
        deinit_quarnsnmp();
        ended = true;
    });
    pass(2);
    EXPECT_FALSE(ended) << "did not wait for the poll";
    EXPECT_THAT(core().logs(), Not(Contains(kLeaving)));
    gHold = false;
    ending.join();
    EXPECT_EQ(gSecondPolls, 1);
    EXPECT_THAT(core().logs(), ElementsAre(kLeaving));
}

TEST_F(PollThreadTest, JoiningItselfIsRefused) {
    up(7, [] {
        try {
            deinit_quarnsnmp();
        } catch (const boost::thread_resource_error &error) {
            gJoinError = error.what();
            gJoinErrorCode = error.native_error();
        }
        ++gPolls;
    });
    ASSERT_EQ(init_quarnsnmp(), 0);
    ASSERT_TRUE(eventually([] { return gPolls == 1; }));
    EXPECT_THAT(gJoinError, testing::HasSubstr("boost thread: trying joining itself"));
    EXPECT_EQ(gJoinErrorCode, EDEADLK);
}

TEST_F(PollThreadForkTest, PollsContinueInParentAndChild) {
    up(7, [] { ++gPolls; });
    ASSERT_EQ(init_quarnsnmp(), 0);
    const pid_t child = fork();
    if (child == 0) {
        gPolls = 0;
        const bool polled = eventually([] { return gPolls > 1; });
        deinit_quarnsnmp();
        _exit(polled ? 0 : 1);
    }
    ASSERT_GT(child, 0);
    int status = -1;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0) << status;
    EXPECT_TRUE(eventually([] { return gPolls > 1; })) << "the parent's thread has gone";
}

TEST_F(PollThreadForkTest, AForkAfterTheEndStartsNoThread) {
    up(7, [] { ++gPolls; });
    ASSERT_EQ(init_quarnsnmp(), 0);
    deinit_quarnsnmp();
    const pid_t child = fork();
    if (child == 0) {
        _exit(std::stoi(ownStatus("Threads")));
    }
    int status = -1;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    ASSERT_TRUE(WIFEXITED(status)) << status;
    const int threads = WEXITSTATUS(status);
    // A join may return before the kernel has removed the thread.
    EXPECT_TRUE(eventually([threads] { return std::stoi(ownStatus("Threads")) == threads; })) << threads;
}

TEST_F(PollThreadTest, TakesNoSignals) {
    static std::string blocked;
    up(7, [] {
        blocked = ownStatus("SigBlk");
        ++gPolls;
    });
    ASSERT_EQ(init_quarnsnmp(), 0);
    ASSERT_TRUE(eventually([] { return gPolls == 1; }));
    const unsigned long long mask = std::stoull(blocked, nullptr, 16);
    for (const int signal : {SIGHUP, SIGINT, SIGTERM, SIGUSR1, SIGALRM, SIGCHLD}) {
        EXPECT_NE(mask & (1ULL << static_cast<unsigned>(signal - 1)), 0U) << signal;
    }
}
