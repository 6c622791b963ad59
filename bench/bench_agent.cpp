// SPDX-License-Identifier: Apache-2.0
/** @file Measurements with real agents; see usage(). */
#include <array>
#include <cstdio>
#include <exception>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "families.h"

namespace {

struct Family {
    const char *name;
    void (*measure)(const bench::Effort &effort);
};

constexpr std::array kFamilies = {
    Family{"rates", bench::measureRates},
    Family{"growth", bench::measureGrowth},
    Family{"footprint", bench::measureFootprint},
    Family{"traps", bench::measureTraps},
    Family{"slow-camera", bench::measureSlowCamera},
};

constexpr const char *kUsage = "usage: bench-agent [--quick] [--plot FILE] [FAMILY...]\n"
                               "families: rates growth footprint traps slow-camera; all of them without one\n"
                               "--quick measures one short round\n"
                               "--plot FILE is where slow-camera draws its plot (default: throughput.svg)\n";

struct Arguments {
    bench::Effort effort;
    std::vector<const Family *> families;
};

/** @return whether the arguments make sense */
bool read(const std::vector<std::string> &texts, Arguments &arguments) {
    for (auto text = texts.begin(); text != texts.end(); ++text) {
        if (*text == "--quick") {
            arguments.effort.rounds = 1;
            arguments.effort.slice = std::chrono::milliseconds(100);
            arguments.effort.loads = 5;
        } else if (*text == "--plot" && text + 1 != texts.end()) {
            arguments.effort.plot = *++text;
        } else {
            const std::size_t before = arguments.families.size();
            for (const Family &family : kFamilies) {
                if (*text == family.name) {
                    arguments.families.push_back(&family);
                }
            }
            if (arguments.families.size() == before) {
                return false;
            }
        }
    }
    return true;
}

} // namespace

int main(int argc, char **argv) {
    Arguments arguments;
    if (!read({argv + 1, argv + argc}, arguments)) {
        std::fputs(kUsage, stderr);
        return 2;
    }
    if (arguments.families.empty()) {
        for (const Family &family : kFamilies) {
            arguments.families.push_back(&family);
        }
    }
    try {
        for (const Family *family : arguments.families) {
            family->measure(arguments.effort);
        }
    } catch (const std::exception &error) {
        std::fprintf(stderr, "bench-agent: %s\n", error.what());
        return 1;
    }
    // Agents and cameras that do not end as they should report to the test framework.
    return testing::UnitTest::GetInstance()->ad_hoc_test_result().Failed() ? 1 : 0;
}
