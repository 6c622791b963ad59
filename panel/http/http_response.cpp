// SPDX-License-Identifier: Apache-2.0
#include "http_response.h"

#include <algorithm>
#include <array>

namespace panel {

namespace {

struct Reason {
    int status;
    const char *text;
};

constexpr std::array<Reason, 15> kReasons = {{{200, "OK"},
                                              {304, "Not Modified"},
                                              {400, "Bad Request"},
                                              {403, "Forbidden"},
                                              {404, "Not Found"},
                                              {405, "Method Not Allowed"},
                                              {408, "Request Timeout"},
                                              {413, "Content Too Large"},
                                              {415, "Unsupported Media Type"},
                                              {421, "Misdirected Request"},
                                              {429, "Too Many Requests"},
                                              {431, "Request Header Fields Too Large"},
                                              {500, "Internal Server Error"},
                                              {503, "Service Unavailable"},
                                              {505, "HTTP Version Not Supported"}}};

// The page has no inline scripts or styles, loads from this server only, and cannot be put into a frame.
constexpr const char *kSafety =
    "Content-Security-Policy: default-src 'none'; script-src 'self'; style-src 'self'; img-src 'self' data:; "
    "connect-src 'self'; manifest-src 'self'; base-uri 'none'; form-action 'none'; frame-ancestors 'none'\r\n"
    "X-Content-Type-Options: nosniff\r\n"
    "X-Frame-Options: DENY\r\n"
    "Referrer-Policy: no-referrer\r\n"
    "Cross-Origin-Resource-Policy: same-origin\r\n"
    "Cross-Origin-Opener-Policy: same-origin\r\n";

std::string statusLine(int status) {
    return "HTTP/1.1 " + std::to_string(status) + " " + reasonOf(status) + "\r\n";
}

} // namespace

SharedText shared(std::string text) {
    return std::make_shared<const std::string>(std::move(text));
}

std::string jsonText(const nlohmann::ordered_json &value) {
    return value.dump(-1, ' ', false, nlohmann::ordered_json::error_handler_t::replace);
}

Response jsonResponse(const nlohmann::ordered_json &value, int status) {
    return {status, "application/json", shared(jsonText(value) + "\n"), {{"Cache-Control", "no-store"}}};
}

Response errorResponse(int status, const std::string &text) {
    return jsonResponse({{"error", text}}, status);
}

const char *reasonOf(int status) {
    const auto *const found =
        std::find_if(kReasons.begin(), kReasons.end(), [&](const Reason &reason) { return reason.status == status; });
    return found == kReasons.end() ? "Error" : found->text;
}

std::string headOf(const Response &response, bool keepsAlive) {
    constexpr int kNotModified = 304;
    std::string head = statusLine(response.status);
    for (const auto &[name, value] : response.headers) {
        head.append(name).append(": ").append(value).append("\r\n");
    }
    if (!response.type.empty()) {
        head.append("Content-Type: ").append(response.type).append("\r\n");
    }
    if (response.status != kNotModified) {
        const std::size_t length = response.body ? response.body->size() : 0;
        head.append("Content-Length: ").append(std::to_string(length)).append("\r\n");
    }
    return head + kSafety + "Connection: " + (keepsAlive ? "keep-alive" : "close") + "\r\n\r\n";
}

std::string streamHeadOf(const std::string &type) {
    return statusLine(200) + "Content-Type: " + type + "\r\nCache-Control: no-store\r\n" + kSafety +
           "Connection: close\r\n\r\n";
}

std::string framePart(const std::string &jpeg) {
    return std::string("--") + kBoundary +
           "\r\nContent-Type: image/jpeg\r\nContent-Length: " + std::to_string(jpeg.size()) + "\r\n\r\n" + jpeg +
           "\r\n";
}

} // namespace panel
