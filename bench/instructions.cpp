// SPDX-License-Identifier: Apache-2.0
/** @file Prints the instruction counts of requests, which tests/budget/ limits, as rows of the table. */
#include <cstdio>
#include <exception>

#include "callgrind_profile.h"
#include "subjects.h"
#include "table.h"

int main() {
    try {
        const auto counted = budget::countInstructions();
        bench::printHeading("Instructions of the module's own code per request", "relative to the budget");
        for (const budget::Subject &subject : budget::kSubjects) {
            const auto own = static_cast<double>(counted.at(std::string(subject.name)).own);
            char share[16];
            std::snprintf(share, sizeof share, "%.2f", own / static_cast<double>(subject.limit));
            bench::printValue(std::string(subject.name), own, "", 0, share);
        }
        return 0;
    } catch (const std::exception &error) {
        std::fprintf(stderr, "bench-instructions: %s\n", error.what());
        return 1;
    }
}
