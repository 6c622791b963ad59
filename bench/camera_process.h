// SPDX-License-Identifier: Apache-2.0
/** @file A simulated camera that runs for the length of a measurement. */
#ifndef QUARNSNMP_BENCH_CAMERA_PROCESS_H
#define QUARNSNMP_BENCH_CAMERA_PROCESS_H

#include <string>

#include <sys/types.h>

/** A `quarnsnmp-camera` with a new socket directory. */
class CameraProcess {
public:
    /** Starts the program and waits until the camera is ready. @throw std::runtime_error when it is not in time */
    explicit CameraProcess(const std::string &program);
    /** Ends the program and removes the directory. */
    ~CameraProcess();
    CameraProcess(const CameraProcess &) = delete;
    CameraProcess &operator=(const CameraProcess &) = delete;

    const std::string &directory() const noexcept {
        return socketDirectory;
    }

private:
    void end() noexcept;

    std::string socketDirectory;
    pid_t process = -1;
};

#endif
