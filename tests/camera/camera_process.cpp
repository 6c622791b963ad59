// SPDX-License-Identifier: Apache-2.0
#include "camera_process.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <thread>

#include <fcntl.h>
#include <poll.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <sys/wait.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include "wire.h"

namespace camera::test {

namespace {

using Clock = std::chrono::steady_clock;

/** Waits until a file is readable or at its end. @return false when it stayed silent */
bool waitReadable(int file, Clock::time_point deadline) {
    for (;;) {
        const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(deadline - Clock::now());
        pollfd entry{file, POLLIN, 0};
        const int ready = poll(&entry, 1, static_cast<int>(std::max<std::int64_t>(0, left.count())));
        if (ready >= 0 || errno != EINTR) {
            return ready > 0;
        }
    }
}

/** Takes a line from text that was read. */
std::optional<std::string> takeLine(std::string &text) {
    const std::size_t end = text.find('\n');
    if (end == std::string::npos) {
        return std::nullopt;
    }
    std::string line = text.substr(0, end);
    text.erase(0, end + 1);
    return line;
}

/** Reads lines from a file until one is complete. */
std::optional<std::string> readLineFrom(int file, std::string &read) {
    const Clock::time_point deadline = Clock::now() + kPatience;
    std::array<char, 4096> chunk{};
    for (;;) {
        if (std::optional<std::string> line = takeLine(read)) {
            return line;
        }
        if (!waitReadable(file, deadline)) {
            return std::nullopt;
        }
        const ssize_t count = ::read(file, chunk.data(), chunk.size());
        if (count <= 0) {
            return std::nullopt;
        }
        read.append(chunk.data(), static_cast<std::size_t>(count));
    }
}

std::string readAll(int file) {
    const Clock::time_point deadline = Clock::now() + kPatience;
    std::string text;
    std::array<char, 4096> chunk{};
    while (waitReadable(file, deadline)) {
        const ssize_t count = ::read(file, chunk.data(), chunk.size());
        if (count <= 0) {
            break;
        }
        text.append(chunk.data(), static_cast<std::size_t>(count));
    }
    return text;
}

[[noreturn]] void runChild(const std::vector<std::string> &command, int output, int errors, unsigned filesLimit) {
    // A test that is killed takes its programs along.
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    dup2(output, STDOUT_FILENO);
    dup2(errors, STDERR_FILENO);
    if (filesLimit > 0) {
        const rlimit limit{filesLimit, filesLimit};
        setrlimit(RLIMIT_NOFILE, &limit);
    }
    std::vector<char *> arguments;
    arguments.reserve(command.size() + 1);
    for (const std::string &argument : command) {
        arguments.push_back(const_cast<char *>(argument.c_str()));
    }
    arguments.push_back(nullptr);
    execv(arguments[0], arguments.data());
    _exit(127);
}

} // namespace

bool eventually(const std::function<bool()> &condition) {
    const Clock::time_point deadline = Clock::now() + kPatience;
    while (!condition()) {
        if (Clock::now() > deadline) {
            return false;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    return true;
}

Process::Process(const std::vector<std::string> &command, unsigned filesLimit) {
    std::array<int, 2> output{};
    std::array<int, 2> errors{};
    if (pipe2(output.data(), O_CLOEXEC) != 0 || pipe2(errors.data(), O_CLOEXEC) != 0) {
        throw std::runtime_error("no pipes");
    }
    pid_ = fork();
    if (pid_ == 0) {
        runChild(command, output[1], errors[1], filesLimit);
    }
    close(output[1]);
    close(errors[1]);
    output_ = output[0];
    errors_ = errors[0];
}

Process::~Process() {
    if (pid_ > 0) {
        kill(pid_, SIGKILL);
        waitpid(pid_, nullptr, 0);
    }
    close(output_);
    close(errors_);
}

std::optional<std::string> Process::nextLine() {
    return readLineFrom(output_, read_);
}

void Process::signal(int number) const {
    kill(pid_, number);
}

Ended Process::wait() {
    Ended ended;
    int status = 0;
    pid_t waited = 0;
    // The pipes hold more than any of the programs writes, so they can be read afterwards.
    const bool over = eventually([&] {
        waited = waitpid(pid_, &status, WNOHANG);
        return waited != 0;
    });
    EXPECT_TRUE(over) << "the program does not end";
    if (!over) {
        kill(pid_, SIGKILL);
        waitpid(pid_, &status, 0);
    }
    pid_ = -1;
    ended.status = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
    ended.output = read_ + readAll(output_);
    ended.errors = readAll(errors_);
    return ended;
}

Ended run(const std::vector<std::string> &command) {
    return Process(command).wait();
}

RunningCamera::RunningCamera(const std::string &directory, const std::string &camera, unsigned filesLimit)
    : process_({QUARNSNMP_CAMERA, "--camera", camera, "--directory", directory}, filesLimit) {
    readyLine_ = process_.nextLine().value_or("");
    EXPECT_NE("", readyLine_) << process_.wait().errors;
}

LineClient::LineClient(const std::string &directory, const std::string &socket) {
    const std::string path = wire::socketPath(directory, socket);
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    if (path.size() >= sizeof address.sun_path) {
        throw std::runtime_error("path too long: " + path);
    }
    std::memcpy(address.sun_path, path.c_str(), path.size() + 1);
    socket_ = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    connected_ = connect(socket_, reinterpret_cast<const sockaddr *>(&address), sizeof address) == 0;
}

LineClient::~LineClient() {
    close(socket_);
}

void LineClient::send(const std::string &octets) const {
    std::size_t sent = 0;
    while (sent < octets.size()) {
        const ssize_t count = ::send(socket_, octets.data() + sent, octets.size() - sent, MSG_NOSIGNAL);
        if (count <= 0) {
            return;
        }
        sent += static_cast<std::size_t>(count);
    }
}

std::optional<std::size_t> LineClient::sendWhatFits(const std::string &octets) const {
    const ssize_t count = ::send(socket_, octets.data(), octets.size(), MSG_NOSIGNAL | MSG_DONTWAIT);
    if (count >= 0) {
        return static_cast<std::size_t>(count);
    }
    return errno == EAGAIN ? std::optional<std::size_t>(0) : std::nullopt;
}

std::optional<std::string> LineClient::readLine() {
    return readLineFrom(socket_, input_);
}

std::string LineClient::ask(const std::string &line) {
    send(line + "\n");
    return readLine().value_or("no answer");
}

nlohmann::json LineClient::call(const nlohmann::json &request) {
    send(wire::encode(request));
    const std::optional<std::string> line = readLine();
    return line ? wire::decode(*line) : nlohmann::json();
}

bool LineClient::ends() const {
    const Clock::time_point deadline = Clock::now() + kPatience;
    std::array<char, 65536> chunk{};
    while (waitReadable(socket_, deadline)) {
        if (recv(socket_, chunk.data(), chunk.size(), 0) <= 0) {
            return true;
        }
    }
    return false;
}

bool LineClient::readable() const {
    return waitReadable(socket_, Clock::now());
}

void LineClient::finish() const {
    shutdown(socket_, SHUT_WR);
}

} // namespace camera::test
