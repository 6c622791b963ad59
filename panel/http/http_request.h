// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * HTTP requests, read from the octets of a connection.
 */
#ifndef QUARNSNMP_PANEL_HTTP_REQUEST_H
#define QUARNSNMP_PANEL_HTTP_REQUEST_H

#include <cstddef>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace panel {

/** Limits of a request in octets; a longer header is answered with 431, a longer body with 413. */
inline constexpr std::size_t kLongestHeader = 8192;
inline constexpr std::size_t kLongestBody = 16384;

/** Names and values, percent-decoded. */
using Query = std::map<std::string, std::string>;

/** A complete request. */
struct Request {
    std::string method;
    bool isHttp10 = false;
    bool keepsAlive = false;
    std::string host; ///< of an absolute target, else of the header; empty without one
    std::string path; ///< percent-decoded, with a leading slash
    Query query;
    std::vector<std::pair<std::string, std::string>> headers; ///< names in lower case
    std::string body;

    /** Returns the value of a header; empty without it. @param name  in lower case */
    std::string_view header(std::string_view name) const;

    /** Returns how often a header occurs. @param name  in lower case */
    std::size_t count(std::string_view name) const;

    /** Returns a value of the query; empty without it. */
    std::string queryValue(const std::string &name) const;
};

/** Reason for the refusal of a request. */
struct HttpError {
    int status = 400;
    std::string text;
};

/** Parts of a request's target. */
struct Target {
    std::string authority; ///< of an absolute target; else empty
    std::string path;
    Query query;
};

/**
 * Splits the target of a request: a path with an optional query, or a URL with the scheme http.
 * @return nothing for any other target, for a wrong percent-encoding and for control characters in the path
 */
std::optional<Target> parseTarget(std::string_view target);

/** Decodes percent-encoding. @return nothing for a "%" without two hexadecimal digits */
std::optional<std::string> percentDecoded(std::string_view text);

/** Reads one request from octets that arrive in any pieces. */
class RequestReader {
public:
    RequestReader();
    ~RequestReader();
    RequestReader(const RequestReader &) = delete;
    RequestReader &operator=(const RequestReader &) = delete;

    enum class Progress { NeedsMore, Complete, Failed };

    /**
     * Takes octets from the front of a buffer. Those behind a complete request stay there.
     * @return NeedsMore until the request is complete
     */
    Progress read(std::string &input);

    /** Tests whether the header is complete. */
    bool hasHeader() const;

    /** Returns the complete request. */
    Request take();

    /** Returns the reason of Failed. */
    const HttpError &error() const;

private:
    struct Parser;

    Progress fail(int status, const std::string &text);
    Progress finish();

    std::unique_ptr<Parser> parser_;
    Request request_;
    HttpError error_;
};

} // namespace panel

#endif
