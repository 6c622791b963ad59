// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Control socket of a fleet.
 */
#ifndef QUARNSNMP_FLEET_FLEET_SERVER_H
#define QUARNSNMP_FLEET_FLEET_SERVER_H

#include <functional>
#include <string>
#include <string_view>

#include <nlohmann/json.hpp>

#include "line_server.h"

namespace fleet {

/**
 * Answers a line of a client: `{"command": "status"}` with `{"ok": true, "cameras": [...]}`, anything else with
 * `{"ok": false, "error": TEXT}`.
 * @param describe  returns the cameras
 * @return a line with its newline
 */
std::string answerTo(std::string_view line, const std::function<nlohmann::json()> &describe);

/** Makes the server of a fleet's directory; it has the name of a camera's control socket. */
camera::LineServer makeServer(boost::asio::io_context &io, const std::string &directory,
                              std::function<nlohmann::json()> describe);

} // namespace fleet

#endif
