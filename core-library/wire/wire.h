// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Line protocol between the stand-in library and the simulated camera.
 *
 * A message is one JSON array on one line. On a service's socket a request is `[operation, target, argument...]` and
 * its response `[status, result...]`; flags are numbers, texts are strings, and a null text is null. On the directory
 * socket, `["get_target_ids", service]` returns `[status, id...]`: status 0 without an id means that the camera does
 * not have the service, any other status that the service exists but does not respond. Responses follow the order of
 * the requests.
 *
 * The protocol is text, because a binary encoding would be no faster here (two context switches dominate a call), and
 * lines can be read in a trace and typed by hand.
 */
#ifndef QUARNSNMP_WIRE_H
#define QUARNSNMP_WIRE_H

#include <cstddef>
#include <string>
#include <string_view>

#include <nlohmann/json.hpp>

namespace wire {

/** Longest message in octets, including its newline; a longer one ends the connection. */
inline constexpr std::size_t kMaximumLine = 65536;

/** Name of the socket that lists the targets of the services. */
inline constexpr const char *kDirectorySocket = "directory";

/** Name of the control program's socket. */
inline constexpr const char *kControlSocket = "control";

/** Returns the directory of the camera's sockets: $QUARNSNMP_CAMERA_DIR, or /run/quarnsnmp-camera by default. */
std::string socketDirectory();

/** Returns the path of a socket. @param name  a service, kDirectorySocket or kControlSocket */
std::string socketPath(const std::string &directory, std::string_view name);

/** Encodes a message as one line, including its newline. Replaces octets that are not valid UTF-8. */
std::string encode(const nlohmann::json &message);

/** Decodes a line without its newline. Never throws; a line that is not JSON yields a value that is_discarded(). */
nlohmann::json decode(std::string_view line);

} // namespace wire

#endif
