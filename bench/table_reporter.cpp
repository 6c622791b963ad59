// SPDX-License-Identifier: Apache-2.0
#include "table_reporter.h"

#include <algorithm>
#include <string_view>

#include "statistics.h"
#include "table.h"

namespace bench {

namespace {

using Run = benchmark::BenchmarkReporter::Run;

bool gPrintsTable = false; // set by initialise()

/** Returns the values of a counter in all repetitions; empty if the benchmark does not have it. */
std::vector<double> counted(const std::vector<Run> &runs, const char *counter) {
    std::vector<double> values;
    for (const Run &run : runs) {
        const auto found = run.counters.find(counter);
        if (run.run_type == Run::RT_Iteration && found != run.counters.end()) {
            values.push_back(found->second.value);
        }
    }
    return values;
}

/** Returns the time per iteration in all repetitions. */
std::vector<double> timed(const std::vector<Run> &runs) {
    std::vector<double> values;
    for (const Run &run : runs) {
        if (run.run_type == Run::RT_Iteration) {
            values.push_back(run.GetAdjustedRealTime());
        }
    }
    return values;
}

void printNanoseconds(const std::string &what, const std::vector<double> &values) {
    constexpr double kThreshold = 1000; // from here on, tenths do not matter
    printRounds(what, values, "ns", median(values) < kThreshold ? 1 : 0);
}

void printBenchmark(const std::vector<Run> &runs) {
    const std::string &name = runs.front().run_name.function_name;
    if (std::any_of(runs.begin(), runs.end(), [](const Run &run) { return run.error_occurred; })) {
        printHeading(name + " failed: " + runs.front().error_message);
        return;
    }
    const std::vector<double> medians = counted(runs, kMedianCounter);
    printNanoseconds(name, medians.empty() ? timed(runs) : medians);
    const std::vector<double> percentile99 = counted(runs, kPercentile99Counter);
    if (!percentile99.empty()) {
        printNanoseconds(name + ", 99th percentile", percentile99);
    }
}

} // namespace

bool TableReporter::ReportContext(const Context & /*context*/) {
    return true;
}

void TableReporter::ReportRuns(const std::vector<Run> &runs) {
    // The library reports its own aggregates in separate calls.
    if (!runs.empty() && runs.front().run_type == Run::RT_Iteration) {
        benchmarks_[runs.front().family_index] = runs;
    }
}

void TableReporter::Finalize() {
    for (const auto &[index, runs] : benchmarks_) {
        printBenchmark(runs);
    }
}

bool initialise(int argc, char **argv) {
    char **const end = argv + argc;
    char **const kept = std::remove_if(argv, end, [](const char *text) { return std::string_view(text) == "--table"; });
    gPrintsTable = kept != end;
    argc = static_cast<int>(kept - argv);
    benchmark::Initialize(&argc, argv);
    return !benchmark::ReportUnrecognizedArguments(argc, argv);
}

void runBenchmarks(const char *heading) {
    if (!gPrintsTable) {
        benchmark::RunSpecifiedBenchmarks();
        return;
    }
    TableReporter reporter;
    printHeading(heading);
    benchmark::RunSpecifiedBenchmarks(&reporter);
}

} // namespace bench
