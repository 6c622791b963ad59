// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * HTTP responses.
 */
#ifndef QUARNSNMP_PANEL_HTTP_RESPONSE_H
#define QUARNSNMP_PANEL_HTTP_RESPONSE_H

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include <nlohmann/json.hpp>

namespace panel {

/** Octets that several connections send. */
using SharedText = std::shared_ptr<const std::string>;

/** Makes octets to share. */
SharedText shared(std::string text);

/** Boundary between the parts of the video stream. */
inline constexpr const char *kBoundary = "quarnsnmp-frame";

struct Response {
    int status = 200;
    std::string type; ///< media type; empty without a body
    SharedText body;
    std::vector<std::pair<std::string, std::string>> headers = {}; ///< further ones
};

/** Writes JSON on one line; octets that are not UTF-8 are replaced. */
std::string jsonText(const nlohmann::ordered_json &value);

/** Makes a response with JSON. */
Response jsonResponse(const nlohmann::ordered_json &value, int status = 200);

/** Makes a response with {"error": TEXT}. */
Response errorResponse(int status, const std::string &text);

/** Name of a status, such as "Not Found". */
const char *reasonOf(int status);

/** Writes the head of a response with a body of known length. @param keepsAlive  the connection stays open */
std::string headOf(const Response &response, bool keepsAlive);

/** Writes the head of a response that ends with the connection. */
std::string streamHeadOf(const std::string &type);

/** Writes a frame as a part of the video stream. */
std::string framePart(const std::string &jpeg);

} // namespace panel

#endif
