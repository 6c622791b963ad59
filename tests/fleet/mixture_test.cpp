// SPDX-License-Identifier: Apache-2.0
#include <algorithm>
#include <stdexcept>

#include <gmock/gmock.h>

#include "mixture.h"

using namespace fleet;
using testing::ElementsAre;

namespace {

TEST(FleetMixture, ReadsShares) {
    const struct {
        const char *text;
        const char *camera;
        unsigned weight;
    } cases[] = {{"dome", "dome", 1},
                 {"dome:8", "dome", 8},
                 {"dome:1000", "dome", 1000},
                 {"./own.json:3", "./own.json", 3},
                 {"./a:b.json:2", "./a:b.json", 2}};
    for (const auto &each : cases) {
        const Share share = parseShare(each.text);
        EXPECT_EQ(each.camera, share.camera);
        EXPECT_EQ(each.weight, share.weight);
    }
    for (const char *text :
         {"", ":", ":1", "dome:", "dome:0", "dome:1001", "dome:-1", "dome:1.5", "dome:x", "dome: 1"}) {
        EXPECT_THROW(parseShare(text), std::invalid_argument) << text;
    }
}

TEST(FleetMixture, SpreadsTheKinds) {
    EXPECT_THAT(mixtureOf({{"a", 1}}, 3), ElementsAre(0, 0, 0));
    EXPECT_THAT(mixtureOf({{"a", 1}, {"b", 1}}, 5), ElementsAre(0, 1, 0, 1, 0));
    EXPECT_THAT(mixtureOf({{"a", 2}, {"b", 1}}, 6), ElementsAre(0, 1, 0, 0, 1, 0));
}

TEST(FleetMixture, IsExactInEachStretch) {
    const std::vector<Share> shares = {{"dome", 8}, {"stepper", 1}, {"minimal", 1}};
    constexpr std::size_t kTotal = 10;
    const std::vector<std::size_t> kinds = mixtureOf(shares, 5 * kTotal);
    for (std::size_t start = 0; start + kTotal <= kinds.size(); start += kTotal) {
        const auto begin = kinds.begin() + static_cast<std::ptrdiff_t>(start);
        for (std::size_t kind = 0; kind < shares.size(); ++kind) {
            EXPECT_EQ(shares[kind].weight, std::count(begin, begin + kTotal, kind)) << start;
        }
    }
}

} // namespace
