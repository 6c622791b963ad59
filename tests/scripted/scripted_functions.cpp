// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * The functions of the core library's interface, as calls of the scripted core.
 */
#include <chrono>
#include <cstdlib>
#include <cstring>
#include <map>
#include <sstream>
#include <thread>
#include <type_traits>

#include <unistd.h>

#include "scripted_core.h"

namespace {

using scripted::core;
using scripted::Outcome;
using scripted::Value;

template <typename T>
constexpr bool kIsOutput = std::is_pointer_v<T> && !std::is_same_v<T, const char *>;

std::string quoted(const char *text) {
    return text != nullptr ? "\"" + std::string(text) + "\"" : "null";
}

template <typename T>
std::string rendered(T argument) {
    if constexpr (kIsOutput<T>) {
        return argument != nullptr ? "&" : "null";
    } else if constexpr (std::is_same_v<T, const char *>) {
        return quoted(argument);
    } else {
        std::ostringstream text;
        text.precision(9); // enough to tell any two single-precision fractions apart
        text << +argument;
        return text.str();
    }
}

/** Fills one output: with the next value of a successful call, with rubbish after a failed one. Inputs stay. */
template <typename T>
void fill(const std::string &function, const Outcome &outcome, std::size_t &next, T argument) {
    if constexpr (kIsOutput<T>) {
        using Output = std::remove_pointer_t<T>;
        if (argument == nullptr) {
            core().problem("null output in " + function);
            return;
        }
        if constexpr (std::is_same_v<Output, char *>) {
            // A failed call does not touch texts, which the caller frees.
            if (outcome.status == 0) {
                const auto *text = std::get_if<std::string>(&outcome.outputs.at(next++));
                *argument = text != nullptr ? strdup(text->c_str()) : nullptr;
            }
        } else if (outcome.status == 0) {
            if (const auto *number = std::get_if<std::int64_t>(&outcome.outputs.at(next++))) {
                *argument = static_cast<Output>(*number);
            }
        } else {
            std::memset(argument, 0xA5, sizeof *argument);
        }
    }
}

template <typename... Arguments>
zorva_core_status call(const std::string &service, const std::string &operation, void *cookie, const char *target,
                       Arguments... arguments) {
    const std::string function = "zorva_api_" + service + "_" + operation;
    std::string recorded = function + "(" + core().nameOf(cookie) + ", " + quoted(target);
    ((recorded += ", " + rendered(arguments)), ...);
    recorded += ")";

    const std::size_t outputs = (std::size_t{0} + ... + std::size_t{kIsOutput<Arguments>});
    const Outcome outcome = core().perform(function, recorded, outputs);
    [[maybe_unused]] std::size_t next = 0;
    (fill(function, outcome, next, arguments), ...);
    return outcome.status;
}

zorva_core_status openService(const std::string &service, void *ipcCookie, void *logCookie, void **apiCookie,
                              int32_t reserved0, void *reserved1) {
    const std::string function = "zorva_api_" + service + "_initiator_init";
    const Outcome outcome = core().perform(function,
                                           function + "(" + core().nameOf(ipcCookie) + ", " + core().nameOf(logCookie) +
                                               ", " + rendered(apiCookie) + ", " + std::to_string(reserved0) + ", " +
                                               core().nameOf(reserved1) + ")",
                                           0);
    if (outcome.status == 0) {
        *apiCookie = core().open(service);
    }
    return outcome.status;
}

/** Calls that end a handle, and those of the library as a whole. */
zorva_core_status plain(const std::string &function, void *handle) {
    const Outcome outcome = core().perform(function, function + "(" + core().nameOf(handle) + ")", 0);
    core().close(handle);
    return outcome.status;
}

} // namespace

// An exception of the script does not leave these functions: a script that cannot be carried out ends in an abort.
#define ZORVA_SERVICE(service)                                                                                         \
    extern "C" zorva_core_status zorva_api_##service##_initiator_init(                                                 \
        void *ipcCookie, void *logCookie, void **apiCookie, int32_t reserved0, void *reserved1) {                      \
        return openService(#service, ipcCookie, logCookie, apiCookie, reserved0, reserved1);                           \
    }                                                                                                                  \
    extern "C" zorva_core_status zorva_api_##service##_initiator_deinit(void *apiCookie) {                             \
        return plain("zorva_api_" #service "_initiator_deinit", apiCookie);                                            \
    }
#define ZORVA_CALL(service, operation, parameters, ...)                                                                \
    extern "C" zorva_core_status zorva_api_##service##_##operation parameters {                                        \
        return call(#service, #operation, __VA_ARGS__);                                                                \
    }
#include "service_calls.def"

extern "C" zorva_core_status zorva_core_init(void) {
    return core().perform(__func__, "zorva_core_init()", 0).status;
}

extern "C" zorva_core_status zorva_core_deinit(void) {
    return core().perform(__func__, "zorva_core_deinit()", 0).status;
}

extern "C" zorva_core_status zorva_core_logging_init(const char *name, void **logCookie) {
    const Outcome outcome = core().perform(__func__, "zorva_core_logging_init(" + quoted(name) + ", &)", 0);
    if (outcome.status == 0) {
        *logCookie = core().open("log");
    }
    return outcome.status;
}

extern "C" zorva_core_status zorva_core_logging_deinit(void *logCookie) {
    return plain(__func__, logCookie);
}

extern "C" void zorva_core_logging_log(void *logCookie, int level, const char *format, ...) {
    va_list arguments;
    va_start(arguments, format);
    core().log(logCookie, level, format, arguments);
    va_end(arguments);
}

extern "C" zorva_core_status zorva_core_ipc_initiator_init(void *logCookie, void *reserved, void **ipcCookie) {
    const Outcome outcome = core().perform(
        __func__, "zorva_core_ipc_initiator_init(" + core().nameOf(logCookie) + ", " + core().nameOf(reserved) + ", &)",
        0);
    if (outcome.status == 0) {
        *ipcCookie = core().open("ipc");
    }
    return outcome.status;
}

extern "C" zorva_core_status zorva_core_ipc_deinit(void *ipcCookie) {
    return plain(__func__, ipcCookie);
}

/** Replaces the C library's function: the module waits for late services, and a test does not. */
extern "C" unsigned int sleep(unsigned int seconds) {
    if (gettid() == getpid()) {
        core().sleep(seconds);
    } else {
        // A sleep of a fuzzer's own thread, which checks the memory every second.
        std::this_thread::sleep_for(std::chrono::seconds(seconds));
    }
    return 0;
}

namespace zorva {
namespace core {

bool getTargetIds(const char *serviceName, std::vector<std::string> &targetIds) {
    return scripted::core().discover(serviceName, targetIds);
}

const char *statusToString(zorva_core_status status) {
    // Kept for good, as the interface promises.
    static std::map<zorva_core_status, std::string> &texts = *new std::map<zorva_core_status, std::string>;
    static std::mutex &mutex = *new std::mutex;
    const std::lock_guard<std::mutex> lock(mutex);
    return texts.emplace(status, "status " + std::to_string(status)).first->second.c_str();
}

} // namespace core
} // namespace zorva
