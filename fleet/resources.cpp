// SPDX-License-Identifier: Apache-2.0
#include "resources.h"

#include <algorithm>
#include <fstream>
#include <limits>
#include <sstream>
#include <stdexcept>
#include <vector>

#include <dirent.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

namespace fleet {

namespace {

constexpr std::uint64_t kUnlimited = std::numeric_limits<std::uint64_t>::max();

// Of a process: this one starts a few cameras at a time, and a camera has a socket for each service and client.
constexpr std::uint64_t kFilesOfProcess = 128;
constexpr std::uint64_t kFilesOfCamera = 80;  // open in the camera and its agent together
constexpr std::uint64_t kTasksOfCamera = 3;   // the camera, the agent and the module's thread in it
constexpr std::uint64_t kTasksInReserve = 16; // of this program, and of commands beside it

std::uint64_t softLimit(int resource) {
    rlimit limit{};
    if (getrlimit(static_cast<__rlimit_resource>(resource), &limit) != 0 || limit.rlim_cur == RLIM_INFINITY) {
        return kUnlimited;
    }
    return limit.rlim_cur;
}

void raise(int resource) {
    rlimit limit{};
    const auto which = static_cast<__rlimit_resource>(resource);
    if (getrlimit(which, &limit) == 0 && limit.rlim_cur != limit.rlim_max) {
        limit.rlim_cur = limit.rlim_max;
        setrlimit(which, &limit); // without success, the check of the limit decides
    }
}

/** Returns the numbers at the start of a file; none if it cannot be read or begins with a word such as "max". */
std::vector<std::uint64_t> numbersIn(const std::string &path) {
    std::ifstream file(path);
    std::vector<std::uint64_t> numbers;
    for (std::uint64_t number = 0; file >> number;) {
        numbers.push_back(number);
    }
    return numbers;
}

std::uint64_t numberInFile(const std::string &path, std::uint64_t otherwise) {
    const std::vector<std::uint64_t> numbers = numbersIn(path);
    return numbers.empty() ? otherwise : numbers.front();
}

std::uint64_t difference(std::uint64_t limit, std::uint64_t used) {
    return limit == kUnlimited ? kUnlimited : limit - std::min(limit, used);
}

/** Counts the threads of this user, which the limit of processes counts as well. */
std::uint64_t tasksOfUser() {
    std::uint64_t tasks = 0;
    DIR *const processes = opendir("/proc");
    if (processes == nullptr) {
        return 0;
    }
    while (const dirent *entry = readdir(processes)) { // NOLINT(concurrency-mt-unsafe): this stream is not shared
        const std::string path = std::string("/proc/") + static_cast<const char *>(entry->d_name);
        struct stat status {};
        if (path.find_first_not_of("0123456789", 6) == std::string::npos && stat(path.c_str(), &status) == 0 &&
            status.st_uid == getuid() && stat((path + "/task").c_str(), &status) == 0 && status.st_nlink > 2) {
            tasks += status.st_nlink - 2;
        }
    }
    closedir(processes);
    return tasks;
}

/** Returns the smallest number of processes that this process's control group and those above it leave. */
std::uint64_t tasksLeftInGroup() {
    std::uint64_t left = kUnlimited;
    std::ifstream file("/proc/self/cgroup");
    for (std::string line; std::getline(file, line);) {
        if (line.rfind("0::", 0) != 0) {
            continue;
        }
        for (std::string group = line.substr(3); group.size() > 1; group.erase(group.rfind('/'))) {
            const std::string path = "/sys/fs/cgroup" + group;
            left = std::min(left, difference(numberInFile(path + "/pids.max", kUnlimited),
                                             numberInFile(path + "/pids.current", 0)));
        }
    }
    return left;
}

/** Returns the number of files that the machine can still open. */
std::uint64_t filesLeft() {
    const std::vector<std::uint64_t> numbers = numbersIn("/proc/sys/fs/file-nr"); // used, free, most
    constexpr std::size_t kMost = 2;
    return numbers.size() > kMost ? difference(numbers[kMost], numbers[0]) : kUnlimited;
}

} // namespace

std::optional<std::string> shortage(const Supply &supply) {
    if (supply.available >= supply.needed) {
        return std::nullopt;
    }
    return "too few " + supply.name + ": there are " + std::to_string(supply.available) + ", and the fleet takes " +
           std::to_string(supply.needed) + "; " + supply.advice;
}

void raiseLimits() {
    raise(RLIMIT_NOFILE);
    raise(RLIMIT_NPROC);
}

void checkResources(unsigned cameras) {
    const std::uint64_t tasks = kTasksOfCamera * cameras + kTasksInReserve;
    std::vector<Supply> supplies = {
        {"open files of a process", kFilesOfProcess, softLimit(RLIMIT_NOFILE), "raise the limit (ulimit -Hn)"},
        {"open files of the machine", kFilesOfCamera * cameras, filesLeft(), "raise fs.file-max (sysctl)"},
        {"processes of the control group", tasks, tasksLeftInGroup(), "raise TasksMax of the unit, or pids.max"},
        {"threads of the machine", tasks, numberInFile("/proc/sys/kernel/threads-max", kUnlimited),
         "raise kernel.threads-max (sysctl)"},
        {"process numbers of the machine", tasks, numberInFile("/proc/sys/kernel/pid_max", kUnlimited),
         "raise kernel.pid_max (sysctl)"}};
    const std::uint64_t limit = softLimit(RLIMIT_NPROC);
    // The limit of processes does not hold for root.
    if (limit != kUnlimited && getuid() != 0) {
        supplies.push_back(
            {"processes of the user", tasks, difference(limit, tasksOfUser()), "raise the limit (ulimit -Hu)"});
    }
    for (const Supply &supply : supplies) {
        if (const std::optional<std::string> text = shortage(supply)) {
            throw std::runtime_error(*text);
        }
    }
}

} // namespace fleet
