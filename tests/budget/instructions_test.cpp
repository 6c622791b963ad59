// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include "callgrind_profile.h"
#include "subjects.h"

namespace {

using budget::Instructions;
using budget::Subject;

// A compiler of another patch level counts a little differently.
constexpr std::uint64_t kSlackPercent = 10;

const std::map<std::string, Instructions> &counted() {
    static const std::map<std::string, Instructions> instructions = budget::countInstructions();
    return instructions;
}

class InstructionsTest : public testing::TestWithParam<Subject> {};

TEST_P(InstructionsTest, RequestKeepsItsBudget) {
    const Subject &subject = GetParam();
    const auto found = counted().find(std::string(subject.name));
    ASSERT_NE(found, counted().end()) << "there is no profile of it";
    const Instructions &instructions = found->second;
    EXPECT_GT(instructions.own, 0U);
    if (subject.limit == budget::kGet) {
        // It answers, which is the work of the agent's library.
        EXPECT_LT(instructions.own, instructions.total);
    }
    EXPECT_LE(instructions.own, subject.limit + subject.limit * kSlackPercent / 100);
    std::printf("%-34s %6lu of %lu instructions\n", subject.name.data(), static_cast<unsigned long>(instructions.own),
                static_cast<unsigned long>(subject.limit));
}

std::string nameOf(const testing::TestParamInfo<Subject> &subject) {
    std::string name;
    for (const char letter : subject.param.name) {
        if (std::isalnum(static_cast<unsigned char>(letter)) != 0) {
            name += letter;
        }
    }
    return name;
}

INSTANTIATE_TEST_SUITE_P(Requests, InstructionsTest, testing::ValuesIn(budget::kSubjects), nameOf);

} // namespace
