// SPDX-License-Identifier: Apache-2.0
#include <array>
#include <atomic>
#include <functional>
#include <thread>

#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include "standin_test.h"

namespace {

/** Ends a child that hangs, so that the test fails instead of waiting. */
constexpr unsigned kChildLimitSeconds = 20;

/** Forks, runs `check` in the child and gives the number of the first step there that failed; 0 is success. */
int inChild(const std::function<int()> &check) {
    const pid_t child = ::fork();
    if (child == 0) {
        ::alarm(kChildLimitSeconds);
        ::_exit(check());
    }
    int status = -1;
    if (child < 0 || ::waitpid(child, &status, 0) != child || !WIFEXITED(status)) {
        return -1;
    }
    return WEXITSTATUS(status);
}

class ForkTest : public StandInTest {
protected:
    static void answer(Peer &peer, const std::string & /*line*/) {
        peer.send("[0,21500]\n");
    }

    void SetUp() override {
        StandInTest::SetUp();
        cookie = open(&zorva_api_temperature_initiator_init);
    }

    bool canCall() const {
        int32_t temperature = 0;
        return zorva_api_temperature_get_temperature_send(cookie, kTarget, &temperature) == wire::kSuccess &&
               temperature == 21500;
    }

    static bool canAskDirectory() {
        std::vector<std::string> ids;
        return zorva::core::getTargetIds("temperature", ids) && ids.size() == 1;
    }

    ScriptedServer server{directory(), "temperature", answer};
    ScriptedServer directoryServer{directory(), "directory", "[0,\"one\"]"};
    void *cookie = nullptr;
};

TEST_F(ForkTest, ChildUsesTheSameHandlesOverConnectionsOfItsOwn) {
    ASSERT_TRUE(canCall());
    ASSERT_TRUE(canAskDirectory());
    ASSERT_EQ(2U, clientSockets(directory()).size());
    EXPECT_EQ(0, inChild([this] {
                  if (!clientSockets(directory()).empty()) {
                      return 1;
                  }
                  if (!canCall() || !canCall()) {
                      return 2;
                  }
                  if (!canAskDirectory()) {
                      return 3;
                  }
                  if (clientSockets(directory()).size() != 2) {
                      return 4;
                  }
                  zorva_core_logging_log(logCookie, 6, "said by the child");
                  return 0;
              }));
    EXPECT_EQ(2U, server.connectionCount());
    EXPECT_EQ(2U, directoryServer.connectionCount());
    EXPECT_TRUE(logSays("SNMP info said by the child"));
    // The parent's connections have not noticed anything.
    EXPECT_TRUE(canCall());
    EXPECT_TRUE(canAskDirectory());
    EXPECT_EQ(2U, server.connectionCount());
    EXPECT_EQ(2U, directoryServer.connectionCount());
}

TEST_F(ForkTest, ChildOpensAndEndsEverything) {
    ASSERT_TRUE(canCall());
    EXPECT_EQ(0, inChild([this] {
                  void *another = nullptr;
                  if (zorva_api_temperature_initiator_init(ipcCookie, logCookie, &another, 0, nullptr) != 0) {
                      return 1;
                  }
                  if (zorva_api_temperature_initiator_deinit(another) != 0 ||
                      zorva_api_temperature_initiator_deinit(cookie) != 0) {
                      return 2;
                  }
                  if (zorva_core_ipc_deinit(ipcCookie) != 0 || zorva_core_logging_deinit(logCookie) != 0) {
                      return 3;
                  }
                  const zorva_core_status end = zorva_core_deinit();
                  if (end != 0 || zorva_core_deinit() != wire::kNotInitialised) {
                      return 4;
                  }
                  return clientSockets(directory()).empty() ? 0 : 5;
              }));
    // The child closed its own handles, not over the parent's connection.
    EXPECT_EQ(1U, server.farewells());
    EXPECT_TRUE(canCall());
    EXPECT_EQ(2U, server.connectionCount());
}

TEST_F(ForkTest, GrandchildOfADaemonWorks) {
    ASSERT_TRUE(canCall());
    EXPECT_EQ(0, inChild([this] {
                  return inChild([this] { return canCall() && canAskDirectory() ? 0 : 1; }) == 0 && canCall() ? 0 : 2;
              }));
}

TEST_F(ForkTest, ChildIsFreeWhileAThreadOfTheParentIsInACall) {
    ASSERT_TRUE(canCall());
    std::atomic<bool> parentMayGoOn{false};
    server.setHandler([&](Peer &peer, const std::string &line) {
        // The first request waits; the server answers requests over other connections at once.
        server.setHandler(answer);
        std::thread([&parentMayGoOn, peer, line]() mutable {
            eventually([&] { return parentMayGoOn.load(); });
            answer(peer, line);
        }).detach();
    });
    std::atomic<bool> parentSucceeded{false};
    const std::size_t before = server.requests().size();
    std::thread caller([&] { parentSucceeded = canCall(); });
    ASSERT_TRUE(eventually([&] { return server.requests().size() > before; }));

    EXPECT_EQ(0, inChild([this] {
                  bool works = false;
                  const std::chrono::milliseconds duration =
                      durationOf([&] { works = canCall() && canAskDirectory(); });
                  return works && duration < std::chrono::milliseconds(1500) ? 0 : 1;
              }));
    parentMayGoOn = true;
    caller.join();
    EXPECT_TRUE(parentSucceeded);
}

TEST_F(ForkTest, ForksAtAnyMomentOfACall) {
    std::atomic<bool> done{false};
    std::atomic<unsigned> failures{0};
    const auto callUntilDone = [&](bool asksDirectory) {
        while (!done) {
            failures += (asksDirectory ? canAskDirectory() : canCall()) ? 0 : 1;
            zorva_core_logging_log(logCookie, 7, "calling");
        }
    };
    const auto openAndCloseUntilDone = [&] {
        while (!done) {
            void *another = nullptr;
            failures += zorva_api_temperature_initiator_init(ipcCookie, logCookie, &another, 0, nullptr) == 0 ? 0 : 1;
            failures += zorva_api_temperature_initiator_deinit(another) == 0 ? 0 : 1;
        }
    };
    std::thread opener(openAndCloseUntilDone);
    std::thread caller(callUntilDone, false);
    std::thread asker(callUntilDone, true);
    for (int i = 0; i < 40; ++i) {
        EXPECT_EQ(0, inChild([this] {
                      if (!clientSockets(directory()).empty()) {
                          return 1;
                      }
                      return canCall() && canAskDirectory() ? 0 : 2;
                  }))
            << i;
    }
    done = true;
    opener.join();
    caller.join();
    asker.join();
    EXPECT_EQ(0U, failures);
}

TEST_F(ForkTest, ProgramsStartedInBetweenDoNotDisturb) {
    ASSERT_TRUE(canCall());
    for (int i = 0; i < 5; ++i) {
        EXPECT_EQ(0, inChild([] {
                      ::execl("/bin/true", "true", static_cast<char *>(nullptr));
                      return 1;
                  }));
        EXPECT_TRUE(canCall());
    }
    EXPECT_EQ(1U, server.connectionCount());
}

} // namespace
