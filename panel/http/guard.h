// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Checks of requests against other sites in the user's browser.
 */
#ifndef QUARNSNMP_PANEL_GUARD_H
#define QUARNSNMP_PANEL_GUARD_H

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "http_request.h"

namespace panel {

/** Header that the page sends with each POST. Pages of other sites cannot send it without the server's consent. */
inline constexpr const char *kPanelHeader = "x-quarnsnmp-panel";

/** Returns host and port of HOST:PORT, or [IPV6]:PORT, in lower case. @return nothing for another text */
struct HostAndPort {
    std::string host; ///< an IPv6 address without its brackets
    std::string port; ///< empty without one
};
std::optional<HostAndPort> splitHost(std::string_view text);

/** Tests for "localhost" and for addresses of the loopback interface. */
bool isLoopback(const std::string &host);

/** Decides by which names the server may be addressed. A page of another site that rebinds its name is refused. */
class HostPolicy {
public:
    /** @param names  the listen address and further names */
    explicit HostPolicy(std::vector<std::string> names);

    /** Tests the value of a Host header, with or without a port. */
    bool allows(std::string_view host) const;

private:
    std::vector<std::string> names_;
};

/** Returns the reason for refusing a request before it is looked at any further. */
std::optional<HttpError> refusal(const Request &request, const HostPolicy &hosts);

} // namespace panel

#endif
