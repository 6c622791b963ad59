// SPDX-License-Identifier: Apache-2.0
#include "pair.h"

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <system_error>
#include <utility>

#include <fcntl.h>
#include <unistd.h>

#include "agent_files.h"
#include "child.h"

namespace fleet {

namespace {

using std::chrono::milliseconds;

constexpr std::chrono::seconds kStartLimit{30};
constexpr milliseconds kQuestionPeriod{50};
constexpr std::chrono::seconds kStableTime{60}; // an end after this time is not a failure to start

/**
 * Returns the question whose answer proves that an agent is ready: an object of the module, if the camera has what it
 * shows.
 */
snmp::Message readinessQuestion(const CameraPlan &plan) {
    constexpr const char *kMaxModules = ".1.3.6.1.4.1.1206.4.2.6.1.2.0";
    constexpr const char *kSysName = ".1.3.6.1.2.1.1.5.0";
    return snmp::getRequest({plan.serial.empty() ? kSysName : kMaxModules}, "public");
}

} // namespace

milliseconds pauseAfter(unsigned failures) {
    constexpr milliseconds kFirst{200};
    constexpr milliseconds kLongest{30000};
    constexpr unsigned kMostDoublings = 10;
    return std::min(kFirst * (1U << std::min(failures > 0 ? failures - 1 : 0, kMostDoublings)), kLongest);
}

Pair::Pair(boost::asio::io_context &io, const CameraPlan &plan, const Programs &programs, AgentAsker &asker,
           PairListener &listener)
    : plan_(plan), programs_(programs), asker_(asker), listener_(listener), camera_(io, "camera"), agent_(io, "agent"),
      output_(io), nextQuestion_(io), question_(readinessQuestion(plan)) {}

void Pair::start() {
    startPart(camera_);
}

void Pair::startPart(Part &part) {
    try {
        if (&part == &camera_) {
            startCamera();
        } else if (camera_.isReady) {
            startAgent();
        } // else: the camera starts the agent when it is ready
    } catch (const std::system_error &error) {
        startAgain(part, error.what());
    }
}

void Pair::startCamera() {
    int ends[2] = {-1, -1};
    if (pipe2(ends, O_CLOEXEC) != 0) {
        throw std::system_error(errno, std::generic_category(), "cannot make a pipe");
    }
    output_ = boost::asio::posix::stream_descriptor(output_.get_executor(), ends[0]);
    try {
        begin(camera_, startChild({cameraCommand(plan_, programs_.camera), ownEnvironment(), logPath(plan_), ends[1]}));
    } catch (...) {
        close(ends[1]);
        throw;
    }
    close(ends[1]);
    readCamera();
}

void Pair::readCamera() {
    output_.async_read_some(boost::asio::buffer(line_), [this](const boost::system::error_code &error, std::size_t) {
        if (error == boost::asio::error::operation_aborted) {
            return;
        }
        boost::system::error_code ignored;
        output_.close(ignored);
        // The camera prints one line, when it is ready. Without it, the camera has ended.
        if (error || stopping_) {
            return;
        }
        becomeReady(camera_);
        if (agent_.process < 0) {
            agent_.timer.cancel();
            startPart(agent_);
        }
    });
}

void Pair::startAgent() {
    begin(agent_, startChild({agentCommand(plan_, programs_.agent), agentEnvironment(plan_), logPath(plan_), -1}));
    askAgent();
}

void Pair::begin(Part &part, pid_t process) {
    part.process = process;
    part.isReady = false;
    part.started = Clock::now();
    part.reason.clear();
    ++part.starts;
    listener_.started(plan_.number, process);
    limitStart(part);
}

void Pair::limitStart(Part &part) {
    part.timer.expires_after(kStartLimit);
    part.timer.async_wait([this, &part](const boost::system::error_code &error) {
        if (!error && part.process > 0 && !part.isReady && !stopping_) {
            part.reason = "was not ready after " + std::to_string(kStartLimit.count()) + " s";
            kill(part.process, SIGKILL);
        }
    });
}

void Pair::askAgent() {
    nextQuestion_.expires_after(kQuestionPeriod);
    nextQuestion_.async_wait([this](const boost::system::error_code &error) {
        if (error || agent_.process < 0 || agent_.isReady || stopping_) {
            return;
        }
        asker_.ask(plan_.address, question_, plan_.number);
        askAgent();
    });
}

void Pair::answered(const snmp::DecodedResponse &response) {
    if (agent_.process < 0 || agent_.isReady || stopping_ || !agent_.reason.empty()) {
        return;
    }
    if (response.error == 0 && response.values == 1) {
        becomeReady(agent_);
    } else {
        agent_.reason = "answers, but has not loaded the module; " + logPath(plan_) + " has the reason";
        kill(agent_.process, SIGKILL);
    }
}

void Pair::becomeReady(Part &part) {
    part.isReady = true;
    part.timer.cancel();
    if (isReady()) {
        listener_.ready(plan_.number);
    }
}

void Pair::ended(pid_t process, int status) {
    Part &part = process == camera_.process ? camera_ : agent_;
    if (process != part.process) {
        return;
    }
    const bool wasStable = part.isReady && Clock::now() - part.started > kStableTime;
    part.process = -1;
    part.isReady = false;
    if (stopping_) {
        return;
    }
    if (wasStable) {
        part.failures = 0;
    }
    startAgain(part, "the " + part.name + " " + (part.reason.empty() ? endText(status) : part.reason));
}

void Pair::startAgain(Part &part, const std::string &text) {
    ++part.failures;
    part.timer.expires_after(pauseAfter(part.failures));
    part.timer.async_wait([this, &part](const boost::system::error_code &error) {
        if (!error && !stopping_ && part.process < 0) {
            startPart(part);
        }
    });
    listener_.failed(plan_.number, text, part.failures);
}

void Pair::stop(int signal) {
    stopping_ = true;
    for (Part *part : {&agent_, &camera_}) {
        part->timer.cancel();
        if (part->process > 0) {
            kill(part->process, signal);
        }
    }
    nextQuestion_.cancel();
    boost::system::error_code ignored;
    output_.close(ignored);
}

nlohmann::json Pair::describe() const {
    const auto described = [](const Part &part) {
        return nlohmann::json{
            {"process", part.process}, {"ready", part.isReady}, {"restarts", part.starts > 0 ? part.starts - 1 : 0}};
    };
    return {{"number", plan_.number},
            {"name", plan_.name},
            {"kind", plan_.kind},
            {"serial", plan_.serial},
            {"address", plan_.address.address().to_string()},
            {"port", plan_.address.port()},
            {"directory", plan_.directory},
            {"camera", described(camera_)},
            {"agent", described(agent_)}};
}

} // namespace fleet
