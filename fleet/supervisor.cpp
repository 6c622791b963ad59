// SPDX-License-Identifier: Apache-2.0
#include "supervisor.h"

#include <algorithm>
#include <csignal>
#include <utility>

#include <sys/wait.h>

#include "agent_files.h"

namespace fleet {

namespace {

/** Cameras that start at the same time: enough to use all processors while some of them wait. */
constexpr std::size_t kStartsAtATime = 8;

/** Failed starts of a camera after which the fleet gives up, if the camera has never been ready. */
constexpr unsigned kMostFailures = 3;

constexpr std::chrono::seconds kProgressPeriod{5};

/** Time for the processes to end by themselves. */
constexpr std::chrono::seconds kEndLimit{5};

} // namespace

Supervisor::Supervisor(boost::asio::io_context &io, const std::vector<CameraPlan> &cameras, const Programs &programs,
                       SupervisorReport report)
    : io_(io), report_(std::move(report)), childEnds_(io, SIGCHLD), progressTimer_(io), killTimer_(io),
      asker_(io, cameras.front().address.address(),
             [this](const auto &from, const snmp::DecodedResponse &response) { answered(from, response); }),
      wasReady_(cameras.size(), false) {
    pairs_.reserve(cameras.size());
    PairListener &listener = *this;
    for (const CameraPlan &camera : cameras) {
        pairs_.push_back(std::make_unique<Pair>(io, camera, programs, asker_, listener));
    }
}

void Supervisor::start() {
    startTime_ = std::chrono::steady_clock::now();
    awaitEnds();
    reportProgress();
    startMore();
}

void Supervisor::startMore() {
    while (!stopping_ && startCount_ < pairs_.size() && startCount_ - readyCount_ < kStartsAtATime) {
        pairs_[startCount_++]->start();
    }
}

void Supervisor::reportProgress() {
    progressTimer_.expires_after(kProgressPeriod);
    progressTimer_.async_wait([this](const boost::system::error_code &error) {
        if (!error && readyCount_ < pairs_.size() && !stopping_) {
            report_.progress(std::to_string(readyCount_) + " of " + std::to_string(pairs_.size()) +
                             " cameras are ready");
            reportProgress();
        }
    });
}

void Supervisor::awaitEnds() {
    childEnds_.async_wait([this](const boost::system::error_code &error, int /*signal*/) {
        if (!error) {
            takeEnds();
            awaitEnds();
        }
    });
}

void Supervisor::takeEnds() {
    int status = 0;
    for (pid_t process = 0; (process = waitpid(-1, &status, WNOHANG)) > 0;) {
        const auto found = numbers_.find(process);
        if (found == numbers_.end()) {
            continue;
        }
        const unsigned number = found->second;
        numbers_.erase(found);
        pair(number).ended(process, status);
    }
    endIfGone();
}

void Supervisor::answered(const boost::asio::ip::udp::endpoint &from, const snmp::DecodedResponse &response) {
    if (response.id >= 1 && response.id <= pairs_.size() && pair(response.id).plan().address == from) {
        pair(response.id).answered(response);
    }
}

void Supervisor::ready(unsigned number) {
    if (wasReady_[number - 1]) {
        report_.progress(pair(number).plan().name + " is ready again");
        return;
    }
    wasReady_[number - 1] = true;
    ++readyCount_;
    if (readyCount_ == pairs_.size()) {
        progressTimer_.cancel();
        const std::chrono::duration<double> time = std::chrono::steady_clock::now() - startTime_;
        report_.allReady(time.count());
    }
    startMore();
}

void Supervisor::failed(unsigned number, const std::string &text, unsigned failures) {
    const CameraPlan &plan = pair(number).plan();
    if (!wasReady_[number - 1] && failures >= kMostFailures) {
        if (!failure_) {
            failure_ = plan.name + " cannot be started: " + text;
        }
        stop();
        return;
    }
    const double pause = std::chrono::duration<double>(pauseAfter(failures)).count();
    constexpr int kTenths = 10;
    const auto tenths = static_cast<int>(pause * kTenths);
    report_.trouble(plan.name + ": " + text + "; it starts again in " + std::to_string(tenths / kTenths) + "." +
                    std::to_string(tenths % kTenths) + " s");
}

void Supervisor::started(unsigned number, pid_t process) {
    numbers_[process] = number;
}

void Supervisor::stop() {
    const int signal = stopping_ ? SIGKILL : SIGTERM;
    stopping_ = true;
    progressTimer_.cancel();
    for (const auto &each : pairs_) {
        each->stop(signal);
    }
    killLater();
    endIfGone();
}

void Supervisor::killLater() {
    killTimer_.expires_after(kEndLimit);
    killTimer_.async_wait([this](const boost::system::error_code &error) {
        if (!error) {
            for (const auto &each : pairs_) {
                each->stop(SIGKILL);
            }
        }
    });
}

void Supervisor::endIfGone() {
    if (stopping_ && std::all_of(pairs_.begin(), pairs_.end(), [](const auto &each) { return each->isGone(); })) {
        io_.stop();
    }
}

nlohmann::json Supervisor::describe() const {
    nlohmann::json cameras = nlohmann::json::array();
    for (const auto &each : pairs_) {
        cameras.push_back(each->describe());
    }
    return cameras;
}

} // namespace fleet
