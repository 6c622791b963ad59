// SPDX-License-Identifier: Apache-2.0
#include "guard.h"

#include <algorithm>
#include <cctype>
#include <utility>

#include <boost/asio/ip/address.hpp>

namespace panel {

namespace {

constexpr int kForbidden = 403;
constexpr int kUnsupportedType = 415;

std::string lowerCase(std::string_view text) {
    std::string lower(text);
    std::transform(lower.begin(), lower.end(), lower.begin(),
                   [](unsigned char character) { return static_cast<char>(std::tolower(character)); });
    return lower;
}

bool isJson(std::string_view type) {
    const std::string name = lowerCase(type.substr(0, type.find(';')));
    return name.substr(0, name.find_last_not_of(" \t") + 1) == "application/json";
}

} // namespace

std::optional<HostAndPort> splitHost(std::string_view text) {
    HostAndPort result;
    if (!text.empty() && text.front() == '[') {
        const std::size_t end = text.find(']');
        if (end == std::string_view::npos) {
            return std::nullopt;
        }
        result.host = lowerCase(text.substr(1, end - 1));
        text.remove_prefix(end + 1);
    } else {
        const std::size_t colon = std::min(text.find(':'), text.size());
        result.host = lowerCase(text.substr(0, colon));
        text.remove_prefix(colon);
    }
    if (!text.empty()) {
        constexpr std::size_t kLongestPort = 5;
        const std::string_view port = text.substr(1);
        const bool isNumber = port.find_first_not_of("0123456789") == std::string_view::npos;
        if (text.front() != ':' || port.empty() || port.size() > kLongestPort || !isNumber) {
            return std::nullopt;
        }
        result.port = port;
    }
    return result.host.empty() ? std::nullopt : std::optional(result);
}

bool isLoopback(const std::string &host) {
    boost::system::error_code error;
    const auto address = boost::asio::ip::make_address(host, error);
    return error ? host == "localhost" : address.is_loopback();
}

HostPolicy::HostPolicy(std::vector<std::string> names) : names_(std::move(names)) {
    std::transform(names_.begin(), names_.end(), names_.begin(), lowerCase);
}

bool HostPolicy::allows(std::string_view host) const {
    const std::optional<HostAndPort> parts = splitHost(host);
    return parts && (isLoopback(parts->host) || std::find(names_.begin(), names_.end(), parts->host) != names_.end());
}

std::optional<HttpError> refusal(const Request &request, const HostPolicy &hosts) {
    // A browser always sends a Host header. Simple players of the video stream may not, with HTTP/1.0.
    const bool isPost = request.method == "POST";
    const bool hasNoHost = request.isHttp10 && request.host.empty() && request.count("host") == 0;
    if (!(hasNoHost && !isPost) && !hosts.allows(request.host)) {
        return HttpError{kForbidden, "this server is not called '" + request.host + "'; see --host"};
    }
    if (!isPost) {
        return std::nullopt;
    }
    if (request.header(kPanelHeader) != "1") {
        return HttpError{kForbidden, "a POST needs the header X-Quarnsnmp-Panel: 1"};
    }
    if (request.count("content-type") != 1 || !isJson(request.header("content-type"))) {
        return HttpError{kUnsupportedType, "a POST needs the content type application/json"};
    }
    return std::nullopt;
}

} // namespace panel
