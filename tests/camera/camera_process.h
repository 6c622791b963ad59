// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Running the simulated camera and its control program in tests.
 */
#ifndef QUARNSNMP_TEST_CAMERA_PROCESS_H
#define QUARNSNMP_TEST_CAMERA_PROCESS_H

#include <chrono>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include <sys/types.h>

#include <nlohmann/json.hpp>

#include "temp_directory.h"

namespace camera::test {

/** How long anything in a test may take before it counts as failed. */
inline constexpr std::chrono::seconds kPatience{20};

/** Reading the temperature at the service's socket, and what a camera that was not told otherwise answers. */
inline const std::string kTemperatureRequest = R"(["get_temperature_send","temperature/1"])";
inline const std::string kTemperatureAnswer = "[0,31500]";

/** What the control socket answers to a command that was carried out. */
inline const nlohmann::json kDone = {{"ok", true}};

/** Asks again and again until a condition holds. @return false when it did not in time */
bool eventually(const std::function<bool()> &condition);

/** How a process ended and what it wrote. */
struct Ended {
    int status = -1; ///< exit status, or 128 and the number of the signal that ended it
    std::string output;
    std::string errors;
};

/** A program that runs beside the test, and is killed at the end when it still does. */
class Process {
public:
    /** Starts a program. @param filesLimit its limit of open files; 0 leaves the present one */
    explicit Process(const std::vector<std::string> &command, unsigned filesLimit = 0);
    Process(const Process &) = delete;
    Process &operator=(const Process &) = delete;
    ~Process();

    /** The next line of its standard output; nothing when it ends or stays silent. */
    std::optional<std::string> nextLine();

    void signal(int number) const;

    /** Waits for its end; fails the test, and kills it, when it does not come. */
    Ended wait();

    pid_t pid() const {
        return pid_;
    }

private:
    pid_t pid_ = -1;
    int output_ = -1;
    int errors_ = -1;
    std::string read_;
};

/** Runs a program to its end. */
Ended run(const std::vector<std::string> &command);

/** A camera that is ready. */
class RunningCamera {
public:
    explicit RunningCamera(const std::string &directory, const std::string &camera = "dome", unsigned filesLimit = 0);

    /** What it said when it was ready. */
    const std::string &readyLine() const {
        return readyLine_;
    }
    Process &process() {
        return process_;
    }

private:
    Process process_;
    std::string readyLine_;
};

/** A client of one of the camera's sockets. */
class LineClient {
public:
    /** Connects; connected() tells whether it worked. */
    LineClient(const std::string &directory, const std::string &socket);
    LineClient(const LineClient &) = delete;
    LineClient &operator=(const LineClient &) = delete;
    ~LineClient();

    bool connected() const {
        return connected_;
    }

    /** Sends octets; a connection that is gone takes them too. */
    void send(const std::string &octets) const;

    /** Sends as many octets as the socket takes now. @return how many; nothing when the connection has ended */
    std::optional<std::size_t> sendWhatFits(const std::string &octets) const;

    /** Waits for the next line; nothing when the connection ends or stays silent. */
    std::optional<std::string> readLine();

    /** Sends a line and waits for the answer. */
    std::string ask(const std::string &line);

    /** As ask(), with JSON; the answer is null when there is none. */
    nlohmann::json call(const nlohmann::json &request);

    /** Whether the camera ends the connection; reads and drops what comes before. */
    bool ends() const;

    /** Whether something is there to read at this moment. */
    bool readable() const;

    /** Says that nothing more will be sent. */
    void finish() const;

private:
    int socket_ = -1;
    bool connected_ = false;
    std::string input_;
};

} // namespace camera::test

#endif
