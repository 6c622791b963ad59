// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * A client of an HTTP server on the loopback interface that sends any octets.
 */
#ifndef QUARNSNMP_PANEL_HTTP_CLIENT_H
#define QUARNSNMP_PANEL_HTTP_CLIENT_H

#include <cstdint>
#include <map>
#include <optional>
#include <string>

#include <nlohmann/json.hpp>

#include "eventually.h"

namespace support {

/** A response, or a status of 0 when the server has closed the connection instead. */
struct HttpResponse {
    int status = 0;
    std::map<std::string, std::string> headers; ///< names in lower case
    std::string body;

    /** Parses the body; null if it is no JSON. */
    nlohmann::json json() const;
};

/** One connection. Each wait ends after the patience of the tests. */
class HttpConnection {
public:
    /** Connects. @throws std::runtime_error */
    explicit HttpConnection(std::uint16_t port);
    ~HttpConnection();
    HttpConnection(const HttpConnection &) = delete;
    HttpConnection &operator=(const HttpConnection &) = delete;

    /** Sends octets; false when the server has closed the connection. */
    bool send(const std::string &octets) const;

    /** Reads a response whose length the server tells. @param hasBody  false for the answer to a HEAD */
    HttpResponse receive(bool hasBody = true);

    /** Reads until the octets received so far contain a text. @return all octets up to its end; nothing without it */
    std::optional<std::string> readUntil(const std::string &text);

    /** Reads exactly so many octets. */
    std::optional<std::string> readOctets(std::size_t count);

    /** Waits until the server closes the connection, and discards what it sends before. @return false without an end */
    bool ends();

    /** Makes the receive buffer as small as possible, before the first octets arrive. */
    void limitBuffer() const;

private:
    bool readMore();

    int socket_;
    std::string input_;
};

/** Sends a request and reads the response, on a connection of its own. */
HttpResponse httpRequest(std::uint16_t port, const std::string &octets);

/** Reads a path. */
HttpResponse httpGet(std::uint16_t port, const std::string &path);

/** Sends JSON with the headers of the page. */
HttpResponse httpPost(std::uint16_t port, const std::string &path, const nlohmann::json &body);

/** Event of a stream of events. */
struct ServerEvent { // NOLINT(bugprone-exception-escape): of the JSON library
    std::string id;
    std::string name;
    nlohmann::json data;
};

/** A page: a connection that reads events. */
class EventStream {
public:
    explicit EventStream(std::uint16_t port, const std::string &query = "");

    /** Reads the next event; nothing at the end of the stream or of the patience. */
    std::optional<ServerEvent> next();

    /** Reads events until one satisfies a predicate. @return nothing after the patience of the tests */
    template <typename Predicate>
    std::optional<ServerEvent> waitFor(Predicate wanted) {
        const auto deadline = kernelTime() + 2 * patient(kPatience);
        while (kernelTime() < deadline) {
            std::optional<ServerEvent> event = next();
            if (!event || wanted(*event)) {
                return event;
            }
        }
        return std::nullopt;
    }

private:
    HttpConnection connection_;
};

} // namespace support

#endif
