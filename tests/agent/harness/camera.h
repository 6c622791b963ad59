// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * A simulated camera for one test.
 */
#ifndef QUARNSNMP_HARNESS_CAMERA_H
#define QUARNSNMP_HARNESS_CAMERA_H

#include <map>
#include <memory>
#include <string>
#include <vector>

#include "log_file.h"
#include "process.h"
#include "temporary_directory.h"

namespace harness {

/** A running camera process with its own directory for sockets. */
class Camera {
public:
    /**
     * Starts a camera and waits until it is ready.
     * @param camera       name of a camera that comes with the project, or path of a camera file
     * @param environment  added to the environment of the test
     * @throws std::runtime_error when it does not become ready; the text has what it wrote
     */
    explicit Camera(const std::string &camera, std::map<std::string, std::string> environment = {});

    /** Ends the camera; the test fails when it ended by itself or does not end cleanly. */
    ~Camera();

    Camera(const Camera &) = delete;
    Camera &operator=(const Camera &) = delete;

    /** Directory of the sockets, for an agent's module. */
    const std::string &directory() const;

    pid_t pid() const;

    /** Starts the camera again after stop() or kill(), and waits until it is ready. */
    void start();

    /** Ends the camera as a shutdown does. @throws std::runtime_error when it is not running */
    ExitStatus stop();

    /** Ends the camera as a power cut does: its sockets stay behind. @throws std::runtime_error when it is not running
     */
    void kill();

    /** Ends the camera with stop() if it runs, and starts it again. */
    void restart();

    /** Runs the control program with a command and its arguments. */
    CommandResult control(const std::vector<std::string> &arguments) const;

    /** As the other one: control("set", "x", "1"). */
    template <typename... Texts>
    CommandResult control(const std::string &command, const Texts &...arguments) const {
        return control(std::vector<std::string>{command, std::string(arguments)...});
    }

    /** What the camera writes to standard output and standard error. */
    LogFile output() const;
    LogFile errors() const;

private:
    Process &running();
    bool isReady() const;
    std::string report() const;

    TemporaryDirectory directory_;
    std::string camera_;
    std::map<std::string, std::string> environment_;
    std::unique_ptr<Process> process_; ///< null after stop() and kill()
};

} // namespace harness

#endif
