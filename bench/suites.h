// SPDX-License-Identifier: Apache-2.0
/** @file Suites of measurements with real agents. Each prints its rows of the table. */
#ifndef QUARNSNMP_BENCH_SUITES_H
#define QUARNSNMP_BENCH_SUITES_H

#include <chrono>
#include <string>

namespace bench {

/** Extent of the measurements. */
struct Effort {
    int rounds = 5;                       ///< the median of the rounds is the result
    std::chrono::milliseconds slice{400}; ///< duration of a timed measurement in one round
    int loads = 101;                      ///< number of times that the module is loaded and unloaded
    std::string data = "throughput.tsv";  ///< file for the data of the chart
};

/** Measures requests per second and response times, relative to an object of the agent itself. */
void measureRates(const Effort &effort);

/** Measures the cost of a request for different numbers of rows, varbinds and agents. */
void measureGrowth(const Effort &effort);

/** Measures the cost of an idle module: size, memory, time to load and to unload. */
void measureFootprint(const Effort &effort);

/** Measures the cost of a trap. */
void measureTraps(const Effort &effort);

/** Measures requests per second with a slow camera, and writes the data of the chart. */
void measureSlowCamera(const Effort &effort);

} // namespace bench

#endif
