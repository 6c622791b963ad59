// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Receiver of warnings at run time.
 */
#ifndef QUARNSNMP_CAMERA_WARNING_HANDLER_H
#define QUARNSNMP_CAMERA_WARNING_HANDLER_H

#include <functional>
#include <string>

namespace camera {

/** Receives one line for each error that does not end the camera. */
using WarningHandler = std::function<void(const std::string &line)>;

} // namespace camera

#endif
