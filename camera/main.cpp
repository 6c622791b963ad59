// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Program of the simulated camera.
 */
#include <csignal>
#include <exception>
#include <iostream>
#include <optional>

#include <CLI/CLI.hpp>
#include <boost/asio/signal_set.hpp>

#include "camera_file.h"
#include "camera_server.h"
#include "event_loop.h"
#include "presets_file.h"
#include "shipped_files.h"
#include "visible_text.h"
#include "wire.h"

namespace {

constexpr int kStartError = 1;
constexpr int kUsageError = 2;

int listCameras() {
    int status = 0;
    const std::string directory = camera::shippedDirectory("cameras");
    const std::vector<camera::NamedFile> files = camera::namedFiles(directory);
    if (files.empty()) {
        throw camera::FileError("no cameras in " + directory);
    }
    for (const camera::NamedFile &file : files) {
        try {
            const std::string description = camera::readCameraFile(file.path).description;
            constexpr std::size_t kColumn = 11;
            const std::size_t gap = file.name.size() < kColumn ? kColumn - file.name.size() : 1;
            std::cout << camera::visible(file.name + std::string(gap, ' ') + description) << '\n';
        } catch (const camera::FileError &error) {
            std::cerr << "quarnsnmp-camera: " << error.what() << '\n';
            status = kStartError;
        }
    }
    return status;
}

/** Options of the command line. */
struct Options {
    std::string camera = "dome";
    std::string directory = wire::socketDirectory();
    std::string presets; ///< file of the presets; empty without one
    std::string serial;  ///< serial number; empty for that of the camera file
};

void warn(const std::string &line) {
    std::cerr << "quarnsnmp-camera: " << camera::visible(line) << std::endl;
}

/** Replaces the serial number of the camera file. @throws camera::FileError when the camera cannot have the number */
void setSerial(camera::CameraModel &model, const std::string &serial) {
    constexpr const char *kTarget = "device_information/1";
    if (const std::optional<camera::Problem> problem = model.set(kTarget, "serial", serial)) {
        throw camera::FileError("--serial: " + camera::toString(*problem));
    }
    model.keep(kTarget);
}

void runCamera(const Options &options) {
    camera::CameraDescription description = camera::readCameraFile(camera::findShippedFile("camera", options.camera));
    camera::CameraModel model(std::move(description.name), std::move(description.description),
                              std::move(description.services));
    if (!options.serial.empty()) {
        setSerial(model, options.serial);
    }
    std::optional<camera::PresetsFile> presets;
    if (!options.presets.empty()) {
        presets.emplace(model, options.presets, warn);
    }
    // The reader of the output may close its end once the camera is ready.
    std::signal(SIGPIPE, SIG_IGN);
    boost::asio::io_context io(1);
    boost::asio::signal_set signals(io, SIGINT, SIGTERM);
    signals.async_wait([&io](const boost::system::error_code &error, int /*signal*/) {
        if (!error) {
            io.stop();
        }
    });
    const camera::SocketDirectory sockets(options.directory);
    camera::CameraServer server(io, model, sockets, warn);
    server.open();
    std::cout << camera::visible("camera " + model.name() + " ready in " + options.directory) << std::endl;
    camera::runPolling(io);
    server.close();
}

int run(int argc, char **argv) {
    Options options;
    bool list = false;
    CLI::App app("Simulated camera: provides the services of a PTZ camera on Unix-domain sockets.", "quarnsnmp-camera");
    app.add_option("--camera", options.camera, "Name of a shipped camera (see --list), or path of a camera file")
        ->type_name("NAME|FILE")
        ->capture_default_str();
    app.add_option("--directory", options.directory,
                   "Directory of the sockets; QUARNSNMP_CAMERA_DIR overrides the default")
        ->type_name("DIR")
        ->capture_default_str();
    app.add_option("--presets", options.presets,
                   "File for the presets; by default, they are lost when the program ends")
        ->type_name("FILE")
        ->check(CLI::Validator([](const std::string &file) { return file.empty() ? "no file" : ""; }, ""));
    app.add_option("--serial", options.serial, "Serial number instead of the one in the camera file")
        ->type_name("TEXT");
    app.add_flag("--list", list, "List the shipped cameras and exit");
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
    runCamera(options);
    return 0;
}

} // namespace

int main(int argc, char **argv) {
    try {
        return run(argc, argv);
    } catch (const std::exception &error) {
        std::cerr << "quarnsnmp-camera: " << camera::visible(error.what()) << '\n';
        return kStartError;
    }
}
