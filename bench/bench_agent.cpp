// SPDX-License-Identifier: Apache-2.0
/** @file Program for the suites of measurements with real agents. */
#include <array>
#include <cstdio>
#include <exception>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "suites.h"

namespace {

struct Suite {
    const char *name;
    void (*measure)(const bench::Effort &effort);
};

constexpr std::array kSuites = {
    Suite{"rates", bench::measureRates},
    Suite{"growth", bench::measureGrowth},
    Suite{"footprint", bench::measureFootprint},
    Suite{"traps", bench::measureTraps},
    Suite{"slow-camera", bench::measureSlowCamera},
};

constexpr const char *kUsage = "usage: bench-agent [--quick] [--data FILE] [SUITE...]\n"
                               "suites: rates growth footprint traps slow-camera (default: all)\n"
                               "--quick      run one short round\n"
                               "--data FILE  data file written by slow-camera (default: throughput.tsv)\n";

struct Arguments {
    bench::Effort effort;
    std::vector<const Suite *> suites;
};

/** Parses the arguments. @return false for an unknown argument */
bool parse(const std::vector<std::string> &texts, Arguments &arguments) {
    for (auto text = texts.begin(); text != texts.end(); ++text) {
        if (*text == "--quick") {
            arguments.effort.rounds = 1;
            arguments.effort.slice = std::chrono::milliseconds(100);
            arguments.effort.loads = 5;
        } else if (*text == "--data" && text + 1 != texts.end()) {
            arguments.effort.data = *++text;
        } else {
            const std::size_t before = arguments.suites.size();
            for (const Suite &suite : kSuites) {
                if (*text == suite.name) {
                    arguments.suites.push_back(&suite);
                }
            }
            if (arguments.suites.size() == before) {
                return false;
            }
        }
    }
    return true;
}

} // namespace

int main(int argc, char **argv) {
    Arguments arguments;
    if (!parse({argv + 1, argv + argc}, arguments)) {
        std::fputs(kUsage, stderr);
        return 2;
    }
    if (arguments.suites.empty()) {
        for (const Suite &suite : kSuites) {
            arguments.suites.push_back(&suite);
        }
    }
    try {
        for (const Suite *suite : arguments.suites) {
            suite->measure(arguments.effort);
        }
    } catch (const std::exception &error) {
        std::fprintf(stderr, "bench-agent: %s\n", error.what());
        return 1;
    }
    // Unclean exits of agents and cameras are failures of the test framework.
    return testing::UnitTest::GetInstance()->ad_hoc_test_result().Failed() ? 1 : 0;
}
