// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Connection to the control socket of a camera, on an io_context.
 */
#ifndef QUARNSNMP_PANEL_CAMERA_LINK_H
#define QUARNSNMP_PANEL_CAMERA_LINK_H

#include <chrono>
#include <cstddef>
#include <deque>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <boost/asio/io_context.hpp>
#include <boost/asio/local/stream_protocol.hpp>
#include <boost/asio/steady_timer.hpp>
#include <nlohmann/json.hpp>

#include "camera_state.h"

namespace panel {

/** What is known about a camera. */
enum class CameraStatus {
    Unknown, ///< it has not been asked yet
    Up,      ///< its last answer is the newest one that can be expected
    Restarting,
    Gone ///< no connection, or no answer
};

/** Name of a status in JSON. */
const char *statusName(CameraStatus status);

/** Last known state of a camera. */
struct CameraReport {
    CameraStatus status = CameraStatus::Unknown;
    std::chrono::system_clock::time_point since{}; ///< of the status
    std::string message;                           ///< reason of Gone
    std::shared_ptr<const nlohmann::json> state;   ///< as the camera wrote it; null before the first answer
    std::shared_ptr<const CameraState> parsed;     ///< the same; null before the first answer
    std::chrono::steady_clock::time_point read{};  ///< time of the state
};

/**
 * Client of a camera's control socket. It follows the camera's events all the time, connects again when the camera
 * comes back, and asks for the state on request only. All functions belong to the thread of the io_context.
 */
class CameraLink : public std::enable_shared_from_this<CameraLink> {
public:
    using EventHandler = std::function<void(const nlohmann::json &event)>;
    using Notice = std::function<void()>;
    using Answer = std::function<void(const std::optional<nlohmann::json> &answer)>;

    /** Time after which a camera counts as gone that does not answer. */
    static constexpr std::chrono::milliseconds kPatience{1000};

    /**
     * @param directory  directory of the camera's sockets
     * @param onEvent    called with each event
     * @param onStatus   called after each change of the status
     */
    CameraLink(boost::asio::io_context &io, std::string directory, EventHandler onEvent, Notice onStatus);

    /** Connects for the first time. */
    void start();

    /** Closes the connection for ever. */
    void stop();

    /** Asks for the state. @param done  called when report() has it, or when the camera does not answer in time */
    void refresh(Notice done);

    /** Sends a control command. @param answer  called with the camera's answer, or with nothing without one */
    void execute(const nlohmann::json &command, Answer answer);

    const CameraReport &report() const;
    const std::string &directory() const;

private:
    using Socket = boost::asio::local::stream_protocol::socket;

    void connect();
    void connected();
    void readMore();
    void takeLines();
    void takeLine(const std::string &line);
    void takeState(const nlohmann::json &answer);
    void sendNext();
    void send(const std::string &line, Answer answer);
    void fail(const std::string &reason);
    void retryLater();
    void enter(CameraStatus status, const std::string &message);
    void watchAnswers();

    boost::asio::io_context &io_;
    std::string directory_;
    EventHandler onEvent_;
    Notice onStatus_;
    CameraReport report_;
    std::shared_ptr<Socket> socket_; ///< null without a connection; shared with the operations under way
    boost::asio::steady_timer retry_;
    boost::asio::steady_timer patience_;
    std::string input_;
    std::array<char, 16384> chunk_{};
    std::deque<std::string> output_; ///< lines to write; the first one is being written
    std::deque<Answer> answers_;     ///< in the order of the commands sent
    std::vector<Notice> refreshed_;  ///< callers of refresh() that wait for the same answer
    bool isStopped_ = false;
};

} // namespace panel

#endif
