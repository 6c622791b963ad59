// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Client of the control socket.
 */
#ifndef QUARNSNMP_CAMERA_CONTROL_CLIENT_H
#define QUARNSNMP_CAMERA_CONTROL_CLIENT_H

#include <chrono>
#include <optional>
#include <stdexcept>
#include <string>

#include <nlohmann/json.hpp>

namespace camera {

/** Communication error; what() is a message of one line. */
class ControlError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/** Connection to the control socket of a running camera. */
class ControlClient {
public:
    /** Time limit of the connection attempt, and of each answer. */
    static constexpr std::chrono::seconds kPatience{5};

    /**
     * Connects to the camera of a directory.
     * @param peer  name of what listens there, for messages
     * @throws ControlError
     */
    explicit ControlClient(const std::string &directory, const std::string &peer = "camera");
    ControlClient(const ControlClient &) = delete;
    ControlClient &operator=(const ControlClient &) = delete;
    ~ControlClient();

    /** Sends a command and returns its answer, a JSON object. @throws ControlError */
    nlohmann::json execute(const nlohmann::json &command);

    /** Waits until a time. No command may be pending. @throws ControlError as soon as the camera ends */
    void waitUntil(std::chrono::steady_clock::time_point time) const;

    /** Waits for the next line without a time limit. @return nothing after the end of the camera @throws ControlError
     */
    std::optional<std::string> nextLine();

private:
    using Deadline = std::optional<std::chrono::steady_clock::time_point>;

    void connect(const std::string &path, const std::string &peer);
    void sendAll(const std::string &text, const Deadline &deadline);
    std::optional<std::string> readLine(const Deadline &deadline);
    /** Waits until the socket is ready. @throws ControlError at the deadline */
    void wait(short events, const Deadline &deadline) const;

    std::string directory_;
    std::string peer_; ///< with its directory, such as "camera in /run/quarnsnmp-camera"
    int socket_ = -1;
    std::string input_;
};

} // namespace camera

#endif
