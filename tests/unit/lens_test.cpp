// SPDX-License-Identifier: Apache-2.0
#include "lens_test.h"

#include "snmp_utils.h"

namespace lens_tests {

namespace {

/** Number of log lines before each watched call. */
std::vector<std::size_t> gLinesBefore;

} // namespace

std::string line(const LogLine &log) {
    return std::to_string(log.level) + " " + log.text;
}

void LensTest::SetUp() {
    openCore();
    forget();
}

void LensTest::offer(const Drive &drive, const Lens &lens) {
    const std::string service = drive.service;
    core().targets(service, {service + "/1", service + "/2"});
    if (drive.opensExposure) {
        core().targets("exposure", {"exposure/1", "exposure/2"});
    }
    answer(drive, lens);
}

void LensTest::answer(const Drive &drive, const Lens &lens) {
    if (!drive.isStepper) {
        core().answer(drive.function(drive.readRange), {lens.current, lens.min, lens.max});
        return;
    }
    core().answer(drive.function(drive.readRange), {lens.min, lens.max, lens.minSpeed, lens.maxSpeed});
    std::vector<scripted::Value> position{lens.current};
    if (drive.opensExposure) {
        position.emplace_back(std::int64_t{-1});
    }
    core().answer(drive.function(drive.readPosition), position);
}

void LensTest::start(const Drive &drive, const Lens &lens) {
    offer(drive, lens);
    ASSERT_TRUE(drive.init(GetIpcCookie()));
    forget();
}

void LensTest::forget() {
    core().clearRecord();
    gLinesBefore.clear();
}

void LensTest::watch(const std::string &function) {
    core().during(function, [] { gLinesBefore.push_back(core().logs().size()); });
}

Lines LensTest::story() {
    const std::vector<LogLine> logs = core().logs();
    const Lines calls = core().calls();
    EXPECT_EQ(calls.size(), gLinesBefore.size()) << "each function has to be watched";
    Lines result;
    std::size_t call = 0;
    for (std::size_t i = 0; i <= logs.size(); ++i) {
        for (; call < calls.size() && call < gLinesBefore.size() && gLinesBefore[call] == i; ++call) {
            result.push_back(calls[call]);
        }
        if (i < logs.size()) {
            result.push_back(line(logs[i]));
        }
    }
    return result;
}

Answer LensTest::phase(const Object &object, int mode, const std::string &value) {
    forget();
    return DirtyRequest(object.instance(), NewValue::text(value)).runOwnHandler(mode);
}

Answer LensTest::commit(const Object &object, const std::string &value) {
    EXPECT_THAT(phase(object, MODE_SET_ACTION, value), isAccepted());
    return phase(object, MODE_SET_COMMIT, value);
}

LogLine enter(const Object &object) {
    return said(object, 7, "Enter.");
}

LogLine done(const Object &object, int level) {
    return said(object, level, "Done.");
}

LogLine said(const Object &object, int level, const std::string &text) {
    return {level, std::string(object.handler) + ": " + text};
}

void LensDriveTest::SetUp() {
    LensTest::SetUp();
    start(GetParam());
    commit(octets({0, 0, 0, 0}));
    forget();
}

const Object &LensDriveTest::object() {
    return GetParam().position();
}

Answer LensDriveTest::phase(int mode, const std::string &value) {
    return LensTest::phase(object(), mode, value);
}

Answer LensDriveTest::commit(const std::string &value) {
    return LensTest::commit(object(), value);
}

std::string LensDriveTest::committed() {
    return get(object().instance()).octets;
}

std::string LensDriveTest::pending() {
    return phase(MODE_SET_COMMIT, octets({0, 0, 0, 0})).octets;
}

void LensDriveTest::restart(const Lens &lens) {
    GetParam().deinit();
    UnregisterAll();
    start(GetParam(), lens);
}

void LensDriveTest::restartWithoutLimits() {
    core().once(GetParam().function(GetParam().readRange), {kRefused, {}});
    restart();
}

} // namespace lens_tests
