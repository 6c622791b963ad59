// SPDX-License-Identifier: Apache-2.0
#include <ostream>
#include <string>

#include "positioning_call_texts.h"
#include "positioning_test.h"
#include "unit_conversion.h"

namespace {

/** A call that fails, in a conversion: what the conversion gives then, and what it called and logged. */
struct FailedConversion {
    const char *name;
    const char *function;
    float (*convert)();
    float result;
    Calls calls;
    std::vector<LogLine> lines;
};

void PrintTo(const FailedConversion &each, std::ostream *stream) {
    *stream << each.name;
}

LogLine softLimitsOff() {
    return logs::notice("convertNTCIPToZorvaZoom: get_soft_limits (min,max) pan(F)(1000,350000), "
                        "tilt(T)(-80000,45000), zoom(F)(10,300)");
}

float toZoom() {
    return static_cast<float>(positioning::convertNTCIPToZorvaZoom(65535));
}

template <int axis>
float velocity() {
    return static_cast<float>(
        positioning::speedNTCIPToZorva(static_cast<Axis>(axis), static_cast<signed char>(127), 160000));
}

template <int axis>
float fraction() {
    return positioning::speedPercentage(static_cast<Axis>(axis), 127);
}

FailedConversion refusedLimits(const char *name, float (*convert)()) {
    return {name, service::kGetSoftVelocities,  convert,
            0,    {calls::getSoftVelocities()}, {logs::failed(texts::kGetSoftVelocities)}};
}

FailedConversion refusedCeilings(const char *name, float (*convert)(), float result) {
    return {name,
            service::kSetSoftVelocities,
            convert,
            result,
            {calls::getSoftVelocities(), calls::setSoftVelocities(160000, 80000)},
            {logs::failed(texts::kSetSoftVelocities)}};
}

FailedConversion refusedRanges(const char *name, float (*convert)()) {
    return {name, service::kGetCameraVelocities,  convert,
            0,    {calls::getCameraVelocities()}, {logs::failed(texts::kGetCameraVelocities)}};
}

std::vector<FailedConversion> failedConversions() {
    return {
        {"ZoomLimits",
         service::kGetSoftPositions,
         toZoom,
         0,
         {calls::getSoftPositions()},
         {logs::failed(texts::kGetSoftPositions)}},
        {"ZoomLimitsBack",
         service::kGetSoftPositions,
         [] { return static_cast<float>(positioning::convertZorvaToNTCIPZoom(300)); },
         0,
         {calls::getSoftPositions()},
         {logs::failed(texts::kGetSoftPositions)}},
        {"DigitalZoom",
         service::kGetDigitalZoom,
         toZoom,
         0,
         {calls::getSoftPositions(), calls::getDigitalZoom()},
         {softLimitsOff(), logs::failed(texts::kGetDigitalZoom)}},
        {"MaxZoom",
         service::kGetMaxZoom,
         toZoom,
         0,
         {calls::getSoftPositions(), calls::getDigitalZoom(), calls::getMaxZoom()},
         {softLimitsOff(), logs::failed(texts::kGetMaxZoom)}},
        refusedLimits("PanVelocity", velocity<kPanAxis>),
        refusedLimits("TiltVelocity", velocity<kTiltAxis>),
        refusedLimits("ZoomVelocity", velocity<kZoomAxis>),
        refusedLimits("NoVelocity", velocity<kNoAxis>),
        refusedCeilings("PanCeiling", velocity<kPanAxis>, 160000),
        refusedCeilings("TiltCeiling", velocity<kTiltAxis>, 80000),
        refusedCeilings("ZoomCeiling", velocity<kZoomAxis>, 20),
        refusedRanges("PanFraction", fraction<kPanAxis>),
        refusedRanges("TiltFraction", fraction<kTiltAxis>),
        refusedRanges("ZoomFraction", fraction<kZoomAxis>),
        refusedRanges("NoFraction", fraction<kNoAxis>),
    };
}

class PositioningFailedConversionTest : public PositioningTest, public testing::WithParamInterface<FailedConversion> {
protected:
    void SetUp() override {
        PositioningTest::SetUp();
        connect();
        softPositions({1000, 350000, false}, {-80000, 45000}, {10, 300, false});
    }
};

INSTANTIATE_TEST_SUITE_P(Calls, PositioningFailedConversionTest, testing::ValuesIn(failedConversions()),
                         [](const auto &each) { return std::string(each.param.name); });

} // namespace

TEST_P(PositioningFailedConversionTest, IsLoggedAndHasItsFallback) {
    core().fail(GetParam().function, kRefused);
    EXPECT_EQ(GetParam().convert(), GetParam().result);
    EXPECT_EQ(core().calls(), GetParam().calls);
    EXPECT_EQ(core().logs(), GetParam().lines);
}
