// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Makes memory or buffers run out. Linking this in replaces functions of the C and C++ libraries, also for the library
 * under test; they behave as ever outside the lifetime of the objects below and in other threads.
 */
#ifndef QUARNSNMP_STANDIN_SHORTAGE_H
#define QUARNSNMP_STANDIN_SHORTAGE_H

/** Resources that can run out. */
enum class Resource {
    kAllocations, ///< operator new
    kTextCopies,  ///< strdup()
    kSockets      ///< socket()
};

/** During its lifetime one request of this thread fails, after a number of successful ones. */
class Shortage {
public:
    Shortage(Resource resource, int successes) noexcept;
    ~Shortage();
    Shortage(const Shortage &) = delete;
    Shortage &operator=(const Shortage &) = delete;

    /** True once a request has failed. */
    bool hasStruck() const noexcept;

private:
    const Resource resource_;
};

/** During its lifetime the sockets that this thread opens have the smallest send buffer there is. */
class SmallSendBuffers {
public:
    SmallSendBuffers() noexcept;
    ~SmallSendBuffers();
    SmallSendBuffers(const SmallSendBuffers &) = delete;
    SmallSendBuffers &operator=(const SmallSendBuffers &) = delete;
};

#endif
