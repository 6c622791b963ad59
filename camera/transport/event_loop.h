// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * How the camera waits for something to do.
 */
#ifndef QUARNSNMP_CAMERA_EVENT_LOOP_H
#define QUARNSNMP_CAMERA_EVENT_LOOP_H

#include <boost/asio/io_context.hpp>

namespace camera {

/**
 * Runs the handlers of an io_context until it is stopped or out of work. After each piece of work it looks for more for
 * a short while before it goes to sleep: a client that makes calls one after the other has its next request there
 * within microseconds, while waking a sleeping process costs several times the work of a call.
 */
void runPolling(boost::asio::io_context &io);

} // namespace camera

#endif
