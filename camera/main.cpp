/**
 * @file
 * The simulated camera, a process of its own.
 */
#include "camera_file.h"
#include "camera_server.h"
#include "event_loop.h"
#include "wire.h"

#include <csignal>
#include <exception>
#include <filesystem>
#include <iostream>

#include <CLI/CLI.hpp>
#include <boost/asio/signal_set.hpp>

namespace {

constexpr int kStartError = 1;
constexpr int kUsageError = 2;

/** The camera files lie at the same place relative to the program in the build tree and when installed. */
std::string cameraDirectory() {
    std::error_code error;
    const std::filesystem::path program = std::filesystem::read_symlink("/proc/self/exe", error);
    return (program.parent_path().parent_path() / "share/quarnsnmp/cameras").string();
}

int listCameras() {
    int status = 0;
    const std::vector<camera::CameraFile> files = camera::cameraFiles(cameraDirectory());
    if (files.empty()) {
        throw camera::CameraFileError("no cameras in " + cameraDirectory());
    }
    for (const camera::CameraFile &file : files) {
        try {
            const std::string description = camera::readCameraFile(file.path).description;
            constexpr std::size_t kColumn = 10;
            const std::size_t gap = file.name.size() < kColumn ? kColumn - file.name.size() : 1;
            std::cout << file.name << std::string(gap, ' ') << description << '\n';
        } catch (const camera::CameraFileError &error) {
            std::cerr << "quarnsnmp-camera: " << error.what() << '\n';
            status = kStartError;
        }
    }
    return status;
}

void runCamera(const std::string &nameOrPath, const std::string &directory) {
    camera::CameraDescription description = camera::readCameraFile(camera::findCamera(nameOrPath, cameraDirectory()));
    camera::CameraModel model(std::move(description.name), std::move(description.description),
                              std::move(description.services));
    // Whoever reads the output may leave once the camera is ready.
    std::signal(SIGPIPE, SIG_IGN);
    boost::asio::io_context io(1);
    boost::asio::signal_set signals(io, SIGINT, SIGTERM);
    signals.async_wait([&io](const boost::system::error_code &error, int /*signal*/) {
        if (!error) {
            io.stop();
        }
    });
    const camera::SocketDirectory sockets(directory);
    camera::CameraServer server(io, model, sockets);
    server.open();
    std::cout << "camera " << model.name() << " ready in " << directory << std::endl;
    camera::runPolling(io);
    server.close();
}

int run(int argc, char **argv) {
    std::string name = "dome";
    std::string directory = wire::socketDirectory();
    bool list = false;
    CLI::App app("Simulated camera: plays the camera's services over Unix-domain sockets.", "quarnsnmp-camera");
    app.add_option("--camera", name, "Name of a camera (see --list), or path of a camera file")
        ->type_name("NAME|FILE")
        ->capture_default_str();
    app.add_option("--directory", directory, "Directory of the sockets; QUARNSNMP_CAMERA_DIR sets another default")
        ->type_name("DIR")
        ->capture_default_str();
    app.add_flag("--list", list, "List the cameras that have a name, and end");
    app.set_version_flag("--version", std::string("quarnsnmp-camera ") + QUARNSNMP_VERSION);
    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError &error) {
        if (error.get_exit_code() == 0) {
            return app.exit(error);
        }
        std::cerr << "quarnsnmp-camera: " << error.what() << "\nRun with --help for more information.\n";
        return kUsageError;
    }
    if (list) {
        return listCameras();
    }
    runCamera(name, directory);
    return 0;
}

} // namespace

int main(int argc, char **argv) {
    try {
        return run(argc, argv);
    } catch (const std::exception &error) {
        std::cerr << "quarnsnmp-camera: " << error.what() << '\n';
        return kStartError;
    }
}
