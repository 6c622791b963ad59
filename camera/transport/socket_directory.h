// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Directory of the camera's sockets, reserved for one camera at a time.
 */
#ifndef QUARNSNMP_CAMERA_SOCKET_DIRECTORY_H
#define QUARNSNMP_CAMERA_SOCKET_DIRECTORY_H

#include <stdexcept>
#include <string>
#include <vector>

namespace camera {

/** Error at the start of the transport; what() is a message of one line. */
class TransportError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/**
 * Reservation of a directory for one camera, by a lock on a file in it. The kernel releases the lock with the process:
 * a killed camera leaves files behind but never blocks the next one.
 */
class SocketDirectory {
public:
    /**
     * Reserves the directory, and removes the sockets of a killed camera. Creates a missing directory with access for
     * its owner only.
     * @param user  name of what reserves the directory, for the message that another one does already
     * @throws TransportError when the directory is inaccessible, unsafe (wire::unsafeDirectory()) or in use by another
     *     camera
     */
    explicit SocketDirectory(std::string path, const std::string &user = "camera");
    SocketDirectory(const SocketDirectory &) = delete;
    SocketDirectory &operator=(const SocketDirectory &) = delete;

    /** Removes the lock file, and the directory if a camera created it and it is empty. */
    ~SocketDirectory();

    const std::string &path() const {
        return path_;
    }

    /** Returns the path of the socket of a name. */
    std::string socket(const std::string &name) const;

private:
    void lock(const std::string &user);
    void noteOrigin(bool created);
    void removeStaleSockets() const;
    void release();

    std::string path_;
    std::string lockPath_;
    int lock_ = -1;
    bool created_ = false;
};

/** Returns the names of all possible sockets: those of the services, the directory socket and the control socket. */
std::vector<std::string> socketNames();

} // namespace camera

#endif
