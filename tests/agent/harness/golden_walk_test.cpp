// SPDX-License-Identifier: Apache-2.0
// The comparison with recorded walks: it must see every way in which a walk can differ.
#include <utility>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "agent.h"
#include "golden_walk.h"
#include "log_file.h"
#include "well_known_objects.h"

namespace harness {
namespace {

using testing::HasSubstr;

/** Puts lines of a walk into a file and compares the agent's system group with them. */
testing::AssertionResult matches(Manager &manager, const TemporaryDirectory &directory,
                                 const std::vector<std::string> &lines) {
    std::string content;
    for (const std::string &line : lines) {
        content += line + "\n";
    }
    return matchesWalkFile(manager, kSystem, directory.write("test.walk", content), false);
}

class GoldenWalk : public testing::Test {
protected:
    GoldenWalk() : manager(agent.peer(), "public") {
        matchesWalkFile(manager, kSystem, directory.file("new.walk"), true);
        recorded = LogFile(directory.file("new.walk")).lines();
        for (std::string &line : recorded) {
            if (line.find(" timeTicks ") != std::string::npos) {
                line = line.substr(0, line.rfind(' ')) + " *";
            }
        }
    }

    const TemporaryDirectory directory;
    Agent agent;
    Manager manager;
    std::vector<std::string> recorded;
};

TEST_F(GoldenWalk, AcceptsWhatItRecorded) {
    ASSERT_GT(recorded.size(), 20U);
    EXPECT_THAT(recorded, testing::Contains(kUpTime + std::string(" timeTicks *")));
    EXPECT_TRUE(matches(manager, directory, recorded));
}

TEST_F(GoldenWalk, KeepsTheStarsWhenItRecordsAnew) {
    directory.write("again.walk", kUpTime + std::string(" timeTicks *\n"));
    matchesWalkFile(manager, kSystem, directory.file("again.walk"), true);
    EXPECT_THAT(
        LogFile(directory.file("again.walk")).lines(),
        testing::AllOf(testing::SizeIs(recorded.size()), testing::Contains(kUpTime + std::string(" timeTicks *"))));
}

TEST_F(GoldenWalk, NamesAnotherValue) {
    const std::string original = recorded[0];
    recorded[0] = kDescription + std::string(" octets \"another\"");
    const testing::AssertionResult result = matches(manager, directory, recorded);
    EXPECT_FALSE(result);
    EXPECT_THAT(result.message(), HasSubstr("- " + recorded[0] + "\n+ " + original));
}

TEST_F(GoldenWalk, NamesAnotherType) {
    recorded[0] = kDescription + std::string(" integer *");
    EXPECT_FALSE(matches(manager, directory, recorded));
}

TEST_F(GoldenWalk, NamesMissingAndAdditionalLines) {
    const std::string dropped = recorded[5];
    recorded[5] = recorded[4].substr(0, recorded[4].find(' ')) + ".99 integer 1";
    const testing::AssertionResult result = matches(manager, directory, recorded);
    EXPECT_FALSE(result);
    EXPECT_THAT(result.message(), HasSubstr("\n- " + recorded[5]));
    EXPECT_THAT(result.message(), HasSubstr("\n+ " + dropped.substr(0, dropped.find(' '))));
}

TEST_F(GoldenWalk, RefusesLinesInAnotherOrder) {
    std::swap(recorded[2], recorded[3]);
    EXPECT_FALSE(matches(manager, directory, recorded));
}

TEST_F(GoldenWalk, RefusesAnEmptyWalk) {
    EXPECT_FALSE(matchesWalkFile(manager, ".1.3.6.1.4.1.99999", directory.write("empty.walk", ""), false));
}

} // namespace
} // namespace harness
