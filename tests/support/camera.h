// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * A simulated camera for one test.
 */
#ifndef QUARNSNMP_SUPPORT_CAMERA_H
#define QUARNSNMP_SUPPORT_CAMERA_H

#include <csignal>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "log_file.h"
#include "process.h"
#include "temporary_directory.h"

namespace support {

/** Options of a camera's start. */
struct CameraOptions {
    std::string directory = {}; ///< directory of the sockets; empty for a new one, created and removed by the camera
    std::map<std::string, std::string> environment = {}; ///< added to the environment of the test
    std::vector<std::string> arguments = {};             ///< further arguments
    unsigned filesLimit = 0;                             ///< limit of open files; 0 for the limit of the test
};

/** Paths of the camera and of its control program; empty in a build without them. */
std::string cameraPath();
std::string controlPath();

/** A running camera process. */
class Camera {
public:
    /**
     * Starts a camera and waits until it is ready.
     * @param camera  name of a camera that comes with the project, or path of a camera file
     * @throws std::runtime_error if it does not become ready; the text has its output
     */
    explicit Camera(std::string camera = "dome", CameraOptions options = {});

    /** Ends the camera. The test fails if the camera ended by itself or does not end cleanly. */
    ~Camera();

    Camera(const Camera &) = delete;
    Camera &operator=(const Camera &) = delete;

    /** Directory of the sockets. */
    const std::string &directory() const;

    /** Returns the number of the process; -1 after stop() and kill(). */
    pid_t pid() const;

    /** Sends a signal. @throws std::runtime_error if the camera is not running */
    void signal(int number);

    /** Starts the camera again after stop() or kill(), and waits until it is ready. */
    void start();

    /** Ends the camera as a shutdown does, or with another signal. @throws std::runtime_error if it is not running */
    ExitStatus stop(int signal = SIGTERM);

    /** Ends the camera as a power cut does: its sockets stay. @throws std::runtime_error if it is not running */
    void kill();

    /** Ends the camera with stop() if it runs, and starts it again. */
    void restart();

    /** Runs the control program with a command and its arguments. */
    CommandResult control(const std::vector<std::string> &arguments) const;

    /** As the overload above: control("set", "x", "1"). */
    template <typename... Texts>
    CommandResult control(const std::string &command, const Texts &...arguments) const {
        return control(std::vector<std::string>{command, std::string(arguments)...});
    }

    /** Standard output and standard error since the last start. */
    LogFile output() const;
    LogFile errors() const;

private:
    Process &running();
    std::string report() const;

    TemporaryDirectory files_;
    std::string camera_;
    CameraOptions options_;
    std::unique_ptr<Process> process_; ///< null after stop() and kill()
};

} // namespace support

#endif
