// SPDX-License-Identifier: Apache-2.0
#include "positioning_test.h"

#include "position_objects.h"
#include "range_objects.h"
#include "timeout_objects.h"

using scripted::Value;

namespace {

/** Values of the axes in the order of the service's arguments, each after its flag. */
std::string flagged(int axis, const std::string &value) {
    std::string text;
    for (const int each : {kPanAxis, kTiltAxis, kZoomAxis}) {
        text += each == axis ? "1, " + value : "0, " + std::string(value.find(',') == std::string::npos ? "0" : "0, 0");
        text += ", ";
    }
    return text;
}

std::vector<Value> values(std::initializer_list<Limits> axes, bool withFlags) {
    std::vector<Value> result;
    for (const Limits &axis : axes) {
        if (withFlags) {
            result.emplace_back(std::int64_t{axis.enabled ? 1 : 0});
        }
        result.emplace_back(std::int64_t{axis.min});
        result.emplace_back(std::int64_t{axis.max});
    }
    return result;
}

} // namespace

void forgetPositioning() {
    positioning::gApiCookie = nullptr;
    positioning::gPositionings.clear();
    positioning::gLastPanTimeout = positioning::gLastTiltTimeout = positioning::gLastZoomTimeout = 0;
    positioning::gNewPanTimeout = positioning::gNewTiltTimeout = positioning::gNewZoomTimeout = 0;
    positioning::ResetPositionObjects();
    positioning::ResetRangeObjects();
}

namespace calls {

std::string setSoftVelocities(int panMax, int tiltMax) {
    return of(service::kSetSoftVelocities,
              "1, 100, " + std::to_string(panMax) + ", 1, 50, " + std::to_string(tiltMax) + ", 1, 2, 20");
}

std::string setTimeout(std::uint32_t milliseconds) {
    return of(service::kSetTimeout, std::to_string(milliseconds));
}

std::string stop(int axis) {
    return of(service::kSetVelocity, flagged(axis, "0") + "500");
}

std::string move(int axis, int position, const std::string &fraction) {
    return of(service::kMove, flagged(axis, std::to_string(position) + ", " + fraction) + "500");
}

std::string run(int axis, int velocity, std::uint32_t timeout) {
    return of(service::kSetVelocityWithTimeout,
              flagged(axis, std::to_string(velocity)) + "500, " + std::to_string(timeout));
}

} // namespace calls

PositioningTest::PositioningTest() {
    forgetPositioning();
}

PositioningTest::~PositioningTest() {
    forgetPositioning();
}

void PositioningTest::SetUp() {
    openCore();
    core().targets("positioning", {"positioning/1", "positioning/2"});
    core().answer(service::kGetTimeout, {std::int64_t{5000}});
    position(90000, -10000, 100);
    softPositions({1000, 350000}, {-80000, 45000}, {10, 300});
    cameraPositions({-170000, 170000}, {-90000, 30000}, {12, 360});
    softVelocities(kOtherCeilings);
    // The ranges of powers of two give fractions that decimal texts can hold.
    cameraVelocities({1024, 132096}, {512, 66048}, {4, 36});
    digitalZoom(false);
    maxZoom(200, 120, 2400);
}

void PositioningTest::connect() {
    ASSERT_TRUE(InitPositioning(GetIpcCookie()));
    ASSERT_NE(positioning::gApiCookie, nullptr);
    core().clearRecord();
}

void PositioningTest::startWithoutService() {
    core().fail(service::kInit, kRefused);
    ASSERT_TRUE(InitPositioning(GetIpcCookie()));
    ASSERT_EQ(positioning::gApiCookie, nullptr);
    core().clearRecord();
}

void PositioningTest::position(int pan, int tilt, int zoom) {
    core().answer(service::kGetPosition, {std::int64_t{pan}, std::int64_t{tilt}, std::int64_t{zoom}});
}

void PositioningTest::softPositions(const Limits &pan, const Limits &tilt, const Limits &zoom) {
    core().answer(service::kGetSoftPositions, values({pan, tilt, zoom}, true));
}

void PositioningTest::softZoom(const Limits &zoom) {
    softPositions({1000, 350000}, {-80000, 45000}, zoom);
}

void PositioningTest::softVelocities(const Ceilings &ceilings) {
    softVelocities({100, ceilings.pan}, {50, ceilings.tilt}, {2, 20});
}

void PositioningTest::softVelocities(const Limits &pan, const Limits &tilt, const Limits &zoom) {
    core().answer(service::kGetSoftVelocities, values({pan, tilt, zoom}, true));
}

void PositioningTest::cameraVelocities(const Limits &pan, const Limits &tilt, const Limits &zoom) {
    core().answer(service::kGetCameraVelocities, values({pan, tilt, zoom}, false));
}

void PositioningTest::cameraPositions(const Limits &pan, const Limits &tilt, const Limits &zoom) {
    core().answer(service::kGetCameraPositions, values({pan, tilt, zoom}, false));
}

void PositioningTest::digitalZoom(bool enabled) {
    core().answer(service::kGetDigitalZoom, {std::int64_t{enabled ? 1 : 0}});
}

void PositioningTest::maxZoom(int optical, int digital, int combined) {
    core().answer(service::kGetMaxZoom, {std::int64_t{optical}, std::int64_t{digital}, std::int64_t{combined}});
}

void PositioningTest::use(std::string_view instance) {
    ASSERT_THAT(get(instance), isAccepted());
    core().clearRecord();
}
