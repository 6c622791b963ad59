// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * A service whose answers a test chooses: late, in pieces, malformed or missing.
 */
#ifndef QUARNSNMP_SUPPORT_SCRIPTED_SERVER_H
#define QUARNSNMP_SUPPORT_SCRIPTED_SERVER_H

#include <atomic>
#include <functional>
#include <map>
#include <mutex>
#include <set>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

namespace support {

/** The server's end of one connection. */
class Peer {
public:
    explicit Peer(int descriptor) : descriptor_(descriptor) {}

    /** Sends octets as they are. */
    void send(std::string_view octets) const;
    /** Ends both directions; octets that were sent still arrive. */
    void hangUp() const;

private:
    int descriptor_;
};

/**
 * Listens on `NAME.sock` of a directory and calls a handler, in a thread of its own, with every line that arrives.
 * `initiator_init` and `initiator_deinit` are answered with success unless a handler for everything is asked for.
 */
class ScriptedServer {
public:
    using Handler = std::function<void(Peer &peer, const std::string &line)>;
    enum class Scope { kCalls, kEverything };

    ScriptedServer(const std::string &directory, const std::string &name, Handler handler, Scope scope = Scope::kCalls);
    /** As above; every request is answered with the same line. */
    ScriptedServer(const std::string &directory, const std::string &name, const std::string &answer);
    /** Closes all connections and the socket. */
    ~ScriptedServer();
    ScriptedServer(const ScriptedServer &) = delete;
    ScriptedServer &operator=(const ScriptedServer &) = delete;

    /** The lines that the handler was called with, without their newlines. */
    std::vector<std::string> requests() const;
    /** Number of requests so far for each of the two initiator operations. */
    unsigned greetings() const;
    unsigned farewells() const;
    /** Connections accepted so far. */
    unsigned connectionCount() const;
    /** Connections that are open now. */
    std::size_t openConnections() const;

    /** Does something with every open connection. */
    void forEachPeer(const std::function<void(Peer &peer)> &action);

    /** Makes the next send of every connected client fail, while the other direction stays open. */
    void refuseInput();

    /** Replaces the handler. */
    void setHandler(Handler handler);

private:
    void run();
    void accept();
    /** Reads from a connection. @return false when it has ended */
    bool receive(int descriptor);
    void handle(int descriptor, const std::string &line);

    const std::string path_;
    const Scope scope_;
    int listener_ = -1;
    int wakeUp_ = -1;

    mutable std::mutex mutex_;
    Handler handler_;
    std::map<int, std::string> connections_; ///< with the incomplete next line
    std::set<int> refusing_;                 ///< connections that nothing is read from any more
    std::vector<std::string> received_;
    unsigned greeted_ = 0;
    unsigned left_ = 0;
    unsigned accepted_ = 0;

    std::thread thread_;
};

} // namespace support

#endif
