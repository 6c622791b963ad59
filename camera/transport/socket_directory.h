// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * The directory of the camera's sockets, held by one camera at a time.
 */
#ifndef QUARNSNMP_CAMERA_SOCKET_DIRECTORY_H
#define QUARNSNMP_CAMERA_SOCKET_DIRECTORY_H

#include <stdexcept>
#include <string>
#include <vector>

namespace camera {

/** The transport cannot start; what() is one line that says why. */
class TransportError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/**
 * Holds a directory for one camera, by a lock on a file in it. The kernel ends the lock with the process, so a killed
 * camera leaves files behind but never blocks the next one.
 */
class SocketDirectory {
public:
    /**
     * Takes the directory; creates it, for its owner only, when it is missing. Sockets that a killed camera left behind
     * are removed.
     * @throws TransportError when it cannot be had, or a camera runs in it
     */
    explicit SocketDirectory(std::string path);
    SocketDirectory(const SocketDirectory &) = delete;
    SocketDirectory &operator=(const SocketDirectory &) = delete;

    /** Removes the lock file, and the directory when a camera created it and nothing else is in it. */
    ~SocketDirectory();

    const std::string &path() const {
        return path_;
    }

    /** Path of the socket of a name. */
    std::string socket(const std::string &name) const;

private:
    void lock();
    void noteOrigin(bool created);
    void removeStaleSockets() const;
    void release();

    std::string path_;
    std::string lockPath_;
    int lock_ = -1;
    bool created_ = false;
};

/** Names of all sockets that a camera can have: its services', the directory's and the control program's. */
std::vector<std::string> socketNames();

} // namespace camera

#endif
