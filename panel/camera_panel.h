// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Everything about one camera, for the pages that show it.
 */
#ifndef QUARNSNMP_PANEL_CAMERA_PANEL_H
#define QUARNSNMP_PANEL_CAMERA_PANEL_H

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <list>
#include <map>
#include <memory>
#include <optional>
#include <string>

#include <boost/asio/io_context.hpp>
#include <boost/asio/steady_timer.hpp>
#include <boost/asio/thread_pool.hpp>
#include <nlohmann/json.hpp>

#include "agent_client.h"
#include "camera_link.h"
#include "event_log.h"
#include "frame_source.h"
#include "notification_receiver.h"
#include "object_watch.h"
#include "scenario_player.h"
#include "view_angles.h"
#include "watch_receiver.h"

namespace panel {

/** Size and rate of the frames. */
struct FrameFormat {
    int width = 1280;
    int height = 720;
    int framesPerSecond = 15;
};

/** A camera and its agent. */
struct CameraSettings {
    std::size_t id = 0;
    std::string directory;
    AgentAddress agent;
    std::string traps;       ///< address of the receiver of traps; empty without one
    std::string trapProblem; ///< reason for having none
};

/**
 * Collects what is known about a camera and passes it to the pages. The camera and the agent are asked only while a
 * page is open. All functions belong to the thread of the io_context.
 */
class CameraPanel : public std::enable_shared_from_this<CameraPanel> {
public:
    using Done = AgentClient::Done;

    CameraPanel(boost::asio::io_context &io, boost::asio::thread_pool &pool, CameraSettings settings,
                std::unique_ptr<FramePainter> painter, const FrameFormat &format);

    void start();
    void stop();

    /** Describes the camera in a list. */
    nlohmann::ordered_json summary() const;

    /** Sends events to a page. @param lastId  log entries up to this one are not sent */
    std::shared_ptr<void> openPage(const std::weak_ptr<Watcher> &watcher, std::uint64_t lastId);

    FrameSource &frames();
    ScenarioPlayer &scenarios();
    const EventLog &log() const;

    /** Carries out an action of a page. @return false when too many wait @throws ActionError */
    bool act(const nlohmann::json &body, const Done &done);

    /** Sends a command to the camera itself. @param done  gets the answer of the API; null without a camera */
    void control(const nlohmann::json &command, const Done &done);

    /** Returns the start of the control program's command line for this camera. */
    std::string controlLine() const;

    /** Returns the host of the agent, as its address has it. */
    std::string agentHost() const;

    /** Takes a trap that the agent of this camera may have sent. */
    void takeTrap(const snmp::Received &trap);

private:
    struct Page {
        std::weak_ptr<Watcher> watcher;
        std::string client; ///< name of the page in its actions
    };
    struct OpenPage;

    void takeReport(const WatchReport &report);
    void takeEvent(const nlohmann::json &event);
    void addLog(const nlohmann::ordered_json &entry);
    void notice(const std::string &text, bool ok);
    void noteMove(const ActionPlan &plan, const std::string &client);
    void closePage(const std::string &client);
    void tick();
    void poll();
    void sendState(bool always);
    void sendAgent(bool always);
    nlohmann::ordered_json stateJson() const;
    nlohmann::ordered_json hello(const std::string &client) const;
    nlohmann::ordered_json viewJson() const;
    std::optional<ViewAngles> angles() const;
    void broadcast(const std::string &event, const nlohmann::ordered_json &data);
    bool hasPages();

    CameraSettings settings_;
    FrameFormat format_;
    EventLog log_;
    std::shared_ptr<CameraLink> link_;
    std::shared_ptr<AgentClient> agent_;
    std::shared_ptr<ObjectWatch> objects_;
    std::shared_ptr<WatchReceiver> watch_;
    std::shared_ptr<FrameSource> frames_;
    std::shared_ptr<ScenarioPlayer> scenarios_;
    std::list<Page> pages_;
    std::uint64_t lastClient_ = 0;
    std::map<std::string, std::string> movers_; ///< axes that move until stopped, and the page that moves them
    boost::asio::steady_timer timer_;
    bool isPolling_ = false;
    std::string lastState_; ///< without its time
    std::chrono::steady_clock::time_point stateSent_{};
    std::string lastAgent_;
    std::chrono::steady_clock::time_point agentSent_{};
    std::uint64_t ticks_ = 0;
};

} // namespace panel

#endif
