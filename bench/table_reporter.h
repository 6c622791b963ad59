// SPDX-License-Identifier: Apache-2.0
/** @file What the benchmark library measures, as lines of the table. */
#ifndef QUARNSNMP_BENCH_TABLE_REPORTER_H
#define QUARNSNMP_BENCH_TABLE_REPORTER_H

#include <cstdint>
#include <map>
#include <vector>

#include <benchmark/benchmark.h>

namespace bench {

/** Counters of a benchmark that measures each iteration by itself, in nanoseconds. */
inline constexpr const char *kMedianCounter = "median_ns";
inline constexpr const char *kLateCounter = "p99_ns";

/**
 * Writes a line for each benchmark, with the median of its repetitions: of the time of an iteration, or of the counters
 * above where a benchmark has them.
 */
class TableReporter : public benchmark::BenchmarkReporter {
public:
    bool ReportContext(const Context &context) override;
    void ReportRuns(const std::vector<Run> &runs) override;
    void Finalize() override;

private:
    std::map<std::int64_t, std::vector<Run>> benchmarks; ///< in the order in which they were registered
};

/** Runs what is registered: with a table as in bench/run when the argument --table was given, else as usual. */
void runBenchmarks(bool asTable, const char *family);

/** Takes --table out of a program's arguments. @return whether it was there */
bool takeTableArgument(int &argc, char **argv);

} // namespace bench

#endif
