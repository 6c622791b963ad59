// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * A request and a poll that read the same value at the same time.
 */
#include <atomic>
#include <fstream>
#include <thread>

#include <sys/syscall.h>
#include <unistd.h>

#include "eventually.h"
#include "handler_requests.h"

using support::eventually;

namespace {

struct Watched : Row {
    std::string service;
    bool (*init)(void *ipcCookie);
    void (*deinit)();
    void (*poll)();
    const char *instance;
    const char *read;
    bool oneAtATime;
};

const Watched kWatched[] = {
    row<Watched>("power", "power", InitPower, DeinitPower, PollPower, oids::power,
                 "zorva_api_power_get_power_state_send", true),
    row<Watched>("voltage", "power", InitPower, DeinitPower, PollPower, oids::voltage,
                 "zorva_api_power_get_voltage_state_send", false),
    row<Watched>("temperature", "temperature", InitTemperature, DeinitTemperature, PollTemperature, oids::temperature,
                 "zorva_api_temperature_get_temperature_send", true),
};

/** Returns true for a thread of this process that waits in the kernel, as for a lock. */
bool isAsleep(long thread) {
    std::ifstream stat("/proc/self/task/" + std::to_string(thread) + "/stat");
    std::string text;
    std::getline(stat, text);
    const std::size_t state = text.rfind(") ");
    return state != std::string::npos && text.compare(state + 2, 1, "S") == 0;
}

class HealthThreadsTest : public ModuleTest, public testing::WithParamInterface<Watched> {
protected:
    void SetUp() override {
        openCore();
        core().targets(GetParam().service, {GetParam().service + "/1"});
        for (const Watched &each : kWatched) {
            core().answer(each.read, {std::int64_t{1}});
        }
        ASSERT_TRUE(GetParam().init(GetIpcCookie()));
    }
    void TearDown() override {
        GetParam().deinit();
    }
};

INSTANTIATE_TEST_SUITE_P(Values, HealthThreadsTest, testing::ValuesIn(kWatched), nameOf<Watched>);

} // namespace

// The service takes calls for the voltage at any time, the others one at a time.
TEST_P(HealthThreadsTest, APollDuringARequestWaitsWhereTheServiceNeedsIt) {
    std::atomic<int> reads{0};
    std::atomic<bool> met{false};
    std::atomic<long> pollThread{0};
    std::thread polling;
    core().during(GetParam().read, [&] {
        if (++reads == 2) {
            met = true;
            return;
        }
        polling = std::thread([&pollThread] {
            pollThread = syscall(SYS_gettid);
            GetParam().poll();
        });
        EXPECT_TRUE(
            eventually([&] { return met || (GetParam().oneAtATime && pollThread != 0 && isAsleep(pollThread)); }));
        EXPECT_EQ(met, !GetParam().oneAtATime);
    });
    EXPECT_THAT(get(GetParam().instance), isAccepted());
    polling.join();
    EXPECT_EQ(reads, 2) << "the poll reads when it is its turn";
}
