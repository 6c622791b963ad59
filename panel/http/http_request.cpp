// SPDX-License-Identifier: Apache-2.0
#include "http_request.h"

#include <algorithm>
#include <cctype>

#include <boost/beast/http/parser.hpp>
#include <boost/beast/http/string_body.hpp>

namespace panel {

namespace http = boost::beast::http;

namespace {

constexpr int kBadRequest = 400;
constexpr int kTooLarge = 413;
constexpr int kHeaderTooLarge = 431;
constexpr int kVersionNotSupported = 505;
constexpr unsigned kVersion10 = 10;
constexpr unsigned kVersion11 = 11;

std::string lowerCase(boost::beast::string_view text) {
    std::string lower(text.data(), text.size());
    std::transform(lower.begin(), lower.end(), lower.begin(),
                   [](unsigned char character) { return static_cast<char>(std::tolower(character)); });
    return lower;
}

} // namespace

struct RequestReader::Parser : http::request_parser<http::string_body> {
    Parser() {
        header_limit(kLongestHeader);
        body_limit(kLongestBody);
        eager(true);
    }
};

std::string_view Request::header(std::string_view name) const {
    const auto found =
        std::find_if(headers.begin(), headers.end(), [&](const auto &header) { return header.first == name; });
    return found == headers.end() ? std::string_view() : std::string_view(found->second);
}

std::size_t Request::count(std::string_view name) const {
    return static_cast<std::size_t>(
        std::count_if(headers.begin(), headers.end(), [&](const auto &header) { return header.first == name; }));
}

std::string Request::queryValue(const std::string &name) const {
    const auto found = query.find(name);
    return found == query.end() ? "" : found->second;
}

RequestReader::RequestReader() : parser_(std::make_unique<Parser>()) {}
RequestReader::~RequestReader() = default;

RequestReader::Progress RequestReader::read(std::string &input) {
    while (!parser_->is_done()) {
        boost::system::error_code error;
        const std::size_t used = parser_->put(boost::asio::buffer(input), error);
        input.erase(0, used);
        if (error == http::error::header_limit) {
            return fail(kHeaderTooLarge, "the header is longer than " + std::to_string(kLongestHeader) + " octets");
        }
        if (error == http::error::body_limit) {
            return fail(kTooLarge, "the body is longer than " + std::to_string(kLongestBody) + " octets");
        }
        if (error == http::error::bad_version) {
            return fail(kVersionNotSupported, "the server supports HTTP/1.0 and HTTP/1.1");
        }
        if (error && error != http::error::need_more) {
            return fail(kBadRequest, "not an HTTP request: " + error.message());
        }
        if (error == http::error::need_more || used == 0 || input.empty()) {
            break;
        }
    }
    return parser_->is_done() ? finish() : Progress::NeedsMore;
}

bool RequestReader::hasHeader() const {
    return parser_->is_header_done();
}

RequestReader::Progress RequestReader::finish() {
    auto &message = parser_->get();
    if (message.version() != kVersion10 && message.version() != kVersion11) {
        return fail(kVersionNotSupported, "the server supports HTTP/1.0 and HTTP/1.1");
    }
    const std::string_view target(message.target().data(), message.target().size());
    const std::optional<Target> parts = parseTarget(target);
    if (!parts) {
        return fail(kBadRequest, "the target is neither a path nor an http URL");
    }
    request_.method = std::string(message.method_string());
    request_.isHttp10 = message.version() == kVersion10;
    request_.keepsAlive = message.keep_alive();
    for (const auto &field : message) {
        request_.headers.emplace_back(lowerCase(field.name_string()), std::string(field.value()));
    }
    if (request_.count("host") > 1 || (request_.count("host") == 0 && !request_.isHttp10)) {
        return fail(kBadRequest, "the request needs one Host header");
    }
    request_.host = parts->authority.empty() ? std::string(request_.header("host")) : parts->authority;
    request_.path = parts->path;
    request_.query = parts->query;
    request_.body = std::move(message.body());
    return Progress::Complete;
}

Request RequestReader::take() {
    return std::move(request_);
}

RequestReader::Progress RequestReader::fail(int status, const std::string &text) {
    error_ = {status, text};
    return Progress::Failed;
}

const HttpError &RequestReader::error() const {
    return error_;
}

} // namespace panel
