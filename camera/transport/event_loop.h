// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Event loop of the camera.
 */
#ifndef QUARNSNMP_CAMERA_EVENT_LOOP_H
#define QUARNSNMP_CAMERA_EVENT_LOOP_H

#include <boost/asio/io_context.hpp>

namespace camera {

/**
 * Runs the handlers of an io_context until it is stopped or out of work. After each handler, it polls for a short time
 * before it blocks: a client with consecutive calls sends its next request within microseconds, and waking a blocked
 * process costs several times the work of a call.
 */
void runPolling(boost::asio::io_context &io);

} // namespace camera

#endif
