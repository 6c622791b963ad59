// SPDX-License-Identifier: Apache-2.0
#include "standin_test.h"

#include <cstdlib>
#include <filesystem>

#include <fcntl.h>
#include <sys/socket.h>
#include <sys/un.h>

void StandInTest::SetUp() {
    setEnvironment("QUARNSNMP_CAMERA_DIR", directory());
    setEnvironment("QUARNSNMP_LOG_FILE", logFile);
    setEnvironment("QUARNSNMP_LOG_LEVEL", "debug");
    ASSERT_EQ(wire::kSuccess, zorva_core_init());
    ASSERT_EQ(wire::kSuccess, zorva_core_logging_init("SNMP", &logCookie));
    ASSERT_EQ(wire::kSuccess, zorva_core_ipc_initiator_init(logCookie, nullptr, &ipcCookie));
}

void StandInTest::TearDown() {
    // Tests may have ended the library already, or have begun it more than once.
    while (zorva_core_deinit() == wire::kSuccess) {
    }
    EXPECT_TRUE(clientSockets(directory()).empty());
}

void *StandInTest::open(OpenFunction initiatorInit) {
    void *cookie = nullptr;
    EXPECT_EQ(wire::kSuccess, initiatorInit(ipcCookie, logCookie, &cookie, 0, nullptr));
    EXPECT_NE(nullptr, cookie);
    return cookie;
}

std::vector<std::string> StandInTest::logLines() const {
    return LogFile(logFile).lines();
}

bool StandInTest::logSays(const std::string &text) const {
    return eventually([&] {
        for (const std::string &line : logLines()) {
            if (line.size() >= text.size() && line.compare(line.size() - text.size(), text.size(), text) == 0) {
                return true;
            }
        }
        return false;
    });
}

void setEnvironment(const char *name, const std::string &value) {
    if (::setenv(name, value.c_str(), 1) != 0) {
        ::abort();
    }
}

std::set<int> openDescriptors() {
    std::set<int> descriptors;
    for (const auto &entry : std::filesystem::directory_iterator("/proc/self/fd")) {
        descriptors.insert(std::stoi(entry.path().filename().string()));
    }
    // The listing's own descriptor is closed by now.
    for (auto descriptor = descriptors.begin(); descriptor != descriptors.end();) {
        descriptor = ::fcntl(*descriptor, F_GETFD) < 0 ? descriptors.erase(descriptor) : std::next(descriptor);
    }
    return descriptors;
}

std::set<int> clientSockets(const std::string &directory) {
    std::set<int> sockets;
    for (const int descriptor : openDescriptors()) {
        sockaddr_un address{};
        socklen_t length = sizeof address;
        if (::getpeername(descriptor, reinterpret_cast<sockaddr *>(&address), &length) == 0 &&
            address.sun_family == AF_UNIX && std::string(address.sun_path).rfind(directory + "/", 0) == 0) {
            sockets.insert(descriptor);
        }
    }
    return sockets;
}

bool closesOnExec(int descriptor) {
    const int flags = ::fcntl(descriptor, F_GETFD);
    return flags >= 0 && (static_cast<unsigned>(flags) & FD_CLOEXEC) != 0;
}
