// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Sockets that stay with the process that opened them.
 *
 * The agent forks to become a daemon and to run helper programs. A child that kept using its parent's connection would
 * get the parent's answers, so a fork closes all of these sockets in the child, wherever they are held.
 */
#ifndef QUARNSNMP_STANDIN_SOCKET_DESCRIPTOR_H
#define QUARNSNMP_STANDIN_SOCKET_DESCRIPTOR_H

#include <cstdint>

namespace standin {

/** A Unix-domain stream socket, or none. One thread at a time may use it; shutDown() may be called beside that. */
class SocketDescriptor {
public:
    SocketDescriptor() noexcept;
    ~SocketDescriptor();
    SocketDescriptor(const SocketDescriptor &) = delete;
    SocketDescriptor &operator=(const SocketDescriptor &) = delete;

    /** Opens a socket; one that is open already is closed. @return false with errno set when there is none to be had */
    bool open() noexcept;

    /** Closes the socket, if there is one. */
    void close() noexcept;

    /** Ends the connection under a thread that may be using it; that thread's receive and send return at once. */
    void shutDown() noexcept;

    bool isOpen() const noexcept {
        return descriptor >= 0;
    }

    /** The descriptor; -1 when not open. */
    int number() const noexcept {
        return descriptor;
    }

    /** To be called before a fork: no socket opens or closes until one of the next two is called. */
    static void holdForFork() noexcept;

    /** To be called in the parent after a fork. */
    static void resumeInParent() noexcept;

    /** To be called in the child after a fork: closes all sockets and raises the generation. */
    static void resumeInChild() noexcept;

    /** Number of forks between the process that loaded the library and this one. */
    static std::uint64_t generation() noexcept;

private:
    int descriptor = -1;
    SocketDescriptor *previous = nullptr;
    SocketDescriptor *next = nullptr;
};

} // namespace standin

#endif
