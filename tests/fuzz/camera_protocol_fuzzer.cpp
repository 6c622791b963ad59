// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Fuzzer of the lines of clients on the sockets of a simulated camera: services, directory and control.
 *
 * An input is text. A line has the name of a socket, a space, and the client's line; a line with a number advances the
 * clock by so many milliseconds. Each input gets a new camera, so that a finding is reproducible. Its construction
 * costs less than a few lines.
 */
#include <algorithm>
#include <charconv>
#include <string_view>

#include "control_command_handler.h"
#include "dry_run.h"
#include "finding.h"
#include "service_request_handler.h"
#include "text_file.h"
#include "wire.h"

using nlohmann::json;

namespace {

constexpr int kMostLines = 64;

/** Returns the services of a camera with all services, from two shipped cameras. */
const json &everyService() {
    static const json services = [] {
        json all;
        for (const char *name : {"stepper", "dome"}) {
            const std::string text = camera::readTextFile(std::string(QUARNSNMP_CAMERAS "/") + name + ".json");
            all.merge_patch(json::parse(text).at("services"));
        }
        return all;
    }();
    return services;
}

std::unique_ptr<camera::CameraModel> makeCamera(camera::Clock clock) {
    camera::Services services;
    for (const auto &entry : everyService().items()) {
        std::unique_ptr<camera::Service> service = camera::makeService(entry.key());
        for (const json &target : entry.value().at("targets")) {
            if (const std::optional<camera::Problem> problem = service->addTarget(target)) {
                fuzz::reportFinding(toString(*problem));
            }
        }
        services.emplace(entry.key(), std::move(service));
    }
    return std::make_unique<camera::CameraModel>("every service", "", std::move(services), std::move(clock));
}

/** Camera with the handlers of its clients' lines, without sockets. */
class Camera {
public:
    /** Handles a line of an input. */
    void take(std::string_view line) {
        const std::size_t space = line.find(' ');
        const std::string_view socket = line.substr(0, space);
        const std::string_view rest = space == std::string_view::npos ? std::string_view() : line.substr(space + 1);
        std::uint32_t milliseconds = 0;
        if (std::from_chars(socket.begin(), socket.end(), milliseconds).ec == std::errc()) {
            pass(milliseconds / 1000.0);
        } else if (socket == wire::kControlSocket) {
            control(rest);
        } else {
            const bool isService = model_->service(socket) != nullptr;
            const camera::Reply reply =
                isService ? calls_.handleService(std::string(socket), rest) : calls_.handleDirectory(rest);
            checkAnswer(reply.line).at(0).get_ref<const json::number_integer_t &>();
        }
    }

private:
    void control(std::string_view line) {
        if (dryRun_) {
            checkAnswer(dryRun_->execute(line)).at("ok").get_ref<const bool &>();
            return;
        }
        const camera::ControlReply reply = controls_.execute(line);
        checkAnswer(reply.line).at("ok").get_ref<const bool &>();
        if (reply.mode == camera::ControlMode::dryRun) {
            dryRun_ = std::make_unique<camera::DryRun>(*model_, reply.skipMissingServices);
        }
        if (reply.mode == camera::ControlMode::follow) {
            follower_ =
                model_->events().subscribe([](const json &event) { checkAnswer(wire::encode(event)).at("event"); });
        }
    }

    /** Advances the clock as the timer does, with a call to advance() at each timed event. */
    void pass(double seconds) {
        constexpr int kMostWakes = 10000;
        const double end = now_ + seconds;
        for (int wakes = 0; model_->nextTime() <= end; ++wakes) {
            if (wakes == kMostWakes) {
                fuzz::reportFinding("the camera keeps its timer busy");
            }
            now_ = std::max(now_, model_->nextTime());
            model_->advance();
        }
        now_ = end;
        model_->advance();
    }

    /** Parses a line of the camera. Access to missing or mistyped members throws. */
    static json checkAnswer(const std::string &line) {
        if (line.find('\n') != line.size() - 1) {
            fuzz::reportFinding("an answer or event that is not one line: " + line);
        }
        return json::parse(line);
    }

    double now_ = 0.0;
    std::unique_ptr<camera::CameraModel> model_ = makeCamera([this] { return now_; });
    camera::Faults faults_;
    camera::SimulatedServices services_;
    camera::ServiceSupervisor supervisor_{*model_, services_,
                                          [](const std::string &line) { fuzz::reportFinding(line); }};
    camera::ServiceRequestHandler calls_{*model_, faults_, services_};
    camera::ControlCommandHandler controls_{*model_, faults_, supervisor_};
    camera::Events::Subscription follower_;
    std::unique_ptr<camera::DryRun> dryRun_;
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size);

int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    std::string_view rest(reinterpret_cast<const char *>(data), size);
    Camera camera;
    for (int lines = 0; lines < kMostLines && !rest.empty(); ++lines) {
        const std::size_t end = std::min(rest.find('\n'), rest.size());
        camera.take(rest.substr(0, end));
        rest.remove_prefix(std::min(end + 1, rest.size()));
    }
    return 0;
}
