// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Sockets that belong to one process.
 *
 * The agent forks to become a daemon and to run helper programs. A child that used its parent's connection would read
 * its parent's responses, so a fork closes all these sockets in the child, wherever they are stored.
 */
#ifndef QUARNSNMP_STANDIN_SOCKET_DESCRIPTOR_H
#define QUARNSNMP_STANDIN_SOCKET_DESCRIPTOR_H

#include <cstdint>

namespace standin {

/** Unix-domain stream socket, open or closed. Not thread-safe, except for shutDown(). */
class SocketDescriptor {
public:
    SocketDescriptor() noexcept;
    ~SocketDescriptor();
    SocketDescriptor(const SocketDescriptor &) = delete;
    SocketDescriptor &operator=(const SocketDescriptor &) = delete;

    /** Opens a socket, after closing an open one. @return false, with errno set, on failure */
    bool open() noexcept;

    /** Closes the socket if it is open. */
    void close() noexcept;

    /** Shuts the connection down; a receive or send of another thread returns at once. */
    void shutDown() noexcept;

    bool isOpen() const noexcept {
        return descriptor_ >= 0;
    }

    /** Returns the descriptor, or -1 when closed. */
    int number() const noexcept {
        return descriptor_;
    }

    /** Blocks opening and closing of sockets; called before a fork. */
    static void lockForFork() noexcept;

    /** Ends lockForFork() in the parent. */
    static void unlockInParent() noexcept;

    /** Ends lockForFork() in the child, closes all sockets and increments the generation. */
    static void closeAllInChild() noexcept;

    /** Returns the number of forks between the process that loaded the library and this one. */
    static std::uint64_t generation() noexcept;

private:
    int descriptor_ = -1;
    SocketDescriptor *previous_ = nullptr;
    SocketDescriptor *next_ = nullptr;
};

} // namespace standin

#endif
