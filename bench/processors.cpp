// SPDX-License-Identifier: Apache-2.0
#include "processors.h"

#include <cerrno>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <string>
#include <system_error>
#include <vector>

#include <sched.h>

namespace bench {

namespace {

[[noreturn]] void fail(const char *what) {
    throw std::system_error(errno, std::generic_category(), what);
}

/** Returns the processors that were available when the program started. */
const std::vector<int> &processors() {
    static const std::vector<int> numbers = [] {
        cpu_set_t set;
        if (::sched_getaffinity(0, sizeof set, &set) != 0) {
            fail("sched_getaffinity");
        }
        std::vector<int> result;
        for (int i = 0; i < CPU_SETSIZE; ++i) {
            if (CPU_ISSET(static_cast<std::size_t>(i), &set)) {
                result.push_back(i);
            }
        }
        return result;
    }();
    return numbers;
}

} // namespace

void pinToProcessor(pid_t process, int processor) {
    const auto wanted = static_cast<std::size_t>(processor);
    const std::vector<int> &numbers = processors();
    const int number = wanted < numbers.size() ? numbers[wanted] : numbers.back();
    cpu_set_t set;
    CPU_ZERO(&set);
    CPU_SET(static_cast<std::size_t>(number), &set);
    for (const auto &thread : std::filesystem::directory_iterator("/proc/" + std::to_string(process) + "/task")) {
        if (::sched_setaffinity(std::stoi(thread.path().filename().string()), sizeof set, &set) != 0) {
            fail("sched_setaffinity");
        }
    }
}

double processorTime(pid_t process) {
    std::ifstream file("/proc/" + std::to_string(process) + "/schedstat");
    double nanoseconds = 0;
    if (!(file >> nanoseconds)) {
        throw std::runtime_error("the kernel does not provide the processor time of a thread");
    }
    return nanoseconds / 1000;
}

} // namespace bench
