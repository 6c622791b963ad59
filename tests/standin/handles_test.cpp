// SPDX-License-Identifier: Apache-2.0
#include "standin_test.h"

namespace {

/** Handles in the order of their life, and out of it. */
class HandlesTest : public StandInTest {
protected:
    zorva_core_status readTemperature(void *cookie) {
        int32_t temperature = 0;
        return zorva_api_temperature_get_temperature_send(cookie, kTarget, &temperature);
    }

    ScriptedServer server{directory(), "temperature", "[0,21500]"};
};

TEST_F(HandlesTest, OpeningGreetsAndClosingSaysGoodbye) {
    void *const cookie = open(&zorva_api_temperature_initiator_init);
    EXPECT_EQ(1U, server.greetings());
    EXPECT_EQ(wire::kSuccess, readTemperature(cookie));
    EXPECT_EQ(wire::kSuccess, zorva_api_temperature_initiator_deinit(cookie));
    EXPECT_EQ(1U, server.farewells());
    EXPECT_EQ(1U, server.connectionCount());
    EXPECT_TRUE(clientSockets(directory()).empty());
    EXPECT_EQ(wire::kInvalidHandle, readTemperature(cookie));
    EXPECT_EQ(wire::kInvalidHandle, zorva_api_temperature_initiator_deinit(cookie));
}

TEST_F(HandlesTest, AreNeverGivenOutAgain) {
    std::set<void *> seen = {logCookie, ipcCookie};
    for (int i = 0; i < 100; ++i) {
        void *const cookie = open(&zorva_api_temperature_initiator_init);
        EXPECT_TRUE(seen.insert(cookie).second);
        EXPECT_EQ(wire::kSuccess, zorva_api_temperature_initiator_deinit(cookie));
    }
    EXPECT_EQ(wire::kSuccess, zorva_core_deinit());
    EXPECT_EQ(wire::kSuccess, zorva_core_init());
    void *log = nullptr;
    EXPECT_EQ(wire::kSuccess, zorva_core_logging_init("again", &log));
    EXPECT_TRUE(seen.insert(log).second);
}

TEST_F(HandlesTest, OfAServiceThatIsNotThereOrDownAreNotGivenOut) {
    void *cookie = this;
    EXPECT_EQ(wire::kUnreachable, zorva_api_relay_initiator_init(ipcCookie, logCookie, &cookie, 0, nullptr));
    EXPECT_EQ(nullptr, cookie);
    EXPECT_EQ(wire::kInvalidHandle, zorva_api_relay_set_state_send(cookie, kTarget, 1));
    EXPECT_EQ(wire::kInvalidHandle, zorva_api_relay_initiator_deinit(cookie));
    const ScriptedServer down(
        directory(), "relay", [](Peer &peer, const std::string &) { peer.send("[6]\n"); },
        ScriptedServer::Scope::kEverything);
    cookie = this;
    EXPECT_EQ(wire::kServiceDown, zorva_api_relay_initiator_init(ipcCookie, logCookie, &cookie, 0, nullptr));
    EXPECT_EQ(nullptr, cookie);
    EXPECT_TRUE(clientSockets(directory()).empty());
}

TEST_F(HandlesTest, ReservedAndWrongArgumentsOfOpeningAreRefused) {
    void *cookie = this;
    int other = 0;
    const auto open = &zorva_api_temperature_initiator_init;
    EXPECT_EQ(wire::kInvalidArgument, open(ipcCookie, logCookie, nullptr, 0, nullptr));
    EXPECT_EQ(wire::kInvalidArgument, open(ipcCookie, logCookie, &cookie, 1, nullptr));
    EXPECT_EQ(nullptr, cookie);
    EXPECT_EQ(wire::kInvalidArgument, open(ipcCookie, logCookie, &cookie, 0, &other));
    EXPECT_EQ(wire::kInvalidHandle, open(logCookie, ipcCookie, &cookie, 0, nullptr));
    EXPECT_EQ(wire::kInvalidHandle, open(nullptr, logCookie, &cookie, 0, nullptr));
    EXPECT_EQ(wire::kInvalidHandle, open(&other, logCookie, &cookie, 0, nullptr));
    EXPECT_EQ(wire::kInvalidHandle, open(ipcCookie, &other, &cookie, 0, nullptr));
    EXPECT_EQ(wire::kInvalidArgument, zorva_core_ipc_initiator_init(logCookie, &other, &cookie));
    EXPECT_EQ(wire::kInvalidArgument, zorva_core_ipc_initiator_init(logCookie, nullptr, nullptr));
    EXPECT_EQ(wire::kInvalidHandle, zorva_core_ipc_initiator_init(&other, nullptr, &cookie));
    EXPECT_EQ(wire::kInvalidArgument, zorva_core_logging_init(nullptr, &cookie));
    EXPECT_EQ(wire::kInvalidArgument, zorva_core_logging_init("name", nullptr));
    EXPECT_EQ(nullptr, cookie);
    EXPECT_EQ(0U, server.connectionCount());
}

TEST_F(HandlesTest, ALogIsNotNeeded) {
    void *ipc = nullptr;
    ASSERT_EQ(wire::kSuccess, zorva_core_ipc_initiator_init(nullptr, nullptr, &ipc));
    void *cookie = nullptr;
    ASSERT_EQ(wire::kSuccess, zorva_api_temperature_initiator_init(ipc, nullptr, &cookie, 0, nullptr));
    EXPECT_EQ(wire::kSuccess, readTemperature(cookie));
}

TEST_F(HandlesTest, ClosingTheCommunicationClosesItsServices) {
    void *otherIpc = nullptr;
    ASSERT_EQ(wire::kSuccess, zorva_core_ipc_initiator_init(logCookie, nullptr, &otherIpc));
    void *other = nullptr;
    ASSERT_EQ(wire::kSuccess, zorva_api_temperature_initiator_init(otherIpc, logCookie, &other, 0, nullptr));
    void *const cookie = open(&zorva_api_temperature_initiator_init);
    EXPECT_EQ(wire::kSuccess, zorva_core_ipc_deinit(ipcCookie));
    EXPECT_EQ(wire::kInvalidHandle, readTemperature(cookie));
    EXPECT_EQ(wire::kInvalidHandle, zorva_api_temperature_initiator_deinit(cookie));
    EXPECT_EQ(wire::kInvalidHandle, zorva_core_ipc_deinit(ipcCookie));
    EXPECT_EQ(wire::kSuccess, readTemperature(other));
    EXPECT_EQ(1U, clientSockets(directory()).size());
}

TEST_F(HandlesTest, EndingTwiceIsHarmless) {
    void *const cookie = open(&zorva_api_temperature_initiator_init);
    for (const bool isFirst : {true, false}) {
        const zorva_core_status expected = isFirst ? wire::kSuccess : wire::kNotInitialised;
        EXPECT_EQ(expected, zorva_api_temperature_initiator_deinit(cookie));
        EXPECT_EQ(expected, zorva_core_ipc_deinit(ipcCookie));
        EXPECT_EQ(expected, zorva_core_logging_deinit(logCookie));
        EXPECT_EQ(expected, zorva_core_deinit());
    }
    zorva_core_logging_log(logCookie, 3, "nobody hears this");
    EXPECT_TRUE(clientSockets(directory()).empty());
}

TEST_F(HandlesTest, EndingTheLibraryClosesWhatIsStillOpen) {
    void *const cookie = open(&zorva_api_temperature_initiator_init);
    const ScriptedServer directoryServer(directory(), "directory", "[0]");
    std::vector<std::string> ids;
    EXPECT_TRUE(zorva::core::getTargetIds("temperature", ids));
    EXPECT_EQ(2U, clientSockets(directory()).size());
    EXPECT_EQ(wire::kSuccess, zorva_core_deinit());
    EXPECT_TRUE(clientSockets(directory()).empty());
    EXPECT_TRUE(eventually([&] { return server.openConnections() == 0; }));

    // Old handles stay invalid after a new beginning.
    EXPECT_EQ(wire::kSuccess, zorva_core_init());
    EXPECT_EQ(wire::kInvalidHandle, readTemperature(cookie));
    EXPECT_EQ(wire::kInvalidHandle, zorva_core_ipc_deinit(ipcCookie));
    EXPECT_EQ(wire::kInvalidHandle, zorva_core_logging_deinit(logCookie));
}

TEST_F(HandlesTest, BeginningsAreCounted) {
    EXPECT_EQ(wire::kSuccess, zorva_core_init());
    void *const cookie = open(&zorva_api_temperature_initiator_init);
    EXPECT_EQ(wire::kSuccess, zorva_core_deinit());
    EXPECT_EQ(wire::kSuccess, readTemperature(cookie));
    EXPECT_EQ(wire::kSuccess, zorva_core_deinit());
    EXPECT_EQ(wire::kNotInitialised, readTemperature(cookie));
    EXPECT_EQ(wire::kNotInitialised, zorva_core_deinit());
}

TEST_F(HandlesTest, NothingWorksBeforeTheBeginning) {
    ASSERT_EQ(wire::kSuccess, zorva_core_deinit());
    const ScriptedServer directoryServer(directory(), "directory", "[0,\"one\"]");
    void *cookie = this;
    EXPECT_EQ(wire::kNotInitialised, zorva_core_logging_init("name", &cookie));
    EXPECT_EQ(nullptr, cookie);
    EXPECT_EQ(wire::kNotInitialised, zorva_core_ipc_initiator_init(nullptr, nullptr, &cookie));
    EXPECT_EQ(wire::kNotInitialised, zorva_api_temperature_initiator_init(ipcCookie, logCookie, &cookie, 0, nullptr));
    EXPECT_EQ(wire::kNotInitialised, zorva_api_temperature_initiator_deinit(ipcCookie));
    EXPECT_EQ(wire::kNotInitialised, zorva_core_ipc_deinit(ipcCookie));
    EXPECT_EQ(wire::kNotInitialised, zorva_core_logging_deinit(logCookie));
    EXPECT_EQ(wire::kNotInitialised, zorva_core_deinit());
    std::vector<std::string> ids;
    EXPECT_FALSE(zorva::core::getTargetIds("temperature", ids));
    EXPECT_TRUE(ids.empty());
    EXPECT_EQ(0U, server.connectionCount());
    EXPECT_EQ(0U, directoryServer.connectionCount());
}

TEST_F(HandlesTest, DescriptorsDoNotReachOtherPrograms) {
    ASSERT_EQ(wire::kSuccess, zorva_core_deinit());
    const std::set<int> before = openDescriptors();
    StandInTest::SetUp();
    open(&zorva_api_temperature_initiator_init);
    const ScriptedServer directoryServer(directory(), "directory", "[0]");
    std::vector<std::string> ids;
    ASSERT_TRUE(zorva::core::getTargetIds("temperature", ids));
    ASSERT_EQ(2U, clientSockets(directory()).size());
    unsigned checked = 0;
    for (const int descriptor : openDescriptors()) {
        if (before.count(descriptor) == 0) {
            EXPECT_TRUE(closesOnExec(descriptor)) << descriptor;
            ++checked;
        }
    }
    // The two sockets and the log at least; the server has some too.
    EXPECT_GE(checked, 3U);
}

} // namespace
