// SPDX-License-Identifier: Apache-2.0
#include "api.h"

#include <algorithm>
#include <charconv>
#include <optional>
#include <stdexcept>
#include <utility>

#include "command_text.h"
#include "json_text.h"
#include "page_files.h"
#include "shell_word.h"
#include "values.h"

namespace panel {

using nlohmann::json;
using nlohmann::ordered_json;

namespace {

constexpr int kBadRequest = 400;
constexpr int kNotFound = 404;
constexpr int kNotAllowed = 405;
constexpr int kTooMany = 429;
constexpr int kUnavailable = 503;

/** Error in the body of a request. */
class BodyError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/** Reads a decimal number; nothing for any other text. */
std::optional<std::uint64_t> numberIn(std::string_view text) {
    std::uint64_t number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    return error == std::errc() && end == text.data() + text.size() ? std::optional(number) : std::nullopt;
}

json bodyOf(const Request &request) {
    json body = camera::parseLine(request.body);
    if (!body.is_object()) {
        throw BodyError("the body is not a JSON object");
    }
    return body;
}

/** Tests whether an answer to a method of a route fits. */
bool fits(const std::string &method, const std::string &allowed) {
    return method == allowed || (method == "HEAD" && allowed == "GET");
}

Response notAllowed(const std::string &allowed) {
    Response response = errorResponse(kNotAllowed, "the method is not one of: " + allowed);
    response.headers.emplace_back("Allow", allowed);
    return response;
}

/** Reads the speed of a scenario; 1 without one. */
double speedIn(const json &body) {
    constexpr double kSlowest = 0.001;
    constexpr double kFastest = 1000000.0;
    const json speed = body.value("speed", json(1));
    if (!speed.is_number() || speed.get<double>() < kSlowest || speed.get<double>() > kFastest) {
        throw BodyError("speed: " + camera::mismatch("a number from 0.001 to 1000000", speed));
    }
    return speed.get<double>();
}

} // namespace

Api::Api(std::vector<std::shared_ptr<CameraPanel>> cameras) : cameras_(std::move(cameras)) {}

const std::vector<Api::Route> &Api::routes() {
    static const std::vector<Route> all = {
        {"/snapshot.jpg", "GET", &Api::snapshot},
        {"/stream.mjpeg", "GET", &Api::video},
        {"/events", "GET", &Api::events},
        {"/api/cameras", "GET", &Api::list},
        {"/api/log", "GET", &Api::log},
        {"/api/scenarios", "GET", &Api::scenarios},
        {"/api/action", "POST", &Api::act},
        {"/api/control", "POST", &Api::control},
        {"/api/scenario", "POST", &Api::playScenario},
    };
    return all;
}

void Api::handle(const Request &request, const std::shared_ptr<Exchange> &exchange) const {
    const PageFile *const file = pageFileAt(request.path);
    const auto &all = routes();
    const auto route =
        std::find_if(all.begin(), all.end(), [&](const Route &each) { return request.path == each.path; });
    if (file == nullptr && route == all.end()) {
        exchange->respond(errorResponse(kNotFound, "there is nothing at this path"));
        return;
    }
    const std::string method = file != nullptr ? "GET" : route->method;
    if (!fits(request.method, method)) {
        exchange->respond(notAllowed(method == "GET" ? "GET, HEAD" : method));
        return;
    }
    if (file != nullptr) {
        exchange->respond(pageFileResponse(*file, request));
        return;
    }
    CameraPanel *const camera = cameraOf(request);
    if (camera == nullptr) {
        exchange->respond(errorResponse(kNotFound, "there is no such camera"));
        return;
    }
    try {
        (this->*route->handler)(*camera, request, exchange);
    } catch (const BodyError &error) {
        exchange->respond(errorResponse(kBadRequest, error.what()));
    } catch (const ActionError &error) {
        exchange->respond(errorResponse(kBadRequest, error.what()));
    }
}

CameraPanel *Api::cameraOf(const Request &request) const {
    const std::string text = request.queryValue("camera");
    const std::optional<std::uint64_t> number = text.empty() ? 0 : numberIn(text);
    return number && *number < cameras_.size() ? cameras_[*number].get() : nullptr;
}

void Api::snapshot(CameraPanel &camera, const Request & /*request*/, const std::shared_ptr<Exchange> &exchange) const {
    camera.frames().snapshot([exchange](const SharedText &jpeg) {
        if (!jpeg) {
            exchange->respond(errorResponse(kUnavailable, "the picture cannot be drawn"));
            return;
        }
        exchange->respond({200, "image/jpeg", jpeg, {{"Cache-Control", "no-store"}}});
    });
}

void Api::video(CameraPanel &camera, const Request & /*request*/, const std::shared_ptr<Exchange> &exchange) const {
    exchange->stream(std::string("multipart/x-mixed-replace; boundary=") + kBoundary,
                     [&camera](const std::weak_ptr<Watcher> &watcher) { return camera.frames().watch(watcher); });
}

void Api::events(CameraPanel &camera, const Request &request, const std::shared_ptr<Exchange> &exchange) const {
    const std::string_view header = request.header("last-event-id");
    const std::string last = header.empty() ? request.queryValue("lastEventId") : std::string(header);
    const std::uint64_t lastId = numberIn(last).value_or(0);
    exchange->stream("text/event-stream", [&camera, lastId](const std::weak_ptr<Watcher> &watcher) {
        return camera.openPage(watcher, lastId);
    });
}

void Api::list(CameraPanel & /*camera*/, const Request & /*request*/, const std::shared_ptr<Exchange> &exchange) const {
    ordered_json cameras = ordered_json::array();
    for (const auto &each : cameras_) {
        cameras.push_back(each->summary());
    }
    exchange->respond(jsonResponse({{"version", QUARNSNMP_VERSION}, {"cameras", cameras}}));
}

void Api::log(CameraPanel &camera, const Request & /*request*/, const std::shared_ptr<Exchange> &exchange) const {
    std::string lines;
    for (const EventLog::Entry &entry : camera.log().entries()) {
        lines += *entry.json + "\n";
    }
    exchange->respond(
        {200,
         "application/x-ndjson",
         shared(std::move(lines)),
         {{"Cache-Control", "no-store"}, {"Content-Disposition", "attachment; filename=camera-log.jsonl"}}});
}

void Api::scenarios(CameraPanel & /*camera*/, const Request & /*request*/,
                    const std::shared_ptr<Exchange> &exchange) const {
    ordered_json list = ordered_json::array();
    for (const ScenarioSummary &each : shippedScenarios()) {
        list.push_back(
            {{"name", each.name}, {"description", each.description}, {"seconds", each.seconds}, {"steps", each.steps}});
    }
    exchange->respond(jsonResponse({{"scenarios", list}}));
}

void Api::act(CameraPanel &camera, const Request &request, const std::shared_ptr<Exchange> &exchange) const {
    const bool isTaken = camera.act(
        bodyOf(request), [exchange](const ordered_json &report) { exchange->respond(jsonResponse(report)); });
    if (!isTaken) {
        exchange->respond(errorResponse(kTooMany, "too many actions wait for the agent"));
    }
}

void Api::control(CameraPanel &camera, const Request &request, const std::shared_ptr<Exchange> &exchange) const {
    static const std::vector<std::string> allowed = {"set", "down", "up", "fail", "delay", "clear"};
    const json command = bodyOf(request);
    const json name = command.value("command", json());
    if (!name.is_string() || std::find(allowed.begin(), allowed.end(), name.get<std::string>()) == allowed.end()) {
        throw BodyError("command: expected one of: " + camera::listed(allowed));
    }
    camera.control(command, [exchange](const ordered_json &report) {
        exchange->respond(report.is_null() ? errorResponse(kUnavailable, "the camera is gone") : jsonResponse(report));
    });
}

void Api::playScenario(CameraPanel &camera, const Request &request, const std::shared_ptr<Exchange> &exchange) const {
    const json body = bodyOf(request);
    if (body.value("stop", json()) == true) {
        camera.scenarios().stop();
        exchange->respond(jsonResponse({{"ok", true}, {"message", ""}, {"line", ""}}));
        return;
    }
    const json name = body.value("play", json());
    const double speed = speedIn(body);
    if (!name.is_string()) {
        throw BodyError("play: " + camera::mismatch("the name of a scenario", name));
    }
    std::string line = camera.controlLine() + " play " + shellWord(name.get<std::string>());
    if (speed != 1.0) {
        line += " --speed " + camera::printable(body.at("speed"));
    }
    try {
        camera.scenarios().play(name.get<std::string>(), speed);
        exchange->respond(jsonResponse({{"ok", true}, {"message", ""}, {"line", line}}));
    } catch (const std::runtime_error &error) {
        exchange->respond(jsonResponse({{"ok", false}, {"message", error.what()}, {"line", line}}));
    }
}

} // namespace panel
