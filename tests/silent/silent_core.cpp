// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * A core library without work of its own: every call succeeds at once, and log lines are dropped. A request then costs
 * only the module's own work, which is the same every time.
 *
 * The outputs of a call are 1, 2, 3 and so on, so that no range is empty; texts are as long as those of real cameras.
 * Each service has one target, or as many as QUARNSNMP_SILENT_TARGETS says.
 */
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <type_traits>
#include <vector>

#include "zorva-core.h"

namespace {

constexpr int kHighestLevel = 2; // of a line that is written; the module has none of such severity

int gHandle = 0;

/** Fills an output, and leaves inputs alone. */
template <typename Argument>
void fill(int &value, Argument argument) {
    if constexpr (std::is_same_v<Argument, char **>) {
        *argument = ::strdup("QN-4000 Dome, indoors");
    } else if constexpr (std::is_pointer_v<Argument> && !std::is_same_v<Argument, const char *>) {
        *argument = static_cast<std::remove_pointer_t<Argument>>(++value);
    }
}

template <typename... Arguments>
zorva_core_status answer(const void * /*cookie*/, const char * /*target*/, Arguments... arguments) {
    [[maybe_unused]] int value = 0;
    (fill(value, arguments), ...);
    return 0;
}

zorva_core_status open(void **cookie) {
    *cookie = &gHandle;
    return 0;
}

} // namespace

#define ZORVA_SERVICE(service)                                                                                         \
    extern "C" zorva_core_status zorva_api_##service##_initiator_init(void *, void *, void **apiCookie, int32_t,       \
                                                                      void *) {                                        \
        return open(apiCookie);                                                                                        \
    }                                                                                                                  \
    extern "C" zorva_core_status zorva_api_##service##_initiator_deinit(void *) {                                      \
        return 0;                                                                                                      \
    }
#define ZORVA_CALL(service, operation, parameters, ...)                                                                \
    extern "C" zorva_core_status zorva_api_##service##_##operation parameters {                                        \
        return answer(__VA_ARGS__);                                                                                    \
    }
#include "service_calls.def"

extern "C" {

zorva_core_status zorva_core_init(void) {
    return 0;
}

zorva_core_status zorva_core_deinit(void) {
    return 0;
}

zorva_core_status zorva_core_logging_init(const char * /*name*/, void **logCookie) {
    return open(logCookie);
}

zorva_core_status zorva_core_logging_deinit(void * /*logCookie*/) {
    return 0;
}

void zorva_core_logging_log(void * /*logCookie*/, int level, const char *format, ...) {
    if (level > kHighestLevel) {
        return;
    }
    va_list arguments;
    va_start(arguments, format);
    std::vfprintf(stderr, format, arguments);
    va_end(arguments);
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
    const char *wanted = std::getenv("QUARNSNMP_SILENT_TARGETS");
    const long count = wanted != nullptr ? std::strtol(wanted, nullptr, 10) : 1;
    targetIds.clear();
    for (long i = 1; i <= count; ++i) {
        targetIds.push_back(serviceName + ("/" + std::to_string(i)));
    }
    return !targetIds.empty();
}

const char *statusToString(zorva_core_status /*status*/) {
    return "success";
}

} // namespace core
} // namespace zorva
