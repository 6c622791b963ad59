// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Program that offers the panel's pictures as RTSP streams.
 */
#include <csignal>
#include <exception>
#include <iostream>

#include <CLI/CLI.hpp>
#include <gst/gst.h>

#include "server.h"

namespace {

constexpr const char *kProgram = "quarnsnmp-rtsp";
constexpr int kStartError = 1;
constexpr int kUsageError = 2;

/** Splits ADDRESS:PORT. @return a complaint; empty for a good text */
std::string splitAddress(const std::string &text, std::string &address, int &port) {
    const std::size_t colon = text.rfind(':');
    if (colon == std::string::npos || colon == 0) {
        return "'" + text + "' is not ADDRESS:PORT";
    }
    const std::string number = text.substr(colon + 1);
    if (number.empty() || number.size() > 5 || number.find_first_not_of("0123456789") != std::string::npos ||
        std::stoi(number) > 65535) {
        return "'" + number + "' is not a port";
    }
    address = text.substr(0, colon);
    port = std::stoi(number);
    return "";
}

bool isLoopback(const std::string &address) {
    return address.rfind("127.", 0) == 0 || address == "::1" || address == "[::1]";
}

int run(int argc, char **argv) {
    rtsp::ServerOptions options;
    options.source = {"127.0.0.1:8205", 0, 15, 2'000'000};
    std::string listen = "127.0.0.1:8554";
    CLI::App app("Offers the pictures of quarnsnmp-panel as RTSP streams: /camera in H.264, /camera-mjpeg in JPEG.",
                 kProgram);
    app.add_option("--panel", options.source.panel, "Address of the panel")
        ->type_name("HOST:PORT")
        ->capture_default_str();
    app.add_option("--listen", listen, "Address to listen on, port 0 for any")
        ->type_name("ADDRESS:PORT")
        ->capture_default_str();
    app.add_option("--cameras", options.cameras, "Number of cameras in the panel; camera N of it is /camera/N")
        ->type_name("COUNT")
        ->check(CLI::Range(1, 32))
        ->capture_default_str();
    app.add_option("--fps", options.source.framesPerSecond, "Pictures per second of the H.264 stream")
        ->type_name("N")
        ->check(CLI::Range(1, 60))
        ->capture_default_str();
    app.add_option("--bitrate", options.source.bitsPerSecond, "Bits per second of the H.264 stream")
        ->type_name("N")
        ->check(CLI::Range(100'000, 50'000'000))
        ->capture_default_str();
    app.set_version_flag("--version", std::string(kProgram) + " " + QUARNSNMP_VERSION);
    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError &error) {
        if (error.get_exit_code() == 0) {
            return app.exit(error);
        }
        std::cerr << kProgram << ": " << error.what() << "\nRun with --help for more information.\n";
        return kUsageError;
    }
    std::string panelHost;
    int panelPort = 0;
    for (const std::string &complaint : {splitAddress(options.source.panel, panelHost, panelPort),
                                         splitAddress(listen, options.address, options.port)}) {
        if (!complaint.empty()) {
            std::cerr << kProgram << ": " << complaint << '\n';
            return kUsageError;
        }
    }
    gst_init(nullptr, nullptr);
    const std::string missing = rtsp::missingElements();
    if (!missing.empty()) {
        std::cerr << kProgram << ": missing media elements: " << missing << '\n';
        return kStartError;
    }
    if (!isLoopback(options.address)) {
        std::cerr << kProgram << ": warning: everyone who reaches " << options.address << " can watch the streams\n";
    }
    std::signal(SIGPIPE, SIG_IGN);
    rtsp::serve(options, [&options](int port) {
        const std::string base = "rtsp://" + options.address + ":" + std::to_string(port);
        std::cout << base << "/camera and " << base << "/camera-mjpeg are ready" << std::endl;
    });
    return 0;
}

} // namespace

int main(int argc, char **argv) {
    try {
        return run(argc, argv);
    } catch (const std::exception &error) {
        std::cerr << kProgram << ": " << error.what() << '\n';
        return kStartError;
    }
}
