// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * A failed core-library call as an exception, and the macro that raises it.
 */
#ifndef QUARNSNMP_ZORVA_API_EXCEPTION_H
#define QUARNSNMP_ZORVA_API_EXCEPTION_H

#include <stdexcept>
#include <string>

#include "service_calls.h"
#include "zorva-core.h"

namespace zorva {
namespace core {

/** A failed core-library call. what() returns the message and the status text in parentheses. */
class ZorvaApiException : public std::runtime_error {
public:
    /**
     * @param message  description of the failed call
     * @param status   status of the call
     */
    ZorvaApiException(const std::string &message, zorva_core_status status);
    ~ZorvaApiException() override;

    /** Returns the text of the exception: `message (status text)`. */
    static std::string formatMessage(const std::string &message, zorva_core_status status);

    zorva_core_status status; ///< status of the call
};

} // namespace core
} // namespace zorva

/** Logs the text of an exception at error level. */
void LogFailure(const std::exception &failure);

/**
 * Makes a request of a service, as service_calls.h declares it, and throws ZorvaApiException if its status is not 0.
 *
 * The exception's text holds the call as the source has it, with each run of blanks and line breaks as one blank. The
 * argument names show in the camera's log, and a line break after the opening parenthesis shows there as a blank.
 * Operators' log filters match these texts, so such calls keep their layout. clang-format does not touch them, see
 * WhitespaceSensitiveMacros in .clang-format.
 */
#define ZORVA_API_CALL(call)                                                                                           \
    do {                                                                                                               \
        const zorva_core_status zorvaApiCallStatus = watched::call;                                                    \
        if (zorvaApiCallStatus != 0) {                                                                                 \
            throw zorva::core::ZorvaApiException("Failed zorva api call: " #call, zorvaApiCallStatus);                 \
        }                                                                                                              \
    } while (false)

#endif
