// SPDX-License-Identifier: Apache-2.0
/** @file The families of measurements with real agents. Each writes its lines of the table. */
#ifndef QUARNSNMP_BENCH_FAMILIES_H
#define QUARNSNMP_BENCH_FAMILIES_H

#include <chrono>
#include <string>

namespace bench {

/** How much to measure. */
struct Effort {
    int rounds = 5;                       ///< of which the median counts
    std::chrono::milliseconds slice{400}; ///< for each measurement of a round that goes on for a time
    int loads = 101;                      ///< how often the module is loaded and unloaded
    std::string plot = "throughput.svg";  ///< file of the plot
};

/** Requests in a second, and the time that each takes, against those for an object of the agent's own. */
void measureRates(const Effort &effort);

/** How the cost of a request grows with the rows of a table, the variables of a request and the agents of a machine. */
void measureGrowth(const Effort &effort);

/** What the module costs its agent while nobody asks: size, memory, time to load and to unload. */
void measureFootprint(const Effort &effort);

/** What a trap costs its agent. */
void measureTraps(const Effort &effort);

/** How many requests an agent answers whose camera takes its time, as lines and as a plot. */
void measureSlowCamera(const Effort &effort);

} // namespace bench

#endif
