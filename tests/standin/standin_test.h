// SPDX-License-Identifier: Apache-2.0
/** @file Fixture of the tests of the stand-in library. */
#ifndef QUARNSNMP_STANDIN_STANDIN_TEST_H
#define QUARNSNMP_STANDIN_STANDIN_TEST_H

#include <chrono>
#include <set>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "eventually.h"
#include "log_file.h"
#include "scripted_server.h"
#include "status.h"
#include "temporary_directory.h"
#include "zorva-core.h"

using namespace support;

/** Signature of every initiator_init. */
using OpenFunction = zorva_core_status (*)(void *, void *, void **, int32_t, void *);

/**
 * Points the library to a directory of its own, logs to a file there at level debug, and opens log and
 * communication.
 */
class StandInTest : public ::testing::Test {
protected:
    static constexpr const char *kTarget = "camera/1";

    void SetUp() override;
    void TearDown() override;

    /** Opens a service, which must succeed. */
    void *open(OpenFunction initiatorInit);

    /** Returns the lines of the log. */
    std::vector<std::string> logLines() const;
    /** Waits until a log line ends with `text`. */
    bool logSays(const std::string &text) const;

    const std::string &directory() const {
        return temporary.path();
    }

    TemporaryDirectory temporary;
    std::string logFile = temporary.file("log");
    void *logCookie = nullptr;
    void *ipcCookie = nullptr;
};

/** Sets an environment variable. */
void setEnvironment(const char *name, const std::string &value);

/** Returns the process's sockets with a peer in the directory: those of the library, not of the servers. */
std::set<int> clientSockets(const std::string &directory);

/** Returns all descriptors of the process. */
std::set<int> openDescriptors();

/** Returns true if a descriptor closes at the start of another program. */
bool closesOnExec(int descriptor);

/** Runs `action(0)` to `action(count - 1)` at the same time and waits for all of them. */
template <typename Action>
void inThreads(int count, const Action &action) {
    std::vector<std::thread> threads;
    threads.reserve(static_cast<std::size_t>(count));
    for (int i = 0; i < count; ++i) {
        threads.emplace_back([&action, i] { action(i); });
    }
    for (std::thread &thread : threads) {
        thread.join();
    }
}

/** Measures the duration of an action. */
template <typename Action>
std::chrono::milliseconds durationOf(const Action &action) {
    const auto start = kernelTime();
    action();
    return std::chrono::duration_cast<std::chrono::milliseconds>(kernelTime() - start);
}

#endif
