// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Positions of all commands over the whole range of the 16 bits, against a model of their arithmetic.
 */
#include <cmath>
#include <limits>

#include "lens_test.h"

namespace lens_tests {

namespace {

constexpr std::int64_t kLowest = std::numeric_limits<std::int32_t>::min();
constexpr std::int64_t kHighest = std::numeric_limits<std::int32_t>::max();
constexpr std::int64_t kTop = std::numeric_limits<std::uint32_t>::max();

std::int32_t wrapped(std::int64_t value) {
    return static_cast<std::int32_t>(static_cast<std::uint32_t>(value));
}

/** A 16-bit position within a span: single precision, halves away from zero, ends of 32 bits. */
std::int64_t spread(unsigned int position, std::int32_t from, std::int32_t to) {
    const double width = static_cast<double>(to) - from;
    const auto narrow = static_cast<float>(position * width / 65535.0 + from);
    const double whole = std::floor(std::fabs(static_cast<double>(narrow)) + 0.5);
    const double rounded = narrow < 0 ? -whole : whole;
    if (rounded <= static_cast<double>(kLowest)) {
        return kLowest;
    }
    return rounded >= static_cast<double>(kHighest) ? kHighest : static_cast<std::int64_t>(rounded);
}

struct Delta {
    std::int64_t step;
    std::int64_t target;
};

/** A delta of focus and zoom: signed throughout. */
Delta signedDelta(const Lens &lens, bool down, unsigned int position) {
    const std::int64_t step = spread(position, 0, wrapped(lens.max - lens.min));
    const std::int64_t target = wrapped(down ? lens.current - step : lens.current + step);
    if (target > lens.max) {
        return {step, lens.max};
    }
    return {step, target < lens.min ? lens.min : target};
}

/** A delta of the iris: unsigned, with the lower limit held against the octets of the command. */
Delta irisDelta(const Lens &lens, bool down, unsigned int position) {
    const std::int64_t step = spread(position, 0, wrapped(lens.max - lens.min));
    const auto target = static_cast<std::uint32_t>(down ? lens.current - step : lens.current + step);
    const std::int64_t stored = 1 + (down ? 0xFF00 : 0x0100) + (static_cast<std::int64_t>(position) << 16);
    if (target > lens.max) {
        return {step, lens.max};
    }
    return {step, stored < lens.min ? lens.min : std::int64_t{target}};
}

std::vector<Lens> limitSets(bool isUnsigned) {
    std::vector<Lens> sets{{100, 0, 1000}, {500, 200, 1000}, {0, 0, 0},      {7, 500, 500},          {600, 1000, 200},
                           {0, 0, 65535},  {9, 1, 2},        {400, 1000, 0}, {kHighest, 0, kHighest}};
    const std::vector<Lens> below{
        {-500, -1000, 1000}, {kLowest, kLowest, kHighest}, {kHighest, kLowest, kHighest}, {3, kHighest, kLowest},
        {-7, -9, -8},        {kLowest, kLowest, 0}};
    const std::vector<Lens> above{
        {3500000000, 3000000000, kTop}, {2147483700, 5, kTop},    {0, kTop, 5},
        {100, 16777217, 20000000},      {kTop, 4000000000, kTop}, {3000000000, 0, 4000000000}};
    const std::vector<Lens> &more = isUnsigned ? above : below;
    sets.insert(sets.end(), more.begin(), more.end());
    return sets;
}

class LensModelTest : public LensDriveTest {
protected:
    static void expectDelta(const Lens &lens, bool down, unsigned int position) {
        const Drive &drive = GetParam();
        const Delta expected = drive.isUnsigned ? irisDelta(lens, down, position) : signedDelta(lens, down, position);
        commit(command(1, down ? -1 : 1, position));
        ASSERT_THAT(core().calls(), ElementsAre(drive.readPositionCall(), drive.moveCall(expected.target)))
            << position << (down ? " down" : " up");
        ASSERT_THAT(core().logs(6), ElementsAre(drive.deltaLine(lens, expected.step, expected.target)));
    }

    static void expectAbsolute(const Lens &lens, unsigned int position) {
        const Drive &drive = GetParam();
        const std::int64_t expected = spread(position, wrapped(lens.min), wrapped(lens.max));
        commit(command(2, 0, position));
        ASSERT_THAT(core().calls(), ElementsAre(drive.moveCall(expected))) << position;
        ASSERT_THAT(core().logs(6), ElementsAre(drive.absoluteLine(lens, expected)));
    }
};

/** Positions of which a sweep takes in each value of the high octet, and both ends. */
std::vector<unsigned int> sweep() {
    std::vector<unsigned int> positions{1, 2, 32767, 32768, 65533, 65534, 65535};
    for (unsigned int position = 0; position <= 0xFFFF; position += 251) {
        positions.push_back(position);
    }
    return positions;
}

INSTANTIATE_TEST_SUITE_P(Drives, LensModelTest, testing::ValuesIn(allDrives()), nameOf<Drive>);

} // namespace

TEST_P(LensModelTest, MovesWithinAnyLimits) {
    for (const Lens &lens : limitSets(GetParam().isUnsigned)) {
        SCOPED_TRACE(GetParam().rangeLine(lens));
        restart(lens);
        for (const unsigned int position : sweep()) {
            ASSERT_NO_FATAL_FAILURE(expectAbsolute(lens, position));
            ASSERT_NO_FATAL_FAILURE(expectDelta(lens, false, position));
            ASSERT_NO_FATAL_FAILURE(expectDelta(lens, true, position));
        }
    }
}

} // namespace lens_tests
