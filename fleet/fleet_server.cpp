// SPDX-License-Identifier: Apache-2.0
#include "fleet_server.h"

#include <utility>

#include "json_text.h"
#include "wire.h"

namespace fleet {

using nlohmann::json;

std::string answerTo(std::string_view line, const std::function<json()> &describe) {
    const json request = camera::parseLine(line);
    if (!request.is_object()) {
        return wire::encode({{"ok", false}, {"error", "expected a JSON object on a line"}});
    }
    if (request != json{{"command", "status"}}) {
        return wire::encode({{"ok", false}, {"error", R"(unknown command; a fleet knows {"command":"status"} only)"}});
    }
    return wire::encode({{"ok", true}, {"cameras", describe()}});
}

camera::LineServer makeServer(boost::asio::io_context &io, const std::string &directory,
                              std::function<json()> describe) {
    return {io, wire::socketPath(directory, wire::kControlSocket),
            [describe = std::move(describe)](camera::LineConnection &connection, std::string_view line) {
                connection.send(answerTo(line, describe));
            }};
}

} // namespace fleet
