// SPDX-License-Identifier: Apache-2.0
#include "checks.h"

#include <array>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <optional>
#include <thread>

#include "elf_header.h"
#include "library.h"

namespace core_check {

namespace {

constexpr const char *kLibrary = "library";
constexpr const char *kFork = "fork";
constexpr const char *kReload = "reload";
constexpr const char *kTargets = "getTargetIds";
constexpr const char *kOpen = "initiator_init";
constexpr const char *kClose = "initiator_deinit";
constexpr int kReloads = 3;

/** Turns an action without a detail into that of a check. */
template <typename Action>
auto silent(Action action) {
    return [action] {
        action();
        return std::string();
    };
}

std::string listed(const std::vector<std::string> &texts) {
    std::string list;
    for (const std::string &text : texts) {
        list += (list.empty() ? "" : " ") + printable(text);
    }
    return list;
}

std::string nameOf(const Request &request, const std::string &target) {
    return request.operation + (' ' + printable(target));
}

void checkSymbols(Trial &trial, const Library &library) {
    std::size_t found = 0;
    const std::vector<std::string> names = requiredSymbols();
    for (const std::string &name : names) {
        if (library.find(name.c_str()) != nullptr) {
            ++found;
            continue;
        }
        trial.check(kLibrary, name, [&]() -> std::string {
            const bool isOld =
                name == symbols::kGetTargetIds && library.find(symbols::kGetTargetIdsBeforeCxx11) != nullptr;
            throw Failure(isOld ? "missing; the library has it with the old ABI of std::string. Build the library "
                                  "with -D_GLIBCXX_USE_CXX11_ABI=1"
                                : "missing");
        });
    }
    trial.check(kLibrary, "symbols", [&] {
        std::string detail = std::to_string(found) + " of " + std::to_string(names.size());
        if (found < names.size()) {
            throw Failure(detail + "; without all of them, the agent cannot load the module");
        }
        return detail;
    });
}

void checkTexts(const Library &library) {
    library.textOf(0);
    library.textOf(-1);
    library.textOf(12345);
}

std::string writeLog(const Library &library, const std::string &mark) {
    for (int level = kMostSevereLevel; level <= kLeastSevereLevel; ++level) {
        library.log(level, mark);
    }
    return "wrote \"" + mark + "\" with the levels 3 to 7";
}

/** Starts the library step by step. @return true if services can be used */
bool checkStart(Trial &trial, Library &library, const std::string &mark) {
    if (!trial.check(kLibrary, symbols::kInit, silent([&] { library.init(); }))) {
        return false;
    }
    trial.check(kLibrary, "statusToString", silent([&] { checkTexts(library); }));
    if (trial.check(kLibrary, symbols::kLoggingInit, silent([&] { library.openLog(); }))) {
        trial.check(kLibrary, symbols::kLoggingLog, [&] { return writeLog(library, mark); });
    }
    return trial.check(kLibrary, symbols::kIpcInitiatorInit, silent([&] { library.openIpc(); }));
}

void checkService(Trial &trial, const Library &library, const Service &service) {
    std::vector<std::string> targets;
    const auto discover = [&] {
        targets = library.targetsOf(service);
        return targets.empty() ? "none: the camera has no such hardware" : listed(targets);
    };
    if (!trial.check(service.name, kTargets, discover) || targets.empty()) {
        return;
    }
    void *cookie = nullptr;
    if (!trial.check(service.name, kOpen, silent([&] { cookie = library.open(service); }))) {
        return;
    }
    for (const std::string &target : targets) {
        for (const Request &request : service.requests) {
            if (request.read != nullptr && library.find(request.symbol) != nullptr) {
                trial.check(service.name, nameOf(request, target),
                            [&] { return library.read(request, cookie, target); });
            }
        }
    }
    trial.check(service.name, kClose, silent([&] { library.close(service, cookie); }));
}

/** An open service with a request that works. */
struct Sample {
    const Service *service = nullptr; ///< null without such a service
    const Request *request = nullptr;
    void *cookie = nullptr;
    std::string target;
};

/** Looks for a request that works in a service that is open. */
std::optional<Sample> findRequest(const Trial &trial, const Library &library, const Service &service, void *cookie,
                                  const std::vector<std::string> &targets) {
    for (const Request &request : service.requests) {
        for (const std::string &target : targets) {
            if (request.read != nullptr && library.find(request.symbol) != nullptr &&
                !trial.hasFailed(service.name, nameOf(request, target))) {
                library.read(request, cookie, target);
                return Sample{&service, &request, cookie, target};
            }
        }
    }
    return std::nullopt;
}

/** Opens the first service with a request that passed its check. */
Sample openSample(const Trial &trial, const Library &library) {
    for (const Service &service : services()) {
        if (trial.hasFailed(service.name, kTargets) || trial.hasFailed(service.name, kOpen)) {
            continue;
        }
        const std::vector<std::string> targets = library.targetsOf(service);
        if (targets.empty()) {
            continue;
        }
        void *const cookie = library.open(service);
        const std::optional<Sample> sample = findRequest(trial, library, service, cookie, targets);
        if (sample) {
            return *sample;
        }
        library.close(service, cookie);
    }
    return {};
}

std::string describe(const Sample &sample) {
    return sample.service == nullptr
               ? "no request works, so only the start and the end are checked"
               : "with " + std::string(sample.service->name) + ' ' + nameOf(*sample.request, sample.target);
}

void useSample(const Library &library, const Sample &sample) {
    if (sample.service != nullptr) {
        library.targetsOf(*sample.service);
        library.read(*sample.request, sample.cookie, sample.target);
    }
}

/** Closes everything in the order of the module's end. */
void end(Library &library, const Sample &sample) {
    if (sample.service != nullptr) {
        library.close(*sample.service, sample.cookie);
    }
    library.stop();
}

/** Counts the entries of a directory in /proc/self; nothing without /proc. */
std::optional<std::ptrdiff_t> countOf(const char *directory) {
    std::error_code error;
    const std::filesystem::directory_iterator entries(std::string("/proc/self/") + directory, error);
    return error ? std::nullopt : std::make_optional(std::distance(begin(entries), std::filesystem::end(entries)));
}

/** Expects a count in /proc/self to return to its former value within a second: threads take a moment to end. */
std::string requireCount(const char *directory, std::optional<std::ptrdiff_t> before, const std::string &what) {
    std::optional<std::ptrdiff_t> now = countOf(directory);
    for (int attempt = 0; attempt < 100 && now && before && *now > *before; ++attempt) {
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
        now = countOf(directory);
    }
    if (!now || !before) {
        return "not checked, because /proc is unreadable";
    }
    if (*now > *before) {
        throw Failure(std::to_string(*now - *before) + ' ' + what);
    }
    return "";
}

} // namespace

Result checkFile(const std::string &file) {
    const std::string problem = problemOfFile(file);
    return {kLibrary, "file", problem.empty(), 0, problem};
}

void checkCalls(Trial &trial, const std::string &file, const std::string &mark) {
    Library library;
    if (!trial.check(kLibrary, "load", silent([&] { library.load(file); }), Limit::kNone)) {
        return;
    }
    trial.check(kLibrary, "SONAME", [&] {
        const std::string name = library.soname();
        return name == "libzorva-core.so" ? name : throw Failure("'" + name + "'; expected libzorva-core.so");
    });
    checkSymbols(trial, library);
    if (!checkStart(trial, library, mark)) {
        return;
    }
    for (const Service &service : services()) {
        checkService(trial, library, service);
    }
    trial.check(kLibrary, symbols::kIpcDeinit, silent([&] { library.closeIpc(); }));
    trial.check(kLibrary, symbols::kLoggingDeinit, silent([&] { library.closeLog(); }));
    trial.check(kLibrary, symbols::kDeinit, silent([&] { library.deinit(); }));
}

void checkFork(Trial &trial, const std::string &file) {
    Library library;
    Sample sample;
    const auto start = [&] {
        library.load(file);
        library.start();
        sample = openSample(trial, library);
        return describe(sample);
    };
    if (!trial.check(kFork, "start", start, Limit::kNone)) {
        return;
    }
    const auto useAndEnd = [&] {
        useSample(library, sample);
        library.log(kLeastSevereLevel, "in a fork");
        end(library, sample);
        library.unload(file);
    };
    trial.check(kFork, "use and end in the fork", silent([&] { inChild(useAndEnd); }), Limit::kNone);
    trial.check(kFork, "use in the parent afterwards", silent([&] { useSample(library, sample); }), Limit::kNone);
}

void checkReload(Trial &trial, const std::string &file) {
    Library library;
    bool unloads = true;
    const auto useOnce = [&] {
        library.load(file);
        library.start();
        const Sample sample = openSample(trial, library);
        useSample(library, sample);
        library.log(kLeastSevereLevel, "before an unload"); // a library may open its log at the first line
        end(library, sample);
        unloads = library.unload(file);
        return unloads ? describe(sample) : describe(sample) + "; stays mapped after the unload";
    };
    const std::optional<std::ptrdiff_t> threads = countOf("task");
    std::optional<std::ptrdiff_t> descriptors;
    for (int round = 1; round <= kReloads; ++round) {
        if (!trial.check(kReload, "load, use, unload " + std::to_string(round), useOnce, Limit::kNone)) {
            return;
        }
        if (round == 1) {
            descriptors = countOf("fd"); // the first use may open some for the rest of the process
        }
    }
    const auto checkThreads = [&] { return requireCount("task", threads, "threads still run after the unload"); };
    const auto checkDescriptors = [&] {
        return requireCount("fd", descriptors, "more descriptors are open after two reloads");
    };
    trial.check(kReload, "threads", checkThreads, Limit::kNone);
    trial.check(kReload, "descriptors", checkDescriptors, Limit::kNone);
    trial.check(kReload, "fork after the unload", silent([&] { inChild([] {}); }));
}

Result checkLog(const std::string &logFile, const std::string &mark) {
    std::ifstream input(logFile);
    const std::string text{std::istreambuf_iterator<char>(input), {}};
    std::string missing;
    for (int level = kMostSevereLevel; level <= kLeastSevereLevel; ++level) {
        if (text.find(mark + ", level " + std::to_string(level)) == std::string::npos) {
            missing += ' ' + std::to_string(level);
        }
    }
    return {kLibrary, "log file", missing.empty(), 0,
            missing.empty() ? "has the levels 3 to 7" : "lacks the levels" + missing + " of the name SNMP"};
}

} // namespace core_check
