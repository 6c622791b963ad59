// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * A core library that succeeds at once, and is wrong in the one way that the variable DEFECT names. Each service has
 * one target.
 */
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include <pthread.h>
#include <unistd.h>

#include "zorva-core.h"

namespace {

constexpr zorva_core_status kFailure = 77;
constexpr std::chrono::milliseconds kTooSlow{2700};

int gHandle = 0;
pid_t gStarted = 0; ///< process of the start

bool has(const std::string &defect) {
    const char *wanted = std::getenv("DEFECT");
    return wanted != nullptr && defect == wanted;
}

[[noreturn]] void hang() {
    for (;;) {
        ::pause();
    }
}

void crash() {
    std::signal(SIGSEGV, SIG_DFL);
    std::raise(SIGSEGV);
}

#ifndef DEFECTIVE_WITHOUT_REQUESTS
/** Does what a defective request does: those of one service, so that the others must still be checked. */
zorva_core_status misbehave() {
    if (has("crash in a request")) {
        crash();
    } else if (has("abort in a request")) {
        std::abort();
    } else if (has("exit in a request")) {
        std::exit(0); // NOLINT(concurrency-mt-unsafe): on purpose
    } else if (has("exception in a request")) {
        throw std::runtime_error("not for C");
    } else if (has("other exception in a request")) {
        throw 1;
    } else if (has("hang in a request")) {
        hang();
    } else if (has("slow request")) {
        std::this_thread::sleep_for(kTooSlow);
    } else if (has("failing request")) {
        return kFailure;
    }
    return 0;
}

template <typename... Arguments>
zorva_core_status answer(const char *service, const Arguments &.../*arguments*/) {
    if (has("crash after a fork") && ::getpid() != gStarted) {
        crash();
    }
    return std::strcmp(service, "power") == 0 ? misbehave() : 0;
}
#endif

zorva_core_status open(void **cookie) {
    *cookie = has("null handle") ? nullptr : &gHandle;
    return 0;
}

} // namespace

[[gnu::destructor]] static void unload() {
    if (has("crash at the unload")) {
        crash();
    }
}

#define ZORVA_SERVICE(service)                                                                                         \
    extern "C" zorva_core_status zorva_api_##service##_initiator_init(void *, void *, void **apiCookie, int32_t,       \
                                                                      void *) {                                        \
        return open(apiCookie);                                                                                        \
    }                                                                                                                  \
    extern "C" zorva_core_status zorva_api_##service##_initiator_deinit(void *) {                                      \
        return 0;                                                                                                      \
    }
#ifndef DEFECTIVE_WITHOUT_REQUESTS
#define ZORVA_CALL(service, operation, parameters, ...)                                                                \
    extern "C" zorva_core_status zorva_api_##service##_##operation parameters {                                        \
        return answer(#service, __VA_ARGS__);                                                                          \
    }
#endif
#include "service_calls.def"

extern "C" {

zorva_core_status zorva_core_init(void) {
    gStarted = ::getpid();
    if (has("crash in the start")) {
        crash();
    } else if (has("hang in the start")) {
        hang();
    } else if (has("output")) {
        static_cast<void>(::write(STDOUT_FILENO, "noise\n", 6));
    } else if (has("descriptor")) {
        static_cast<void>(::dup(STDERR_FILENO));
    } else if (has("thread")) {
        // It never runs code of this library, whose unload it would not survive.
        pthread_t thread{};
        void *const function = reinterpret_cast<void *>(&::pause);
        static_cast<void>(::pthread_create(&thread, nullptr, reinterpret_cast<void *(*)(void *)>(function), nullptr));
    }
    return 0;
}

zorva_core_status zorva_core_deinit(void) {
    return has("failing end") ? kFailure : 0;
}

zorva_core_status zorva_core_logging_init(const char * /*name*/, void **logCookie) {
    return open(logCookie);
}

zorva_core_status zorva_core_logging_deinit(void * /*logCookie*/) {
    return 0;
}

void zorva_core_logging_log(void * /*logCookie*/, int /*level*/, const char * /*format*/, ...) {
    static bool isOpen = false;
    if (has("log stays open") && !isOpen) {
        isOpen = ::dup(STDERR_FILENO) >= 0;
    }
}

zorva_core_status zorva_core_ipc_initiator_init(void * /*logCookie*/, void * /*reserved*/, void **ipcCookie) {
    return open(ipcCookie);
}

zorva_core_status zorva_core_ipc_deinit(void * /*ipcCookie*/) {
    return 0;
}
}

namespace zorva {
namespace core {

bool getTargetIds(const char *serviceName, std::vector<std::string> &targetIds) {
    if (has("false for missing hardware")) {
        return false;
    }
    if (!has("no hardware")) {
        targetIds.push_back(serviceName + std::string("\n1"));
    }
    return true;
}

const char *statusToString(zorva_core_status status) {
    return status == kFailure ? "no \033luck" : has("null text") ? nullptr : "success";
}

} // namespace core
} // namespace zorva
