// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Benchmarks of pictures of the shipped scene at the default size, in processor time. Each picture is a fifteenth of a
 * second later than the one before, so traffic moves as in a stream.
 */
#include <cstdio>
#include <ctime>
#include <stdexcept>
#include <string>
#include <vector>

#include <benchmark/benchmark.h>

#include "picture.h"
#include "scene_file.h"
#include "statistics.h"
#include "table_reporter.h"

namespace {

constexpr benchmark::IterationCount kPictures = 150;
constexpr double kPeriod = 1.0 / 15.0;

double processorSeconds() {
    timespec time{};
    if (::clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time) != 0) {
        throw std::runtime_error("no processor clock");
    }
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) * 1e-9;
}

struct Measurement {
    const char *name;
    double bearing;
    double tilt;
    double zoom;
    double turning; ///< in degrees per picture
    double blur;    ///< in pixels
    bool compresses;
};

constexpr Measurement kMeasurements[] = {
    {"picture of the intersection, as JPEG", 8.0, -12.0, 1.0, 0.0, 0.0, true},
    {"picture of the intersection, without JPEG", 8.0, -12.0, 1.0, 0.0, 0.0, false},
    {"picture of the horizon, as JPEG", 0.0, 0.0, 1.0, 0.0, 0.0, true},
    {"picture at zoom 30, as JPEG", 8.0, -3.0, 30.0, 0.0, 0.0, true},
    {"picture of the ground below, as JPEG", 0.0, -90.0, 1.0, 0.0, 0.0, true},
    {"picture of a turning camera, as JPEG", 0.0, -8.0, 1.0, 2.4, 0.0, true},
    {"picture slightly out of focus, as JPEG", 8.0, -12.0, 1.0, 0.0, 1.0, true},
    {"picture out of focus, as JPEG", 8.0, -12.0, 1.0, 0.0, 12.0, true},
};

void draw(benchmark::State &state, panel::Picture &picture, const Measurement &measurement) {
    const panel::FrameSettings settings;
    panel::View view;
    view.name = "dome";
    view.bearing = measurement.bearing;
    view.tilt = measurement.tilt;
    view.zoom = measurement.zoom;
    view.defocus = measurement.blur / settings.width;
    std::vector<double> nanoseconds;
    double time = 1790000000.0;
    for ([[maybe_unused]] const auto iteration : state) {
        const panel::PictureTime moment(
            std::chrono::duration_cast<panel::PictureTime::duration>(std::chrono::duration<double>(time)));
        const double start = processorSeconds();
        if (measurement.compresses) {
            benchmark::DoNotOptimize(picture.drawJpeg(view, settings, moment));
        } else {
            benchmark::DoNotOptimize(picture.draw(view, settings, moment));
        }
        const double duration = processorSeconds() - start;
        state.SetIterationTime(duration);
        nanoseconds.push_back(duration * 1e9);
        time += kPeriod;
        view.bearing += measurement.turning;
    }
    state.counters[bench::kMedianCounter] = bench::quantile(nanoseconds, 0.5);
    state.counters[bench::kPercentile99Counter] = bench::quantile(nanoseconds, 0.99);
}

} // namespace

int main(int argc, char **argv) {
    if (!bench::initialise(argc, argv)) {
        return 2;
    }
    try {
        panel::Picture picture(panel::readScene(panel::kUsualScene));
        for (const Measurement &measurement : kMeasurements) {
            const auto run = [&picture, &measurement](benchmark::State &state) { draw(state, picture, measurement); };
            benchmark::RegisterBenchmark(measurement.name, run)->Iterations(kPictures)->UseManualTime();
        }
        bench::runBenchmarks("Processor time of pictures of 1280x720 pixels");
    } catch (const std::exception &error) {
        std::fprintf(stderr, "bench-picture: %s\n", error.what());
        return 1;
    }
    return 0;
}
