// SPDX-License-Identifier: Apache-2.0
#include <stdexcept>

#include <gmock/gmock.h>

#include "addresses.h"

using namespace fleet;
using testing::HasSubstr;

namespace {

std::string lastOf(const std::string &first, std::size_t count) {
    return consecutiveAddresses(first, count).back().to_string();
}

TEST(FleetAddresses, FollowEachOtherWithoutAGap) {
    const struct {
        const char *first;
        std::size_t count;
        const char *last;
    } cases[] = {
        {"127.1.0.1", 1, "127.1.0.1"},
        {"127.1.0.1", 255, "127.1.0.255"},
        {"127.1.0.1", 256, "127.1.1.0"},
        {"127.1.0.1", 9999, "127.1.39.15"},
        {"127.1.255.255", 2, "127.2.0.0"},
        {"127.255.255.254", 1, "127.255.255.254"},
        {"127.255.255.0", 255, "127.255.255.254"},
        {"192.0.2.10", 3, "192.0.2.12"},
        {"10.0.0.255", 2, "10.0.1.0"},
        {"126.255.255.255", 1, "126.255.255.255"},
    };
    for (const auto &each : cases) {
        const auto addresses = consecutiveAddresses(each.first, each.count);
        ASSERT_EQ(each.count, addresses.size());
        EXPECT_EQ(each.first, addresses.front().to_string());
        EXPECT_EQ(each.last, addresses.back().to_string());
        for (std::size_t i = 1; i < addresses.size(); ++i) {
            EXPECT_EQ(addresses[i - 1].to_uint() + 1, addresses[i].to_uint());
        }
    }
}

TEST(FleetAddresses, StayInTheirNetwork) {
    const struct {
        const char *first;
        std::size_t count;
        const char *reason;
    } cases[] = {
        {"", 1, "is not an IPv4 address"},
        {"localhost", 1, "is not an IPv4 address"},
        {"127.1.0", 1, "is not an IPv4 address"},
        {"127.1.0.256", 1, "is not an IPv4 address"},
        {"127.1.0.1 ", 1, "is not an IPv4 address"},
        {"::1", 1, "is not an IPv4 address"},
        {"0.0.0.0", 1, "is not the address of a host"},
        {"127.0.0.0", 1, "is not the address of a host"},
        {"127.255.255.255", 1, "is not the address of a host"},
        {"224.0.0.1", 1, "is not the address of a host"},
        {"255.255.255.255", 1, "is not the address of a host"},
        {"127.255.255.254", 2, "2 addresses from 127.255.255.254 on go beyond 127.255.255.254"},
        {"126.255.255.255", 2, "go beyond 126.255.255.255"},
        {"223.255.255.255", 2, "go beyond 223.255.255.255"},
    };
    for (const auto &each : cases) {
        try {
            ADD_FAILURE() << each.first << " " << each.count << ": " << lastOf(each.first, each.count);
        } catch (const std::invalid_argument &error) {
            EXPECT_THAT(error.what(), HasSubstr(each.reason)) << each.first;
        }
    }
}

TEST(FleetAddresses, AreTriedBeforeTheStart) {
    boost::asio::io_context io;
    boost::asio::ip::udp::socket taken(io, {boost::asio::ip::address_v4::loopback(), 0});
    EXPECT_THAT(reasonAgainst(taken.local_endpoint()).value_or(""), HasSubstr("is in use by another program"));
    // An address for documents, which no machine has.
    EXPECT_THAT(reasonAgainst(parseEndpoint("192.0.2.1:1161")).value_or(""),
                HasSubstr("192.0.2.1 is not an address of this machine"));
    const auto port = taken.local_endpoint();
    taken.close();
    EXPECT_FALSE(reasonAgainst(port));
}

TEST(FleetAddresses, OfTrapsHaveAPort) {
    EXPECT_EQ("127.0.0.1:1162", textOf(parseEndpoint("127.0.0.1:1162")));
    for (const char *text : {"", ":", "127.0.0.1", "127.0.0.1:", "127.0.0.1:0", "127.0.0.1:65536", "127.0.0.1:x",
                             ":162", "127.0.0.1:-1", "host:162", "127.0.0.1:162 "}) {
        EXPECT_THROW(parseEndpoint(text), std::invalid_argument) << text;
    }
}

} // namespace
