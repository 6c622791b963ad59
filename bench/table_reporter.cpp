// SPDX-License-Identifier: Apache-2.0
#include "table_reporter.h"

#include <algorithm>
#include <string_view>

#include "statistics.h"
#include "table.h"

namespace bench {

namespace {

using Run = benchmark::BenchmarkReporter::Run;

/** Values of a counter in all repetitions; empty when the benchmark does not have it. */
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
    constexpr double kLong = 1000; // tenths do not matter any more
    printRounds(what, values, "ns", median(values) < kLong ? 1 : 0);
}

void printBenchmark(const std::vector<Run> &runs) {
    const std::string &name = runs.front().run_name.function_name;
    if (std::any_of(runs.begin(), runs.end(), [](const Run &run) { return run.error_occurred; })) {
        printFamily(name + " failed: " + runs.front().error_message);
        return;
    }
    const std::vector<double> medians = counted(runs, kMedianCounter);
    printNanoseconds(name, medians.empty() ? timed(runs) : medians);
    const std::vector<double> late = counted(runs, kLateCounter);
    if (!late.empty()) {
        printNanoseconds(name + ", 99th percentile", late);
    }
}

} // namespace

bool TableReporter::ReportContext(const Context & /*context*/) {
    return true;
}

void TableReporter::ReportRuns(const std::vector<Run> &runs) {
    // The library's own medians come in a call of their own.
    if (!runs.empty() && runs.front().run_type == Run::RT_Iteration) {
        benchmarks[runs.front().family_index] = runs;
    }
}

void TableReporter::Finalize() {
    for (const auto &[index, runs] : benchmarks) {
        printBenchmark(runs);
    }
}

void runBenchmarks(bool asTable, const char *family) {
    if (!asTable) {
        benchmark::RunSpecifiedBenchmarks();
        return;
    }
    TableReporter reporter;
    printFamily(family);
    benchmark::RunSpecifiedBenchmarks(&reporter);
}

bool takeTableArgument(int &argc, char **argv) {
    char **const end = argv + argc;
    char **const kept = std::remove_if(argv, end, [](const char *text) { return std::string_view(text) == "--table"; });
    argc = static_cast<int>(kept - argv);
    return kept != end;
}

} // namespace bench
