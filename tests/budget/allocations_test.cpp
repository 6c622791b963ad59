// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Counts allocations: the conversions run with every move, on the agent's thread, and need no memory.
 */
#include <cstdlib>
#include <functional>

#include <gtest/gtest.h>

#include "position_command.h"
#include "positioning_state.h"
#include "snmp_utils.h"
#include "unit_conversion.h"

namespace {

thread_local std::size_t tAllocations = 0;

} // namespace

// In place of the C library's, which `operator new` of every library in the process comes down to.
extern "C" {
void *__libc_malloc(std::size_t size);
void *__libc_calloc(std::size_t count, std::size_t size);
void *__libc_realloc(void *memory, std::size_t size);

void *malloc(std::size_t size) {
    ++tAllocations;
    return __libc_malloc(size);
}

void *calloc(std::size_t count, std::size_t size) {
    ++tAllocations;
    return __libc_calloc(count, size);
}

void *realloc(void *memory, std::size_t size) {
    ++tAllocations;
    return __libc_realloc(memory, size);
}
}

namespace {

std::size_t allocationsOf(const std::function<void()> &action) {
    const std::size_t before = tAllocations;
    action();
    return tAllocations - before;
}

volatile int gSink = 0; // keeps what is not used from being left out

struct Conversion {
    const char *name;
    int (*run)(int value);
};

using namespace positioning;

// clang-format off
const Conversion kConversions[] = {
    {"NtcipPan",    convertNTCIPToZorvaPan},
    {"NtcipTilt",   convertNTCIPToZorvaTilt},
    {"NtcipZoom",   convertNTCIPToZorvaZoom},
    {"ServicePan",  convertZorvaToNTCIPPan},
    {"ServiceTilt", convertZorvaToNTCIPTilt},
    {"ServiceZoom", convertZorvaToNTCIPZoom},
    {"Speed",       [](int value) { return speedNTCIPToZorva(kPanAxis, static_cast<signed char>(value), 80000); }},
    {"Fraction",    [](int value) { return static_cast<int>(speedPercentage(kTiltAxis, static_cast<signed char>(value))); }},
    {"Scale",       [](int value) { return ScaleValues(value, 0, 65535, -90000, 90000); }},
    {"Octets",      [](int value) { return int{DecodePositionCommand({1, 2, static_cast<std::uint8_t>(value), 4}).position}; }},
};
// clang-format on

class AllocationsTest : public testing::TestWithParam<Conversion> {
protected:
    AllocationsTest() {
        gApiCookie = this;
        gPositionings = {"positioning/1"};
    }
    ~AllocationsTest() override {
        gApiCookie = nullptr;
        gPositionings.clear();
    }
};

TEST(AllocationsHookTest, CountsWhatCodeAndLibrariesAllocate) {
    EXPECT_EQ(allocationsOf([] { ::operator delete(::operator new(16)); }), 1U);
    EXPECT_EQ(allocationsOf([] { gSink = static_cast<int>(std::string(100, 'x').size()); }), 1U);
    EXPECT_EQ(allocationsOf([] {}), 0U);
}

TEST_P(AllocationsTest, ConversionNeedsNoMemory) {
    const Conversion &conversion = GetParam();
    EXPECT_EQ(allocationsOf([&conversion] {
                  for (const int value : {-128, -1, 0, 1, 127, 9001, 35999, 65535}) {
                      gSink = conversion.run(value);
                  }
              }),
              0U);
}

INSTANTIATE_TEST_SUITE_P(Conversions, AllocationsTest, testing::ValuesIn(kConversions),
                         [](const testing::TestParamInfo<Conversion> &conversion) { return conversion.param.name; });

} // namespace
