// SPDX-License-Identifier: Apache-2.0
#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <cmath>
#include <cstring>
#include <functional>
#include <thread>

#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <fmt/format.h>
#include <nlohmann/json.hpp>

#include "check/context.h"
#include "check/interruption.h"
#include "check/sight.h"
#include "failure.h"

namespace ptzctl::check {

namespace {

using nlohmann::json;
using std::chrono::milliseconds;
using Clock = std::chrono::steady_clock;

constexpr milliseconds kAnswerTime{5000};
constexpr milliseconds kMotionTime{5000};
constexpr milliseconds kRestTime{6000};
constexpr milliseconds kTravelTime{60000};
constexpr milliseconds kInterval{10};
constexpr std::size_t kLongestAnswer = 4U << 20U;
constexpr double kCircle = 36000;
constexpr double kWhole = 65535;

/** A connection to the control socket: a command and its answer are lines of JSON. */
class ControlSocket {
public:
    explicit ControlSocket(const std::string &directory) : path_(directory + "/control.sock") {
        sockaddr_un address{};
        address.sun_family = AF_UNIX;
        if (path_.size() >= sizeof address.sun_path) {
            throw snmp::Failure(snmp::Cause::Usage, "the path is too long: " + path_);
        }
        std::memcpy(address.sun_path, path_.c_str(), path_.size() + 1);
        descriptor_ = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
        if (descriptor_ < 0 ||
            connect(descriptor_, reinterpret_cast<const sockaddr *>(&address), sizeof address) != 0) {
            const std::string reason = std::strerror(errno); // NOLINT(concurrency-mt-unsafe): one thread
            close(descriptor_);
            throw snmp::Failure(snmp::Cause::Usage, "no simulated camera in " + directory + ": " + reason);
        }
    }
    ~ControlSocket() {
        close(descriptor_);
    }
    ControlSocket(const ControlSocket &) = delete;
    ControlSocket &operator=(const ControlSocket &) = delete;

    /** Returns the camera's services. @throws Undecided */
    json services() {
        const std::string command = "{\"command\":\"state\"}\n";
        if (send(descriptor_, command.data(), command.size(), MSG_NOSIGNAL) != static_cast<ssize_t>(command.size())) {
            throw Undecided("the simulated camera is gone: " + path_);
        }
        const json answer = json::parse(readLine(), nullptr, false);
        const bool isState = answer.is_object() && answer.contains("state") && answer.at("state").is_object();
        if (!isState || !answer.at("state").contains("services")) {
            throw Undecided("the simulated camera gave no state: " + path_);
        }
        return answer.at("state").at("services");
    }

private:
    std::string readLine() {
        const Clock::time_point deadline = Clock::now() + kAnswerTime;
        std::size_t end = input_.find('\n');
        while (end == std::string::npos) {
            const auto left = std::chrono::duration_cast<milliseconds>(deadline - Clock::now());
            pollfd watched{descriptor_, POLLIN, 0};
            std::array<char, 4096> chunk{};
            const bool ready = poll(&watched, 1, std::max(0, static_cast<int>(left.count()))) > 0;
            const ssize_t count = ready ? recv(descriptor_, chunk.data(), chunk.size(), 0) : -1;
            if (count > 0) {
                input_.append(chunk.data(), static_cast<std::size_t>(count));
            } else if (errno != EINTR || count == 0 || left.count() <= 0) {
                throw Undecided("the simulated camera does not answer: " + path_);
            }
            if (input_.size() > kLongestAnswer) {
                throw Undecided("the simulated camera sends no end of line: " + path_);
            }
            end = input_.find('\n');
        }
        std::string line = input_.substr(0, end);
        input_.erase(0, end + 1);
        return line;
    }

    std::string path_;
    int descriptor_ = -1;
    std::string input_;
};

/** Where a camera has an axis, in the order in which the agent looks for it. */
struct Place {
    const char *axis;
    const char *service;
    const char *part; ///< of the service; null for the service itself
};

constexpr std::array<Place, 7> kPlaces = {{{"pan", "positioning", "pan"},
                                           {"tilt", "positioning", "tilt"},
                                           {"zoom", "positioning", "zoom"},
                                           {"zoom", "zoom_stepper", nullptr},
                                           {"focus", "lens_focus", nullptr},
                                           {"focus", "focus_stepper", nullptr},
                                           {"iris", "iris", nullptr}}};

/** An axis as the camera reports it. */
struct View {
    double position = 0;
    double velocity = 0;
    bool moving = false;
};

double positionOf(const ptz::Axis &axis, const json &drive) {
    constexpr double kMillidegrees = 10; // in a hundredth of a degree
    const double own = drive.at("position");
    if (axis.range.unit == ptz::Unit::Degrees) {
        return std::fmod(own / kMillidegrees + kCircle, kCircle);
    }
    const bool isLimited = drive.contains("softPosition") && drive.at("softPosition").value("enabled", false);
    const json &range = isLimited ? drive.at("softPosition") : drive;
    const double lowest = range.at("minimum");
    const double highest = range.at("maximum");
    return highest > lowest ? (own - lowest) * kWhole / (highest - lowest) : 0;
}

/** Way from one position to another, the shorter one round a circle. */
double advance(const ptz::Axis &axis, double from, double to) {
    return axis.range.unit == ptz::Unit::Degrees ? std::remainder(to - from, kCircle) : to - from;
}

double tolerance(const ptz::Axis &axis) {
    constexpr double kDegrees = 15;
    constexpr double kLens = 700;
    return axis.range.unit == ptz::Unit::Degrees ? kDegrees : kLens;
}

class SimulatedSight : public Sight {
public:
    explicit SimulatedSight(const std::string &directory) : socket_(directory) {}

    std::string blindness(const ptz::Axis &axis) override {
        return find(axis) ? "" : std::string("the simulated camera has no ") + axis.name;
    }

    std::optional<double> position(const ptz::Axis &axis) override {
        return view(axis).position;
    }

    void announce(const std::string & /*what*/) override {}

    Seen moves(const ptz::Axis &axis, std::optional<double> before, int direction) override {
        // A look may come after the end of a short move.
        return waitFor(axis, kMotionTime, [&](const View &now) {
            return now.velocity * direction > 0 ||
                   (before && advance(axis, *before, now.position) * direction > tolerance(axis));
        });
    }

    Seen rests(const ptz::Axis &axis) override {
        return waitFor(axis, kRestTime, [](const View &now) { return !now.moving; });
    }

    Seen reaches(const ptz::Axis &axis, double target) override {
        Seen seen = waitFor(axis, kTravelTime, [&](const View &now) {
            return !now.moving && std::abs(advance(axis, now.position, target)) <= tolerance(axis);
        });
        seen.observation += fmt::format(", target {:.0f}", target);
        return seen;
    }

    Seen steps(const ptz::Axis &axis, std::optional<double> before, double offset) override {
        const double target = before.value_or(0) + offset;
        return reaches(axis, axis.range.unit == ptz::Unit::Degrees ? std::fmod(target + kCircle, kCircle)
                                                                   : std::clamp(target, 0.0, kWhole));
    }

private:
    std::optional<json> find(const ptz::Axis &axis) {
        const json services = socket_.services();
        for (const Place &place : kPlaces) {
            if (axis.name != std::string(place.axis) || !services.contains(place.service)) {
                continue;
            }
            const json &targets = services.at(place.service).at("targets");
            if (targets.empty()) {
                continue;
            }
            const json &target = targets.front();
            return place.part == nullptr ? target : target.at(place.part);
        }
        return std::nullopt;
    }

    View view(const ptz::Axis &axis) {
        try {
            const std::optional<json> drive = find(axis);
            if (!drive) {
                throw Undecided(std::string("the simulated camera has no ") + axis.name);
            }
            return {positionOf(axis, *drive), drive->at("velocity"), drive->at("moving")};
        } catch (const json::exception &error) {
            throw Undecided(std::string("the state of the simulated camera cannot be read: ") + error.what());
        }
    }

    /** Looks until something is so. */
    Seen waitFor(const ptz::Axis &axis, milliseconds time, const std::function<bool(const View &)> &isSo) {
        const Clock::time_point deadline = Clock::now() + time;
        for (;;) {
            const View now = view(axis);
            const bool done = isSo(now);
            if (done || Clock::now() >= deadline) {
                return {done ? Seen::Answer::Yes : Seen::Answer::No,
                        fmt::format("the simulated camera {} at {:.0f}", now.moving ? "moves" : "rests", now.position)};
            }
            if (interrupted()) {
                throw Ended("interrupted");
            }
            std::this_thread::sleep_for(kInterval);
        }
    }

    ControlSocket socket_;
};

} // namespace

std::unique_ptr<Sight> simulatedSight(const std::string &directory) {
    return std::make_unique<SimulatedSight>(directory);
}

} // namespace ptzctl::check
