// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * The control program's side of the control socket.
 */
#ifndef QUARNSNMP_CAMERA_CONTROL_CLIENT_H
#define QUARNSNMP_CAMERA_CONTROL_CLIENT_H

#include <chrono>
#include <optional>
#include <stdexcept>
#include <string>

#include <nlohmann/json.hpp>

namespace camera {

/** The camera does not answer; what() is one line that says why. */
class ControlError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/** A connection to a running camera's control socket. */
class ControlClient {
public:
    /** Longest time that connecting, or one answer, may take. */
    static constexpr std::chrono::seconds kPatience{5};

    /** Connects to the camera that runs in a directory. @throws ControlError */
    explicit ControlClient(const std::string &directory);
    ControlClient(const ControlClient &) = delete;
    ControlClient &operator=(const ControlClient &) = delete;
    ~ControlClient();

    /** Sends a command and waits for its answer, an object. @throws ControlError */
    nlohmann::json execute(const nlohmann::json &command);

    /** Waits until a time, with no command under way. @throws ControlError at once when the camera ends before */
    void waitUntil(std::chrono::steady_clock::time_point time) const;

    /** Waits for the next line, for ever. @return nothing when the camera is gone @throws ControlError */
    std::optional<std::string> nextLine();

private:
    using Deadline = std::optional<std::chrono::steady_clock::time_point>;

    void connect(const std::string &path);
    void sendAll(const std::string &text, const Deadline &deadline);
    std::optional<std::string> readLine(const Deadline &deadline);
    /** Waits until the socket is ready; throws when the deadline is over. */
    void wait(short events, const Deadline &deadline) const;

    std::string directory_;
    int socket_ = -1;
    std::string input_;
};

} // namespace camera

#endif
