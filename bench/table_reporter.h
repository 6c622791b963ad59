// SPDX-License-Identifier: Apache-2.0
/** @file Results of the benchmark library as rows of the table. */
#ifndef QUARNSNMP_BENCH_TABLE_REPORTER_H
#define QUARNSNMP_BENCH_TABLE_REPORTER_H

#include <cstdint>
#include <map>
#include <vector>

#include <benchmark/benchmark.h>

namespace bench {

/** Counters of a benchmark that times each iteration itself, in nanoseconds. */
inline constexpr const char *kMedianCounter = "median_ns";
inline constexpr const char *kPercentile99Counter = "p99_ns";

/**
 * Prints one row per benchmark, or two with the counters above. A row has the median of the repetitions: of the
 * counter, or of the time per iteration without counters.
 */
class TableReporter : public benchmark::BenchmarkReporter {
public:
    bool ReportContext(const Context &context) override;
    void ReportRuns(const std::vector<Run> &runs) override;
    void Finalize() override;

private:
    std::map<std::int64_t, std::vector<Run>> benchmarks_; ///< in the order of their registration
};

/** Parses the arguments of a program: those of the library, and --table. @return false for an unknown argument */
bool initialise(int argc, char **argv);

/** Runs the registered benchmarks. Prints rows under a heading after --table, otherwise the library's own report. */
void runBenchmarks(const char *heading);

} // namespace bench

#endif
