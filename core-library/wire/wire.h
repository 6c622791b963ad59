// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * The line protocol between the stand-in library and the simulated camera.
 *
 * A message is one JSON array on one line. On a service's socket a request is `[operation, target, argument...]` and
 * its answer `[status, result...]`; flags travel as numbers, texts as strings (null for a null text). On the directory
 * socket `["get_target_ids", service]` answers `[status, id...]`: status 0 without an id is a service that the camera
 * does not have, any other status one that it has but that does not answer now. Answers come in the order of requests.
 *
 * Text was chosen over a binary encoding because both cost the same here (a call is two context switches), and lines
 * can be read in a trace and typed by hand.
 */
#ifndef QUARNSNMP_WIRE_H
#define QUARNSNMP_WIRE_H

#include <cstddef>
#include <string>
#include <string_view>

#include <nlohmann/json.hpp>

namespace wire {

/** Longest message in octets, its newline included; a longer one ends the connection. */
inline constexpr std::size_t kMaximumLine = 65536;

/** Socket that tells which targets a service has. */
inline constexpr const char *kDirectorySocket = "directory";

/** Socket of the camera's control program. */
inline constexpr const char *kControlSocket = "control";

/** Directory of the camera's sockets: the environment's QUARNSNMP_CAMERA_DIR, or /run/quarnsnmp-camera. */
std::string socketDirectory();

/** Path of a service's, the directory's or the control socket. */
std::string socketPath(const std::string &directory, std::string_view name);

/** Writes a message as one line, newline included; octets that are not UTF-8 are replaced. */
std::string encode(const nlohmann::json &message);

/** Reads a line without its newline. Never throws; the value is_discarded() when the line is not JSON. */
nlohmann::json decode(std::string_view line);

} // namespace wire

#endif
