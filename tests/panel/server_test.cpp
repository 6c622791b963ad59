// SPDX-License-Identifier: Apache-2.0
// The HTTP server with clients that misbehave.
#include <thread>

#include <gmock/gmock.h>

#include "eventually.h"
#include "http_client.h"
#include "server.h"

namespace panel {
namespace {

using support::HttpConnection;
using support::HttpResponse;

/** A server that answers "/" and streams at "/stream", in a thread. */
class TestServer {
public:
    explicit TestServer(const ServerLimits &limits = {})
        : server_(
              io_, {boost::asio::ip::address_v4::loopback(), 0}, HostPolicy({}),
              [this](const Request &request, const std::shared_ptr<Exchange> &exchange) { handle(request, exchange); },
              limits),
          port_(server_.address().port()), thread_([this] { io_.run(); }) {}

    ~TestServer() {
        boost::asio::post(io_, [this] {
            server_.close();
            io_.stop();
        });
        thread_.join();
    }

    std::uint16_t port() const {
        return port_;
    }

    /** Sends octets to all clients of the stream. */
    void send(const std::string &octets, bool offered) {
        boost::asio::post(io_, [this, octets, offered] {
            for (const auto &each : watchers_) {
                if (const auto watcher = each.lock()) {
                    offered ? watcher->offer(shared(octets)) : watcher->send(shared(octets));
                }
            }
        });
    }

    /** Number of clients of the stream that have gone. */
    int gone() const {
        return gone_;
    }

private:
    void handle(const Request &request, const std::shared_ptr<Exchange> &exchange) {
        if (request.path == "/throw") {
            throw std::runtime_error("thrown");
        }
        if (request.path != "/stream") {
            exchange->respond({200, "text/plain", shared(request.path + request.body)});
            return;
        }
        exchange->stream("text/plain", [this](const std::weak_ptr<Watcher> &watcher) {
            watchers_.push_back(watcher);
            return std::shared_ptr<void>(nullptr, [this](void *) { ++gone_; });
        });
    }

    boost::asio::io_context io_;
    std::atomic<int> gone_{0};
    std::vector<std::weak_ptr<Watcher>> watchers_;
    Server server_;
    std::uint16_t port_;
    std::thread thread_;
};

const std::string kGet = "GET / HTTP/1.1\r\nHost: localhost\r\n\r\n";

std::string post(const std::string &headers) {
    return "POST / HTTP/1.1\r\nHost: localhost\r\nContent-Length: 2\r\n" + headers + "\r\n{}";
}

struct ServerRow {
    const char *name;
    std::string request;
    int status;
};

class ServerRefusalTest : public testing::TestWithParam<ServerRow> {};

TEST_P(ServerRefusalTest, HasAStatus) {
    const TestServer server;
    const HttpResponse response = support::httpRequest(server.port(), GetParam().request);
    EXPECT_EQ(response.status, GetParam().status) << response.body;
    EXPECT_EQ(response.headers.count("x-content-type-options"), 1U);
    EXPECT_THAT(response.headers.at("content-security-policy"), testing::HasSubstr("default-src 'none'"));
    EXPECT_EQ(response.headers.count("access-control-allow-origin"), 0U);
}

const std::string kJson = "Content-Type: application/json\r\n";
const std::string kOwn = "X-Quarnsnmp-Panel: 1\r\n";

INSTANTIATE_TEST_SUITE_P(
    Of, ServerRefusalTest,
    testing::Values(
        ServerRow{"Get", kGet, 200}, ServerRow{"Head", "HEAD / HTTP/1.1\r\nHost: localhost\r\n\r\n", 200},
        ServerRow{"OtherHost", "GET / HTTP/1.1\r\nHost: evil.example\r\n\r\n", 403},
        ServerRow{"OtherAbsoluteHost", "GET http://evil.example/ HTTP/1.1\r\nHost: localhost\r\n\r\n", 403},
        ServerRow{"EmptyHost", "GET / HTTP/1.1\r\nHost:\r\n\r\n", 403},
        ServerRow{"PostOfThePage", post(kJson + kOwn), 200},
        ServerRow{"PostWithCharset", post("Content-Type: application/json; charset=utf-8\r\n" + kOwn), 200},
        ServerRow{"PostWithoutHeader", post(kJson), 403},
        ServerRow{"PostWithOtherHeader", post(kJson + "X-Quarnsnmp-Panel: 2\r\n"), 403},
        ServerRow{"PostWithoutType", post(kOwn), 415},
        ServerRow{"PostOfAForm", post("Content-Type: text/plain\r\n" + kOwn), 415},
        ServerRow{"PostWithTwoTypes", post(kJson + "Content-Type: text/plain\r\n" + kOwn), 415},
        ServerRow{"PostWithoutHost", "POST / HTTP/1.0\r\nContent-Length: 2\r\n" + kJson + kOwn + "\r\n{}", 403},
        ServerRow{"LongHeader", "GET / HTTP/1.1\r\nX: " + std::string(9000, 'x') + "\r\n\r\n", 431},
        ServerRow{"LongBody", "POST / HTTP/1.1\r\nHost: localhost\r\nContent-Length: 99999\r\n" + kJson + kOwn + "\r\n",
                  413},
        ServerRow{"Failure", "GET /throw HTTP/1.1\r\nHost: localhost\r\n\r\n", 500},
        ServerRow{"NotHttp", "hello\r\n\r\n", 400}),
    [](const auto &row) { return row.param.name; });

TEST(ServerTest, AnswersPipelinedRequestsInOrder) {
    const TestServer server;
    HttpConnection connection(server.port());
    connection.send("GET /a HTTP/1.1\r\nHost: localhost\r\n\r\nHEAD /b HTTP/1.1\r\nHost: localhost\r\n\r\n" +
                    post(kJson + kOwn) + "GET /c HTTP/1.0\r\n\r\n");
    EXPECT_EQ(connection.receive().body, "/a");
    const HttpResponse head = connection.receive(false);
    EXPECT_EQ(head.headers.at("content-length"), "2");
    EXPECT_EQ(connection.receive().body, "/{}");
    const HttpResponse last = connection.receive();
    EXPECT_EQ(last.body, "/c");
    EXPECT_EQ(last.headers.at("connection"), "close");
    EXPECT_TRUE(connection.ends());
}

TEST(ServerTest, AnswersAtOnceBesideHundredsOfHalfRequests) {
    const TestServer server;
    std::vector<std::unique_ptr<HttpConnection>> half;
    for (int i = 0; i < 300; ++i) {
        half.push_back(std::make_unique<HttpConnection>(server.port()));
        half.back()->send(i % 2 == 0 ? "GET / HTT" : "");
    }
    const auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(support::httpRequest(server.port(), kGet).status, 200);
    EXPECT_LT(std::chrono::steady_clock::now() - start, support::patient(std::chrono::seconds(2)));
    // Those beyond the limit have lost their place to later ones.
    EXPECT_TRUE(half.front()->ends());
}

TEST(ServerTest, ClosesConnectionsThatSendNothing) {
    ServerLimits limits;
    limits.idle = std::chrono::milliseconds(100);
    limits.request = std::chrono::milliseconds(100);
    const TestServer server(limits);
    for (const std::string octets :
         {"", "GET / HTTP/1.1\r\nHo", "POST / HTTP/1.1\r\nHost: localhost\r\nContent-Length: 9\r\n\r\n{"}) {
        HttpConnection connection(server.port());
        connection.send(octets);
        EXPECT_TRUE(connection.ends()) << octets;
    }
}

TEST(ServerTest, DropsAStreamThatIsNotRead) {
    ServerLimits limits;
    limits.write = std::chrono::milliseconds(200);
    TestServer server(limits);
    HttpConnection slow(server.port());
    slow.limitBuffer();
    HttpConnection quick(server.port());
    for (HttpConnection *const each : {&slow, &quick}) {
        each->send("GET /stream HTTP/1.1\r\nHost: localhost\r\n\r\n");
        ASSERT_TRUE(each->readUntil("\r\n\r\n"));
    }
    const std::string frame(1000000, 'f');
    ASSERT_TRUE(support::eventually([&] {
        server.send(frame, true);
        return quick.readOctets(frame.size()).has_value() && server.gone() == 1;
    }));
}

TEST(ServerTest, DropsAStreamWithTooManyUnreadOctets) {
    ServerLimits limits;
    limits.unreadOctets = 1000;
    TestServer server(limits);
    HttpConnection connection(server.port());
    connection.send("GET /stream HTTP/1.1\r\nHost: localhost\r\n\r\n");
    ASSERT_TRUE(connection.readUntil("\r\n\r\n"));
    server.send("start", false);
    ASSERT_TRUE(connection.readUntil("start"));
    server.send(std::string(1001, 'x'), false);
    EXPECT_TRUE(connection.ends());
    EXPECT_TRUE(support::eventually([&] { return server.gone() == 1; }));
}

TEST(ServerTest, LimitsTheClientsOfStreams) {
    ServerLimits limits;
    limits.streams = 2;
    const TestServer server(limits);
    const std::string request = "GET /stream HTTP/1.1\r\nHost: localhost\r\n\r\n";
    std::vector<std::unique_ptr<HttpConnection>> clients;
    for (int i = 0; i < 2; ++i) {
        clients.push_back(std::make_unique<HttpConnection>(server.port()));
        clients.back()->send(request);
        EXPECT_EQ(clients.back()->receive().status, 200);
    }
    EXPECT_EQ(support::httpRequest(server.port(), request).status, 503);
    EXPECT_EQ(support::httpRequest(server.port(), kGet).status, 200);
    clients.pop_back();
    EXPECT_TRUE(support::eventually([&] {
        HttpConnection next(server.port());
        next.send(request);
        return next.receive().status == 200;
    }));
}

} // namespace
} // namespace panel
