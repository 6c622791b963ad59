// SPDX-License-Identifier: Apache-2.0
#include "camera_panel.h"

#include <cstdio>
#include <exception>
#include <utility>

#include "axes.h"
#include "command_text.h"
#include "format_value.h"
#include "log_entries.h"
#include "octet_parts.h"
#include "page_events.h"
#include "shell_word.h"
#include "time_text.h"
#include "view.h"

namespace panel {

namespace asio = boost::asio;
using nlohmann::json;
using nlohmann::ordered_json;
using std::chrono::milliseconds;
using std::chrono::steady_clock;

namespace {

constexpr milliseconds kTick{100};
constexpr milliseconds kHeartbeat{1000};
constexpr milliseconds kAgentHeartbeat{2000};

/** Ticks between two comments that keep a stream of events alive. */
constexpr std::uint64_t kPingTicks = 50;

/** Age of a state that is no longer the present one. */
constexpr milliseconds kFreshState{2000};

ObjectAccess accessOf(const WatchReport &report) {
    const ptz::Instance instance = ptz::instanceAt(report.value.oid);
    return {timeText(report.time), report.sender, report.principal, plainValue(instance, report.value),
            ptz::formatValue(instance, report.value, ptz::ByteOrder::LowFirst)};
}

} // namespace

/** Keeps a page in the list for as long as its connection lives. */
struct CameraPanel::OpenPage {
    std::weak_ptr<CameraPanel> panel;
    std::string client;

    OpenPage(std::weak_ptr<CameraPanel> panelOfPage, std::string name)
        : panel(std::move(panelOfPage)), client(std::move(name)) {}
    OpenPage(const OpenPage &) = delete;
    OpenPage &operator=(const OpenPage &) = delete;
    ~OpenPage() {
        try {
            if (const std::shared_ptr<CameraPanel> open = panel.lock()) {
                open->closePage(client);
            }
        } catch (const std::exception &error) {
            std::fprintf(stderr, "quarnsnmp-panel: cannot stop the camera of a closed page: %s\n", error.what());
        }
    }
};

CameraPanel::CameraPanel(asio::io_context &io, asio::thread_pool &pool, CameraSettings settings,
                         std::unique_ptr<FramePainter> painter, const FrameFormat &format)
    : settings_(std::move(settings)), format_(format),
      link_(std::make_shared<CameraLink>(
          io, settings_.directory, [this](const json &event) { takeEvent(event); },
          [this] {
              const CameraReport &report = link_->report();
              const bool isUp = report.status == CameraStatus::Up;
              notice(isUp ? "the camera answers" : "the camera: " + statusText(report), isUp);
              sendState(true);
          })),
      agent_(std::make_shared<AgentClient>(io, settings_.agent)),
      objects_(std::make_shared<ObjectWatch>(io, agent_,
                                             [this](const ordered_json &rows) {
                                                 broadcast("objects", {{"objects", rows}});
                                             })),
      watch_(std::make_shared<WatchReceiver>(io, settings_.directory,
                                             [this](const WatchReport &report) { takeReport(report); })),
      frames_(std::make_shared<FrameSource>(io, pool, link_, std::move(painter), format.framesPerSecond)),
      scenarios_(std::make_shared<ScenarioPlayer>(
          io, settings_.directory,
          [this](const ScenarioProgress &progress) { broadcast("scenario", scenarioJson(progress)); })),
      timer_(io) {}

void CameraPanel::start() {
    link_->start();
    watch_->start();
}

void CameraPanel::stop() {
    pages_.clear();
    timer_.cancel();
    objects_->setActive(false);
    frames_->stop();
    scenarios_->stop();
    watch_->stop();
    link_->stop();
}

FrameSource &CameraPanel::frames() {
    return *frames_;
}

ScenarioPlayer &CameraPanel::scenarios() {
    return *scenarios_;
}

const EventLog &CameraPanel::log() const {
    return log_;
}

ordered_json CameraPanel::summary() const {
    const CameraReport &report = link_->report();
    return {{"id", settings_.id},
            {"name", report.parsed ? report.parsed->name : ""},
            {"directory", settings_.directory},
            {"agent", settings_.agent.agent},
            {"status", statusName(report.status)},
            {"size", {format_.width, format_.height}},
            {"fps", format_.framesPerSecond}};
}

ordered_json CameraPanel::hello(const std::string &client) const {
    ordered_json hello = summary();
    hello["version"] = QUARNSNMP_VERSION;
    hello["client"] = client;
    hello["log"] = {{"limit", EventLog::kLimit}, {"held", log_.entries().size()}};
    hello["watch"] = {
        {"listening", watch_->isListening()}, {"requests", watch_->received()}, {"problem", watch_->problem()}};
    hello["traps"] = {{"listening", settings_.traps}, {"error", settings_.trapProblem}};
    hello["ptzctl"] = "ptzctl -H " + settings_.agent.agent;
    hello["camctl"] = controlLine();
    return hello;
}

std::string CameraPanel::agentHost() const {
    return settings_.agent.agent.substr(0, settings_.agent.agent.rfind(':'));
}

std::string CameraPanel::controlLine() const {
    return "quarnsnmp-camctl --directory " + shellWord(settings_.directory);
}

std::shared_ptr<void> CameraPanel::openPage(const std::weak_ptr<Watcher> &watcher, std::uint64_t lastId) {
    const std::string client = "page-" + std::to_string(++lastClient_);
    const std::shared_ptr<Watcher> page = watcher.lock();
    if (!page) {
        return nullptr;
    }
    const auto send = [&](const std::string &event, const ordered_json &data) {
        page->send(eventText(event, jsonText(data)));
    };
    send("hello", hello(client));
    send("camera", stateJson());
    send("agent", agentJson(agent_->report()));
    send("objects", {{"objects", objects_->rows()}});
    send("scenario", scenarioJson(scenarios_->progress()));
    page->send(logText(log_, lastId));
    const bool isFirst = !hasPages();
    pages_.push_back({watcher, client});
    if (isFirst) {
        objects_->setActive(true);
        tick();
    }
    return std::make_shared<OpenPage>(weak_from_this(), client);
}

void CameraPanel::closePage(const std::string &client) {
    pages_.remove_if([&](const Page &page) { return page.client == client; });
    std::vector<std::string> axes;
    for (const auto &[axis, mover] : movers_) {
        if (mover == client) {
            axes.push_back(axis);
        }
    }
    if (!axes.empty()) {
        // Nobody is left who could stop the camera.
        notice("the page that moved the camera is gone; the panel stops it", false);
        act({{"action", "stop"}, {"axes", axes}}, [](const ordered_json &) {});
    }
    if (!hasPages()) {
        objects_->setActive(false);
    }
}

bool CameraPanel::hasPages() {
    pages_.remove_if([](const Page &page) { return page.watcher.expired(); });
    return !pages_.empty();
}

void CameraPanel::broadcast(const std::string &event, const ordered_json &data) {
    if (!hasPages()) {
        return;
    }
    const SharedText text = eventText(event, jsonText(data));
    for (const Page &page : std::list<Page>(pages_)) {
        if (const std::shared_ptr<Watcher> watcher = page.watcher.lock()) {
            watcher->send(text);
        }
    }
}

bool CameraPanel::act(const json &body, const Done &done) {
    json action = body;
    const json client = body.is_object() ? body.value("client", json()) : json();
    if (action.is_object()) {
        action.erase("client");
    }
    const ActionPlan plan = planAction(action, angles());
    noteMove(plan, client.is_string() ? client.get<std::string>() : "");
    return agent_->perform(plan, done);
}

void CameraPanel::noteMove(const ActionPlan &plan, const std::string &client) {
    for (const snmp::Varbind &varbind : plan.varbinds) {
        const ptz::Axis *const axis = ptz::axisAt(varbind.oid);
        if (axis == nullptr || plan.operation != snmp::Operation::Set) {
            continue;
        }
        movers_.erase(axis->name);
        const bool isContinuous =
            !varbind.octets.empty() && varbind.octets.front() == static_cast<char>(ptz::Mode::Continuous);
        if (isContinuous && !client.empty()) {
            movers_[axis->name] = client;
        }
    }
}

void CameraPanel::control(const json &command, const Done &done) {
    link_->execute(command, [this, command, done](const std::optional<json> &answer) {
        if (!answer) {
            done(nullptr);
            return;
        }
        const std::optional<std::string> refusal = camera::refusalIn(*answer);
        done({{"ok", !refusal},
              {"message", refusal ? *refusal : camera::doneText(command)},
              {"line", controlLine() + " " + controlArguments(command)}});
    });
}

void CameraPanel::takeReport(const WatchReport &report) {
    if (report.lost > 0) {
        notice(std::to_string(report.lost) + " reports of requests were lost", false);
    }
    const bool isDone = report.outcome == "noError";
    if (!report.isWrite() && agent_->isOwnReading(report.sender)) {
        return; // of the object table
    }
    if (isDone) {
        objects_->noteAccess(report.value.oid, report.isWrite(), accessOf(report));
    }
    addLog(requestEntry(report));
}

void CameraPanel::takeEvent(const json &event) {
    addLog(eventEntry(event));
}

void CameraPanel::takeTrap(const snmp::Received &trap) {
    const ordered_json entry = trapEntry(trap);
    if (entry["name"] == "nsNotifyRestart" || entry["name"] == "coldStart") {
        objects_->forgetRows();
    }
    addLog(entry);
}

void CameraPanel::notice(const std::string &text, bool ok) {
    addLog(noticeEntry(text, ok));
}

void CameraPanel::addLog(const ordered_json &entry) {
    const EventLog::Entry &added = log_.add(entry);
    if (!hasPages()) {
        return;
    }
    const SharedText text = eventText("log", *added.json, added.id);
    for (const Page &page : std::list<Page>(pages_)) {
        if (const std::shared_ptr<Watcher> watcher = page.watcher.lock()) {
            watcher->send(text);
        }
    }
}

void CameraPanel::tick() {
    if (!hasPages()) {
        return;
    }
    poll();
    sendAgent(false);
    if (++ticks_ % kPingTicks == 0) {
        for (const Page &page : pages_) {
            if (const std::shared_ptr<Watcher> watcher = page.watcher.lock()) {
                watcher->send(shared(": ping\n\n"));
            }
        }
    }
    timer_.expires_after(kTick);
    timer_.async_wait([weak = weak_from_this()](const boost::system::error_code &cancelled) {
        const std::shared_ptr<CameraPanel> self = weak.lock();
        if (!cancelled && self) {
            self->tick();
        }
    });
}

void CameraPanel::poll() {
    sendState(false);
    if (isPolling_) {
        return;
    }
    isPolling_ = true;
    link_->refresh([weak = weak_from_this()] {
        if (const std::shared_ptr<CameraPanel> self = weak.lock()) {
            self->isPolling_ = false;
            self->sendState(false);
        }
    });
}

void CameraPanel::sendState(bool always) {
    const CameraReport &report = link_->report();
    json state = report.state ? *report.state : json();
    if (state.is_object()) {
        state.erase("time");
    }
    const std::string text = std::string(statusName(report.status)) + report.message + state.dump();
    const steady_clock::time_point now = steady_clock::now();
    if (!always && text == lastState_ && now - stateSent_ < kHeartbeat) {
        return;
    }
    lastState_ = text;
    stateSent_ = now;
    broadcast("camera", stateJson());
}

void CameraPanel::sendAgent(bool always) {
    const AgentReport report = agent_->report();
    const std::string text = report.status + report.message + std::to_string(report.queue);
    const steady_clock::time_point now = steady_clock::now();
    const bool hasChanged = text != lastAgent_;
    if (!always && !hasChanged && now - agentSent_ < kAgentHeartbeat) {
        return;
    }
    if (hasChanged && lastAgent_.rfind("silent", 0) == 0 && report.status == "up") {
        objects_->forgetRows();
        notice("the agent answers again", true);
    } else if (hasChanged && report.status == "silent" && lastAgent_.rfind("silent", 0) != 0) {
        notice("the agent does not answer", false);
    }
    lastAgent_ = text;
    agentSent_ = now;
    broadcast("agent", agentJson(report));
}

ordered_json CameraPanel::stateJson() const {
    const CameraReport &report = link_->report();
    const auto age = steady_clock::now() - report.read;
    const bool hasState = report.state != nullptr;
    ordered_json result = {{"status", statusName(report.status)},
                           {"since", timeText(report.since)},
                           {"ageMs", nullptr},
                           {"stale", report.status != CameraStatus::Up || age > kFreshState},
                           {"message", report.message},
                           {"state", nullptr},
                           {"view", nullptr}};
    if (hasState) {
        result["ageMs"] = std::chrono::duration_cast<milliseconds>(age).count();
        result["state"] = ordered_json(*report.state);
        result["view"] = viewJson();
    }
    return result;
}

std::optional<ViewAngles> CameraPanel::angles() const {
    const CameraReport &report = link_->report();
    if (!report.parsed || !report.parsed->positioning) {
        return std::nullopt;
    }
    constexpr double kMillidegrees = 1000.0;
    const View view = viewOf(*report.parsed);
    const AxisState &tilt = report.parsed->positioning->tilt;
    ViewAngles angles;
    angles.pan = view.bearing;
    angles.tilt = view.tilt;
    angles.horizontal = magnifiedAngle(view.fieldOfView, view.zoom);
    angles.vertical = angleOfSide(angles.horizontal, static_cast<double>(format_.height) / format_.width);
    angles.lowestTilt = static_cast<double>(tilt.minimum) / kMillidegrees;
    angles.highestTilt = static_cast<double>(tilt.maximum) / kMillidegrees;
    return angles;
}

ordered_json CameraPanel::viewJson() const {
    const CameraState &state = *link_->report().parsed;
    const View view = viewOf(state);
    const double horizontal = magnifiedAngle(view.fieldOfView, view.zoom);
    const bool turns = state.positioning.has_value();
    const std::optional<double> none;
    const auto percent = [](const DriveState &drive) { return percentOf(drive); };
    const auto optional = [](const std::optional<double> &value) {
        return value ? ordered_json(*value) : ordered_json();
    };
    const auto focus = state.lensFocus ? state.lensFocus : state.focusStepper;
    std::optional<double> zoom;
    if (turns) {
        zoom = percent(state.positioning->zoom);
    } else if (state.zoomStepper) {
        zoom = percent(*state.zoomStepper);
    }
    return {{"pan", optional(turns ? std::optional(view.bearing) : none)},
            {"tilt", optional(turns ? std::optional(view.tilt) : none)},
            {"zoom", view.zoom},
            {"hfov", horizontal},
            {"vfov", angleOfSide(horizontal, static_cast<double>(format_.height) / format_.width)},
            {"widestHfov", view.fieldOfView},
            {"zoomPercent", optional(zoom)},
            {"focusPercent", optional(focus ? std::optional(percent(*focus)) : none)},
            {"irisPercent", optional(state.iris ? std::optional(percent(*state.iris)) : none)}};
}

} // namespace panel
