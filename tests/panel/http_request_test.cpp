// SPDX-License-Identifier: Apache-2.0
// Requests as the server reads them, and names that it answers to.
#include <gmock/gmock.h>

#include "guard.h"
#include "http_request.h"

namespace panel {
namespace {

/** Reads a request that arrives in pieces of a size. @return the status of the refusal; 0 for a complete request */
int statusOf(const std::string &octets, std::size_t piece, Request &request) {
    RequestReader reader;
    std::string input;
    for (std::size_t start = 0; start < octets.size(); start += piece) {
        input += octets.substr(start, piece);
        switch (reader.read(input)) {
        case RequestReader::Progress::Complete:
            request = reader.take();
            return 0;
        case RequestReader::Progress::Failed:
            return reader.error().status;
        case RequestReader::Progress::NeedsMore:
            break;
        }
    }
    return -1;
}

constexpr std::size_t kWhole = 1000000;

struct HttpRow {
    const char *name;
    std::string octets;
    int status; ///< 0 for a complete request, -1 for one that needs more
};

class HttpRequestTest : public testing::TestWithParam<HttpRow> {};

TEST_P(HttpRequestTest, IsTakenOrRefusedInPiecesOfAnySize) {
    for (const std::size_t piece : {std::size_t{1}, std::size_t{7}, kWhole}) {
        Request request;
        EXPECT_EQ(statusOf(GetParam().octets, piece, request), GetParam().status) << "in pieces of " << piece;
    }
}

const std::string kHost = " HTTP/1.1\r\nHost: localhost\r\n";

INSTANTIATE_TEST_SUITE_P(
    Of, HttpRequestTest,
    testing::Values(
        HttpRow{"Plain", "GET /" + kHost + "\r\n", 0}, HttpRow{"Query", "GET /events?camera=1" + kHost + "\r\n", 0},
        HttpRow{"Version10WithoutHost", "GET / HTTP/1.0\r\n\r\n", 0},
        HttpRow{"Version11WithoutHost", "GET / HTTP/1.1\r\n\r\n", 400},
        HttpRow{"TwoHosts", "GET /" + kHost + "Host: localhost\r\n\r\n", 400},
        HttpRow{"AbsoluteForm", "GET http://localhost:8205/events HTTP/1.1\r\nHost: x\r\n\r\n", 0},
        HttpRow{"OtherScheme", "GET https://localhost/" + kHost + "\r\n", 400},
        HttpRow{"NoPath", "GET events" + kHost + "\r\n", 400}, HttpRow{"Asterisk", "OPTIONS *" + kHost + "\r\n", 400},
        HttpRow{"Nul", "GET /%00" + kHost + "\r\n", 400}, HttpRow{"RawControl", "GET /\x01" + kHost + "\r\n", 400},
        HttpRow{"HalfAnEscape", "GET /%4" + kHost + "\r\n", 400},
        HttpRow{"WrongEscape", "GET /%zz" + kHost + "\r\n", 400}, HttpRow{"NotHttp", "hello\r\n\r\n", 400},
        HttpRow{"Tls", std::string("\x16\x03\x01\x02\x00\x01\r\n\r\n", 10), 400},
        HttpRow{"Version2", "GET / HTTP/2.0\r\n\r\n", 505}, HttpRow{"Version9", "GET / HTTP/0.9\r\n\r\n", 505},
        HttpRow{"Unfinished", "GET /" + kHost, -1},
        HttpRow{"LongHeader", "GET /" + kHost + "X: " + std::string(kLongestHeader, 'x') + "\r\n\r\n", 431},
        HttpRow{"EndlessHeader", "GET /" + std::string(2 * kLongestHeader, 'x'), 431},
        HttpRow{"Body", "POST /" + kHost + "Content-Length: 2\r\n\r\n{}", 0},
        HttpRow{"UnfinishedBody", "POST /" + kHost + "Content-Length: 3\r\n\r\n{}", -1},
        HttpRow{"Chunked", "POST /" + kHost + "Transfer-Encoding: chunked\r\n\r\n2\r\n{}\r\n0\r\n\r\n", 0},
        HttpRow{"LongBody", "POST /" + kHost + "Content-Length: 16385\r\n\r\n", 413},
        HttpRow{"LongChunks",
                "POST /" + kHost + "Transfer-Encoding: chunked\r\n\r\n5000\r\n" + std::string(0x5000, 'x') +
                    "\r\n0\r\n\r\n",
                413},
        HttpRow{"TwoLengths", "POST /" + kHost + "Content-Length: 2\r\nContent-Length: 3\r\n\r\n{}", 400},
        HttpRow{"NegativeLength", "POST /" + kHost + "Content-Length: -1\r\n\r\n", 400},
        HttpRow{"LengthAndChunks",
                "POST /" + kHost + "Content-Length: 2\r\nTransfer-Encoding: chunked\r\n\r\n0\r\n\r\n", 400}),
    [](const auto &row) { return row.param.name; });

TEST(HttpRequestPartsTest, AreDecoded) {
    Request request;
    ASSERT_EQ(statusOf("POST /a%2Fb/../c%20d?camera=1&name=a%26b&flag HTTP/1.1\r\nHost: A:1\r\nX-One: 1\r\n"
                       "Content-Length: 2\r\n\r\n{}GET",
                       kWhole, request),
              0);
    EXPECT_EQ(request.method, "POST");
    EXPECT_EQ(request.path, "/a/b/../c d");
    EXPECT_EQ(request.queryValue("camera"), "1");
    EXPECT_EQ(request.queryValue("name"), "a&b");
    EXPECT_EQ(request.query.count("flag"), 1U);
    EXPECT_EQ(request.header("x-one"), "1");
    EXPECT_EQ(request.host, "A:1");
    EXPECT_EQ(request.body, "{}");
    EXPECT_TRUE(request.keepsAlive);
}

TEST(HttpRequestPartsTest, LeaveTheNextRequestInTheBuffer) {
    RequestReader reader;
    std::string input = "GET /a" + kHost + "\r\nGET /b" + kHost + "\r\n";
    ASSERT_EQ(reader.read(input), RequestReader::Progress::Complete);
    EXPECT_EQ(reader.take().path, "/a");
    RequestReader second;
    ASSERT_EQ(second.read(input), RequestReader::Progress::Complete);
    EXPECT_EQ(second.take().path, "/b");
    EXPECT_EQ(input, "");
}

struct HostRow {
    const char *host;
    bool allowed;
};

class HostPolicyTest : public testing::TestWithParam<HostRow> {};

TEST_P(HostPolicyTest, AllowsTheNamesOfTheServerOnly) {
    const HostPolicy policy({"192.0.2.7", "Bench.example"});
    EXPECT_EQ(policy.allows(GetParam().host), GetParam().allowed) << GetParam().host;
}

INSTANTIATE_TEST_SUITE_P(
    Of, HostPolicyTest,
    testing::Values(HostRow{"localhost", true}, HostRow{"LOCALHOST:8205", true}, HostRow{"127.0.0.1", true},
                    HostRow{"127.9.9.9:1", true}, HostRow{"[::1]", true}, HostRow{"[::1]:8205", true},
                    HostRow{"192.0.2.7:80", true}, HostRow{"bench.EXAMPLE", true}, HostRow{"", false},
                    HostRow{"192.0.2.8", false}, HostRow{"evil.example", false},
                    HostRow{"localhost.evil.example", false}, HostRow{"localhost:", false},
                    HostRow{"localhost:80a", false}, HostRow{"localhost:123456", false},
                    HostRow{"localhost@evil.example", false}, HostRow{"[::1", false}, HostRow{"[::1]x", false},
                    HostRow{"localhost, evil.example", false}, HostRow{"127.0.0.1.evil.example", false}));

} // namespace
} // namespace panel
