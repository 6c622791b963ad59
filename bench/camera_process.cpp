// SPDX-License-Identifier: Apache-2.0
#include "camera_process.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <stdexcept>
#include <system_error>

#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

constexpr unsigned kStartLimitSeconds = 10;

} // namespace

CameraProcess::CameraProcess(const std::string &program) {
    socketDirectory = (std::filesystem::temp_directory_path() / "bench-standin-XXXXXX").string();
    std::array<int, 2> output{};
    if (::mkdtemp(socketDirectory.data()) == nullptr || ::pipe(output.data()) != 0) {
        throw std::system_error(errno, std::generic_category(), socketDirectory);
    }
    const pid_t parent = ::getpid();
    process = ::fork();
    if (process == 0) {
        // A measurement that is interrupted must not leave its camera behind.
        ::prctl(PR_SET_PDEATHSIG, SIGTERM);
        if (::getppid() == parent && ::dup2(output[1], STDOUT_FILENO) >= 0) {
            ::close(output[0]);
            ::close(output[1]);
            ::execl(program.c_str(), program.c_str(), "--directory", socketDirectory.c_str(),
                    static_cast<char *>(nullptr));
        }
        ::_exit(127);
    }
    ::close(output[1]);
    // The camera announces in a line when it is ready; a camera that fails ends the pipe.
    const std::unique_ptr<FILE, int (*)(FILE *)> lines(::fdopen(output[0], "r"), &std::fclose);
    std::array<char, 256> line{};
    ::alarm(kStartLimitSeconds);
    if (lines == nullptr || std::fgets(line.data(), line.size(), lines.get()) == nullptr) {
        end();
        throw std::runtime_error(program + " does not start");
    }
    ::alarm(0);
}

CameraProcess::~CameraProcess() {
    end();
}

void CameraProcess::end() noexcept {
    if (process > 0) {
        ::kill(process, SIGTERM);
        ::waitpid(process, nullptr, 0);
    }
    std::error_code ignored;
    std::filesystem::remove_all(socketDirectory, ignored);
}
