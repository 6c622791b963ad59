// SPDX-License-Identifier: Apache-2.0
/** @file Functions of the interface that belong to no service. */
#include <iterator>

#include "boundary.h"
#include "library.h"
#include "request_line.h"
#include "response.h"
#include "status.h"

using standin::guarded;
using standin::library;

extern "C" zorva_core_status zorva_core_init(void) {
    return guarded([] { return library().start(); });
}

extern "C" zorva_core_status zorva_core_deinit(void) {
    return guarded([] { return library().stop(); });
}

extern "C" zorva_core_status zorva_core_logging_init(const char *name, void **logCookie) {
    if (name == nullptr || logCookie == nullptr) {
        return wire::kInvalidArgument;
    }
    *logCookie = nullptr;
    return guarded([&] { return library().openLog(name, logCookie); });
}

extern "C" zorva_core_status zorva_core_logging_deinit(void *logCookie) {
    return guarded([&] { return library().closeLog(logCookie); });
}

extern "C" void zorva_core_logging_log(void *logCookie, int level, const char *format, ...) {
    // The level comes first, because it drops most lines.
    if (!standin::isLogged(level) || format == nullptr) {
        return;
    }
    const auto context = library().findLog(logCookie);
    if (context != nullptr) {
        va_list arguments;
        va_start(arguments, format);
        context->writeArguments(level, format, arguments);
        va_end(arguments);
    }
}

extern "C" zorva_core_status zorva_core_ipc_initiator_init(void *logCookie, void *reserved, void **ipcCookie) {
    if (reserved != nullptr || ipcCookie == nullptr) {
        return wire::kInvalidArgument;
    }
    *ipcCookie = nullptr;
    return guarded([&] { return library().openIpc(logCookie, ipcCookie); });
}

extern "C" zorva_core_status zorva_core_ipc_deinit(void *ipcCookie) {
    return guarded([&] { return library().closeIpc(ipcCookie); });
}

bool zorva::core::getTargetIds(const char *serviceName, std::vector<std::string> &targetIds) {
    return guarded([&]() -> zorva_core_status {
               if (serviceName == nullptr) {
                   return wire::kInvalidArgument;
               }
               const standin::Deadline deadline(standin::kCallLimit);
               std::shared_ptr<standin::Channel> channel;
               zorva_core_status status = library().findDirectory(channel);
               if (status != wire::kSuccess) {
                   return status;
               }
               standin::RequestLine request("get_target_ids");
               request.add(serviceName);
               const std::string_view line = request.finish();
               if (line.empty()) {
                   return wire::kInvalidArgument;
               }
               std::vector<std::string> found;
               status = channel->exchange(line, deadline, [&found](std::string_view response) {
                   return standin::readTargetIds(response, found);
               });
               if (status == wire::kSuccess) {
                   targetIds.insert(targetIds.end(), std::make_move_iterator(found.begin()),
                                    std::make_move_iterator(found.end()));
               }
               return status;
           }) == wire::kSuccess;
}
