// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * The panel of simulated cameras: a picture, a video stream and a page for browsers.
 */
#include <csignal>
#include <exception>
#include <iostream>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include <CLI/CLI.hpp>
#include <boost/asio/signal_set.hpp>

#include "api.h"
#include "failure.h"
#include "library.h"
#include "options.h"
#include "scene_file.h"
#include "scene_painter.h"
#include "trap_receiver.h"
#include "visible_text.h"

namespace {

constexpr const char *kProgram = "quarnsnmp-panel";
constexpr int kStartError = 1;
constexpr int kUsageError = 2;

void warn(const std::string &text) {
    std::cerr << kProgram << ": " << camera::visible(text) << std::endl;
}

/** Opens the receiver of traps. A busy port is no reason to show nothing. @return the reason; empty with a receiver */
std::string openTraps(boost::asio::io_context &io, const std::string &address, panel::TrapReceiver::Handler handler,
                      std::unique_ptr<panel::TrapReceiver> &receiver) {
    try {
        if (!address.empty()) {
            receiver = std::make_unique<panel::TrapReceiver>(io, address, std::move(handler));
        }
        return "";
    } catch (const snmp::Failure &failure) {
        warn(std::string(failure.what()) + "; the panel shows no traps");
        return failure.what();
    }
}

/** Passes a trap to the cameras whose agent has its sender's address; the port of a trap tells nothing. */
void passTrap(const std::vector<std::shared_ptr<panel::CameraPanel>> &cameras, const snmp::Received &trap) {
    const std::string sender = trap.from.substr(0, trap.from.rfind(':'));
    std::vector<std::shared_ptr<panel::CameraPanel>> matching;
    for (const auto &camera : cameras) {
        if (camera->agentHost() == sender) {
            matching.push_back(camera);
        }
    }
    for (const auto &camera : matching.empty() ? cameras : matching) {
        camera->takeTrap(trap);
    }
}

std::vector<std::shared_ptr<panel::CameraPanel>> makeCameras(boost::asio::io_context &io,
                                                             boost::asio::thread_pool &pool,
                                                             const panel::Options &options,
                                                             const std::string &trapProblem) {
    std::vector<std::shared_ptr<panel::CameraPanel>> cameras;
    for (std::size_t i = 0; i < options.directories.size(); ++i) {
        panel::CameraSettings settings;
        settings.id = i;
        settings.directory = options.directories[i];
        settings.agent = {options.agents[i], options.readCommunity, options.writeCommunity};
        settings.traps = trapProblem.empty() ? options.trapListen : "";
        settings.trapProblem = trapProblem;
        panel::FrameSettings frame;
        frame.width = options.format.width;
        frame.height = options.format.height;
        auto painter = std::make_unique<panel::ScenePainter>(panel::readScene(options.scene), frame);
        cameras.push_back(std::make_shared<panel::CameraPanel>(io, pool, settings, std::move(painter), options.format));
    }
    return cameras;
}

void serve(const panel::Options &options) {
    snmp::startReceiver(kProgram);
    boost::asio::io_context io(1);
    boost::asio::thread_pool pool(std::max(1U, std::min(std::thread::hardware_concurrency(), 2U)));
    std::vector<std::shared_ptr<panel::CameraPanel>> cameras;
    std::unique_ptr<panel::TrapReceiver> traps;
    const std::string trapProblem = openTraps(
        io, options.trapListen, [&cameras](const snmp::Received &trap) { passTrap(cameras, trap); }, traps);
    cameras = makeCameras(io, pool, options, trapProblem);
    const panel::Api api(cameras);
    panel::Server server(
        io, options.listen, panel::HostPolicy(options.hostNames()),
        [&api](const panel::Request &request, const auto &exchange) { api.handle(request, exchange); });
    boost::asio::signal_set signals(io, SIGINT, SIGTERM);
    signals.async_wait([&](const boost::system::error_code &error, int /*signal*/) {
        if (!error) {
            server.close();
            io.stop();
        }
    });
    for (const auto &camera : cameras) {
        camera->start();
    }
    if (!options.listen.address().is_loopback()) {
        warn("warning: anyone who reaches " + options.listen.address().to_string() +
             " can watch and move the cameras; there is no password");
    }
    std::cout << "The panel is at http://" << server.address() << "/" << std::endl;
    io.run();
    for (const auto &camera : cameras) {
        camera->stop();
    }
    pool.join();
}

int run(int argc, char **argv) {
    panel::Options options;
    CLI::App app("Shows simulated cameras in a browser: picture, movements over SNMP, log and state.", kProgram);
    panel::addOptions(app, options);
    try {
        app.parse(argc, argv);
        options.check();
    } catch (const CLI::ParseError &error) {
        if (error.get_exit_code() == 0) {
            return app.exit(error);
        }
        std::cerr << kProgram << ": " << error.what() << "\nRun with --help for more information.\n";
        return kUsageError;
    }
    try {
        serve(options);
    } catch (const boost::system::system_error &error) {
        warn("cannot listen at " + options.listenText + ": " + error.code().message());
        return kStartError;
    }
    return 0;
}

} // namespace

int main(int argc, char **argv) {
    static_cast<void>(std::signal(SIGPIPE, SIG_IGN));
    try {
        return run(argc, argv);
    } catch (const std::exception &error) {
        std::cerr << kProgram << ": " << error.what() << '\n';
        return kStartError;
    }
}
