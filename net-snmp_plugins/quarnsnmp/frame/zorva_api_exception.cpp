// SPDX-License-Identifier: Apache-2.0
#include "zorva_api_exception.h"

#include "core_utils.h"

namespace zorva {
namespace core {

ZorvaApiException::ZorvaApiException(const std::string &message, zorva_core_status failedStatus)
    : std::runtime_error(formatMessage(message, failedStatus)), status(failedStatus) {}

ZorvaApiException::~ZorvaApiException() = default;

std::string ZorvaApiException::formatMessage(const std::string &message, zorva_core_status status) {
    return message + " (" + statusToString(status) + ")";
}

} // namespace core
} // namespace zorva

void LogFailure(const std::exception &failure) {
    zorva_core_logging_log(GetLogCookie(), kLogError, "%s", failure.what());
}
