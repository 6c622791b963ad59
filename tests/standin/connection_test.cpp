// SPDX-License-Identifier: Apache-2.0
#include <sys/stat.h>

#include "standin_test.h"

namespace {

/** Connections that end at every moment. SIGPIPE has its default action here, so that one would end the program. */
class ConnectionTest : public StandInTest {
protected:
    void startServer(ScriptedServer::Handler handler) {
        server = std::make_unique<ScriptedServer>(directory(), "zoom_stepper", std::move(handler));
    }

    static void answer(Peer &peer, const std::string & /*line*/) {
        peer.send("[0,42]\n");
    }

    zorva_core_status readPosition() {
        position = 0;
        return zorva_api_zoom_stepper_get_position_send(cookie, kTarget, &position);
    }

    void SetUp() override {
        StandInTest::SetUp();
        startServer(answer);
        cookie = open(&zorva_api_zoom_stepper_initiator_init);
    }

    std::unique_ptr<ScriptedServer> server;
    void *cookie = nullptr;
    int32_t position = 0;
};

TEST_F(ConnectionTest, RestartOfTheServiceGoesUnnoticed) {
    EXPECT_EQ(wire::kSuccess, readPosition());
    for (int i = 0; i < 3; ++i) {
        server.reset();
        startServer(answer);
        EXPECT_EQ(wire::kSuccess, readPosition());
        EXPECT_EQ(42, position);
        EXPECT_EQ(1U, server->requests().size());
    }
    EXPECT_EQ(1U, clientSockets(directory()).size());
}

TEST_F(ConnectionTest, ServiceThatIsGoneFailsTheCallUntilItIsBack) {
    server.reset();
    for (int i = 0; i < 3; ++i) {
        EXPECT_EQ(wire::kUnreachable, readPosition());
        EXPECT_TRUE(clientSockets(directory()).empty());
    }
    startServer(answer);
    EXPECT_EQ(wire::kSuccess, readPosition());
}

TEST_F(ConnectionTest, LossAfterTheRequestOrAmidTheAnswerIsNotRepeated) {
    unsigned requests = 0;
    for (const char *piece : {"", "[0,42"}) {
        server->setHandler([piece](Peer &peer, const std::string &) {
            peer.send(piece);
            peer.hangUp();
        });
        EXPECT_EQ(wire::kConnectionLost, readPosition());
        EXPECT_EQ(0, position);
        EXPECT_EQ(++requests, server->requests().size());
        EXPECT_EQ(requests, server->connectionCount());
    }
    server->setHandler(answer);
    EXPECT_EQ(wire::kSuccess, readPosition());
    EXPECT_EQ(3U, server->requests().size());
    EXPECT_EQ(3U, server->connectionCount());
}

TEST_F(ConnectionTest, LossBehindTheAnswerGoesUnnoticed) {
    server->setHandler([](Peer &peer, const std::string &line) {
        answer(peer, line);
        peer.hangUp();
    });
    for (int i = 0; i < 5; ++i) {
        EXPECT_EQ(wire::kSuccess, readPosition());
        // The end of the connection has to be there before the next call, to be found by it.
        EXPECT_TRUE(eventually([&] { return server->openConnections() == 0; }));
    }
    EXPECT_EQ(5U, server->requests().size());
    EXPECT_EQ(5U, server->connectionCount());
}

TEST_F(ConnectionTest, RequestThatCouldNotBeSentIsSentAgain) {
    server->refuseInput();
    EXPECT_EQ(wire::kSuccess, readPosition());
    EXPECT_EQ(42, position);
    EXPECT_EQ(1U, server->requests().size());
    EXPECT_EQ(2U, server->connectionCount());
}

TEST_F(ConnectionTest, HangUpInsteadOfAGreetingGivesNoHandle) {
    const ScriptedServer rude(
        directory(), "iris", [](Peer &peer, const std::string &) { peer.hangUp(); },
        ScriptedServer::Scope::kEverything);
    void *iris = this;
    EXPECT_EQ(wire::kConnectionLost, zorva_api_iris_initiator_init(ipcCookie, logCookie, &iris, 0, nullptr));
    EXPECT_EQ(nullptr, iris);
    EXPECT_EQ(1U, clientSockets(directory()).size());
}

TEST_F(ConnectionTest, ClosingAfterTheServiceWentIsNoFailure) {
    server.reset();
    EXPECT_EQ(wire::kSuccess, zorva_api_zoom_stepper_initiator_deinit(cookie));
    EXPECT_TRUE(clientSockets(directory()).empty());
}

TEST_F(ConnectionTest, SocketThatMayNotBeUsedIsUnreachable) {
    void *iris = nullptr;
    const std::string path = temporary.file("iris.sock");
    ASSERT_EQ(0, ::mkdir(path.c_str(), 0700));
    EXPECT_EQ(wire::kUnreachable, zorva_api_iris_initiator_init(ipcCookie, logCookie, &iris, 0, nullptr));
    EXPECT_TRUE(clientSockets(directory()).size() == 1U);
}

TEST_F(ConnectionTest, UnsafeDirectoryIsRefused) {
    ASSERT_EQ(0, ::chmod(directory().c_str(), 0770));
    server->forEachPeer([](Peer &peer) { peer.hangUp(); });
    EXPECT_EQ(wire::kUnreachable, readPosition());
    const std::string reason = directory() + " is writable by other users; run chmod go-w on it";
    EXPECT_TRUE(
        logSays(" SNMP debug core library: not connecting to " + temporary.file("zoom_stepper.sock") + ": " + reason));
    StandInTest::TearDown();
    ASSERT_EQ(wire::kSuccess, zorva_core_init());
    EXPECT_TRUE(logSays(" zorva-core error refusing the camera's sockets: " + reason));
    ASSERT_EQ(0, ::chmod(directory().c_str(), 0700));
    ASSERT_EQ(wire::kSuccess, zorva_core_ipc_initiator_init(nullptr, nullptr, &ipcCookie));
    logCookie = nullptr;
    open(&zorva_api_zoom_stepper_initiator_init);
}

TEST_F(ConnectionTest, PathThatIsTooLongIsUnreachable) {
    ASSERT_EQ(wire::kSuccess, zorva_core_deinit());
    setEnvironment("QUARNSNMP_CAMERA_DIR", "/tmp/" + std::string(200, 'x'));
    StandInTest::TearDown();
    ASSERT_EQ(wire::kSuccess, zorva_core_init());
    ASSERT_EQ(wire::kSuccess, zorva_core_ipc_initiator_init(nullptr, nullptr, &ipcCookie));
    void *iris = nullptr;
    EXPECT_EQ(wire::kUnreachable, zorva_api_iris_initiator_init(ipcCookie, nullptr, &iris, 0, nullptr));
    EXPECT_EQ(nullptr, iris);
}

TEST_F(ConnectionTest, ConnectionsMadeAndLostAreLogged) {
    const std::string path = temporary.file("zoom_stepper.sock");
    EXPECT_TRUE(logSays(" SNMP debug core library: connected to " + path));
    server->setHandler([](Peer &peer, const std::string &) { peer.send("nonsense\n"); });
    EXPECT_EQ(wire::kBadResponse, readPosition());
    EXPECT_TRUE(logSays(" SNMP debug core library: disconnected from " + path + ": answer not understood"));
}

TEST_F(ConnectionTest, NothingIsLoggedAfterTheLoggingContextIsClosed) {
    ASSERT_EQ(wire::kSuccess, zorva_core_logging_deinit(logCookie));
    const std::vector<std::string> lines = logLines();
    server->setHandler([](Peer &peer, const std::string &) { peer.send("nonsense\n"); });
    EXPECT_EQ(wire::kBadResponse, readPosition());
    server->setHandler(answer);
    EXPECT_EQ(wire::kSuccess, readPosition());
    EXPECT_EQ(lines, logLines());
}

} // namespace
