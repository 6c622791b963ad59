// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * A failed core-library call as an exception, and the macro that raises it.
 */
#ifndef QUARNSNMP_ZORVA_API_EXCEPTION_H
#define QUARNSNMP_ZORVA_API_EXCEPTION_H

#include <stdexcept>
#include <string>

#include "zorva-core.h"

namespace zorva {
namespace core {

/** A core-library call that failed. what() is the message, then the status text in parentheses. */
class ZorvaApiException : public std::runtime_error {
public:
    /**
     * @param message  what failed
     * @param status   what the call returned
     */
    ZorvaApiException(const std::string &message, zorva_core_status status);
    ~ZorvaApiException() override;

    /** Text of the exception: `message (status text)`. */
    static std::string formatMessage(const std::string &message, zorva_core_status status);

    zorva_core_status status; ///< what the call returned
};

} // namespace core
} // namespace zorva

/** Logs what an exception says at error level. */
void LogFailure(const std::exception &failure);

/**
 * Makes a core-library call and throws ZorvaApiException when its status is not 0.
 *
 * The exception's text holds the call as the source has it, with each run of blanks and line breaks as one blank. The
 * argument names show in the camera's log, and a line break after the opening parenthesis shows there as a blank.
 * Operators' log filters match these texts, so such calls keep their layout. clang-format does not touch them, see
 * WhitespaceSensitiveMacros in .clang-format.
 */
#define ZORVA_API_CALL(call)                                                                                           \
    do {                                                                                                               \
        const zorva_core_status zorvaApiCallStatus = (call);                                                           \
        if (zorvaApiCallStatus != 0) {                                                                                 \
            throw zorva::core::ZorvaApiException("Failed zorva api call: " #call, zorvaApiCallStatus);                 \
        }                                                                                                              \
    } while (false)

#endif
