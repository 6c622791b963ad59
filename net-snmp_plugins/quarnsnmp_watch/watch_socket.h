// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * The socket that takes the module's reports.
 */
#ifndef QUARNSNMP_WATCH_SOCKET_H
#define QUARNSNMP_WATCH_SOCKET_H

#include <string>

#include "observation.h"

namespace watch {

/**
 * Prepares for sending to `watch.sock` in the directory QUARNSNMP_CAMERA_DIR. The receiver may come and go.
 * @return the reason why nothing will be sent; empty if all is well
 */
std::string openSocket();

/** Closes the socket and forgets the reports that wait. */
void closeSocket() noexcept;

/**
 * Sends a report. Never waits: without a receiver the report is dropped. The kernel keeps only a few datagrams for a
 * receiver (net.unix.max_dgram_qlen, often 10), so a report that it does not take waits here, and the agent's main loop
 * sends it some milliseconds later. If too many wait, or the receiver does not read for a second, reports are lost.
 */
void send(const Observation &observation);

} // namespace watch

#endif
