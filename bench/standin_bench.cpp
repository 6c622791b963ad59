// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Benchmarks of the stand-in library's calls to a simulated camera. Each benchmark times every iteration and reports
 * the median and the 99th percentile, because the mean of an operation that waits for another process depends mostly on
 * the machine.
 */
#include <array>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include <benchmark/benchmark.h>

#include "camera.h"
#include "statistics.h"
#include "table_reporter.h"
#include "zorva-core.h"

namespace {

constexpr benchmark::IterationCount kCalls = 50000;
constexpr benchmark::IterationCount kOpenings = 2000;
// Long enough for the camera to stop polling and sleep.
constexpr std::chrono::microseconds kPause{1000};
// A line takes less time than two reads of the clock.
constexpr int kLinesPerIteration = 1000;

void expectSuccess(zorva_core_status status) {
    if (status != 0) {
        throw std::runtime_error(zorva::core::statusToString(status));
    }
}

void setEnvironment(const char *name, const std::string &value) {
    if (::setenv(name, value.c_str(), 1) != 0) {
        throw std::runtime_error("the environment cannot be changed");
    }
}

/**
 * Times `action` once per iteration.
 * @param times  number of measured operations in one `action`
 * @param pause  time between iterations, not included in the result
 */
template <typename Action>
void measure(benchmark::State &state, const Action &action, int times = 1, std::chrono::microseconds pause = {}) {
    using Clock = std::chrono::steady_clock;
    std::vector<double> nanoseconds;
    nanoseconds.reserve(static_cast<std::size_t>(state.max_iterations));
    for ([[maybe_unused]] const auto iteration : state) {
        const Clock::time_point start = Clock::now();
        action();
        const std::chrono::duration<double> duration = Clock::now() - start;
        state.SetIterationTime(duration.count());
        nanoseconds.push_back(duration.count() * 1e9 / times);
        if (pause.count() > 0) {
            std::this_thread::sleep_for(pause);
        }
    }
    state.counters[bench::kMedianCounter] = bench::quantile(nanoseconds, 0.5);
    state.counters[bench::kPercentile99Counter] = bench::quantile(nanoseconds, 0.99);
}

/** Use of the library as by the module. */
class Session {
public:
    /** @param directory  of the camera's sockets @param logLevel  number or word @param logFile  path of the log */
    Session(const std::string &directory, const std::string &logLevel, const std::string &logFile) {
        setEnvironment("QUARNSNMP_CAMERA_DIR", directory);
        setEnvironment("QUARNSNMP_LOG_LEVEL", logLevel);
        setEnvironment("QUARNSNMP_LOG_FILE", logFile);
        expectSuccess(zorva_core_init());
        expectSuccess(zorva_core_logging_init("SNMP", &log));
        expectSuccess(zorva_core_ipc_initiator_init(log, nullptr, &ipc));
    }
    ~Session() {
        zorva_core_deinit();
    }
    Session(const Session &) = delete;
    Session &operator=(const Session &) = delete;

    void *open(zorva_core_status (*initiatorInit)(void *, void *, void **, int32_t, void *)) const {
        void *cookie = nullptr;
        expectSuccess(initiatorInit(ipc, log, &cookie, 0, nullptr));
        return cookie;
    }

    /** Returns the first target of a service. */
    static std::string target(const char *service) {
        std::vector<std::string> ids;
        if (!zorva::core::getTargetIds(service, ids) || ids.empty()) {
            throw std::runtime_error(std::string("the camera has no ") + service);
        }
        return ids.front();
    }

    void *log = nullptr;
    void *ipc = nullptr;
};

void getTemperature(benchmark::State &state, const Session &session, std::chrono::microseconds pause) {
    void *const cookie = session.open(&zorva_api_temperature_initiator_init);
    const std::string target = Session::target("temperature");
    const auto call = [&] {
        int32_t temperature = 0;
        expectSuccess(zorva_api_temperature_get_temperature_send(cookie, target.c_str(), &temperature));
    };
    measure(state, call, 1, pause);
    expectSuccess(zorva_api_temperature_initiator_deinit(cookie));
}

void getOneValue(benchmark::State &state, const Session &session) {
    getTemperature(state, session, std::chrono::microseconds(0));
}

void getOneValueAfterAPause(benchmark::State &state, const Session &session) {
    getTemperature(state, session, kPause);
}

void getNineValues(benchmark::State &state, const Session &session) {
    void *const cookie = session.open(&zorva_api_positioning_initiator_init);
    const std::string target = Session::target("positioning");
    measure(state, [&] {
        uint8_t panEnable = 0;
        uint8_t tiltEnable = 0;
        uint8_t zoomEnable = 0;
        int32_t panMin = 0;
        int32_t panMax = 0;
        int32_t tiltMin = 0;
        int32_t tiltMax = 0;
        int32_t zoomMin = 0;
        int32_t zoomMax = 0;
        expectSuccess(zorva_api_positioning_get_soft_position_limits_send(cookie, target.c_str(), &panEnable, &panMin,
                                                                          &panMax, &tiltEnable, &tiltMin, &tiltMax,
                                                                          &zoomEnable, &zoomMin, &zoomMax));
    });
    expectSuccess(zorva_api_positioning_initiator_deinit(cookie));
}

void setOneValue(benchmark::State &state, const Session &session) {
    void *const cookie = session.open(&zorva_api_relay_initiator_init);
    const std::string target = Session::target("relay");
    // A relay must be configured before it can be switched.
    expectSuccess(zorva_api_relay_set_configuration_send(cookie, target.c_str(), 1, 0, 1, 0, 1, 1, 1));
    uint8_t wanted = 0;
    measure(state, [&] {
        wanted ^= 1U;
        expectSuccess(zorva_api_relay_set_state_send(cookie, target.c_str(), wanted));
    });
    expectSuccess(zorva_api_relay_initiator_deinit(cookie));
}

void getTargetIds(benchmark::State &state, const Session & /*session*/) {
    measure(state, [] { benchmark::DoNotOptimize(Session::target("alarm")); });
}

void openAndCloseService(benchmark::State &state, const Session &session) {
    measure(state, [&session] {
        expectSuccess(zorva_api_temperature_initiator_deinit(session.open(&zorva_api_temperature_initiator_init)));
    });
}

void logLine(benchmark::State &state, const Session &session) {
    const auto write = [&session] {
        for (int i = 0; i < kLinesPerIteration; ++i) {
            zorva_core_logging_log(session.log, 7, "registerScalar: %s is %d", "zoomPosition", i);
        }
    };
    measure(state, write, kLinesPerIteration);
}

struct Measurement {
    const char *name;
    void (*function)(benchmark::State &, const Session &);
    benchmark::IterationCount iterations;
    const char *logLevel;
};

constexpr std::array<Measurement, 8> kMeasurements = {{
    {"call that gets one value", getOneValue, kCalls, "info"},
    {"call that gets one value after a pause", getOneValueAfterAPause, kOpenings, "info"},
    {"call that gets nine values", getNineValues, kCalls, "info"},
    {"call that sets one value", setOneValue, kCalls, "info"},
    {"getTargetIds", getTargetIds, kCalls, "info"},
    {"initiator_init and initiator_deinit", openAndCloseService, kOpenings, "info"},
    {"debug line that is dropped", logLine, kOpenings, "info"},
    {"debug line that is written", logLine, kOpenings / 10, "debug"},
}};

} // namespace

int main(int argc, char **argv) {
    if (!bench::initialise(argc, argv)) {
        return 2;
    }
    bool hasFailed = false;
    try {
        const support::Camera camera;
        for (const Measurement &measurement : kMeasurements) {
            const auto run = [&camera, &hasFailed, measurement](benchmark::State &state) {
                try {
                    const Session session(camera.directory(), measurement.logLevel, camera.directory() + "/log");
                    measurement.function(state, session);
                } catch (const std::exception &error) {
                    state.SkipWithError(error.what());
                    hasFailed = true;
                }
            };
            benchmark::RegisterBenchmark(measurement.name, run)->Iterations(measurement.iterations)->UseManualTime();
        }
        bench::runBenchmarks("Calls of the stand-in core library to a simulated camera");
    } catch (const std::exception &error) {
        std::fprintf(stderr, "bench-standin: %s\n", error.what());
        hasFailed = true;
    }
    return hasFailed ? 1 : 0;
}
