// SPDX-License-Identifier: Apache-2.0
#include "run.h"

#include <csignal>
#include <cstdio>
#include <fstream>
#include <iostream>
#include <stdexcept>

#include <boost/asio/signal_set.hpp>

#include "agent_files.h"
#include "fleet_directory.h"
#include "fleet_server.h"
#include "lists.h"
#include "resources.h"
#include "supervisor.h"
#include "text_file.h"
#include "visible_text.h"

namespace fleet {

namespace {

void say(const std::string &text) {
    std::cout << camera::visible(text) << std::endl;
}

void warn(const std::string &text) {
    std::cerr << kProgram << ": " << camera::visible(text) << std::endl;
}

void writeConfigurations(const Options &options, const std::vector<CameraPlan> &cameras, const Programs &programs,
                         FleetDirectory &directory) {
    for (const CameraPlan &camera : cameras) {
        directory.add(camera);
        std::ofstream file(configurationPath(camera), std::ios::trunc);
        file << agentConfiguration(camera, programs.module, options.trapDestination);
        if (!file.flush()) {
            throw std::runtime_error(configurationPath(camera) + ": cannot be written");
        }
    }
}

void writeLists(const Options &options, const std::vector<CameraPlan> &cameras) {
    if (!options.hostsFile.empty()) {
        camera::replaceFile(options.hostsFile, hostsText(cameras));
    }
    if (!options.targetsFile.empty()) {
        camera::replaceFile(options.targetsFile, targetsText(cameras));
    }
}

std::string countText(std::size_t count) {
    return std::to_string(count) + (count == 1 ? " camera" : " cameras");
}

void sayReady(const std::vector<CameraPlan> &cameras, const std::string &directory, double seconds) {
    char time[32];
    std::snprintf(time, sizeof time, "%.1f", seconds);
    say(countText(cameras.size()) + " ready in " + time + " s");
    const std::string last = cameras.size() > 1 ? " to " + textOf(cameras.back().address) : "";
    say(textOf(cameras.front().address) + last + "; directory " + directory);
}

void warnOfOpenAddresses(const std::vector<CameraPlan> &cameras) {
    if (!cameras.front().address.address().is_loopback()) {
        warn("warning: anyone who reaches " + cameras.front().address.address().to_string() +
             " can move the cameras; their communities are no secret");
    }
}

/** Waits for signals that end the fleet; each further one makes it less patient. */
void awaitSignals(boost::asio::signal_set &signals, Supervisor &supervisor) {
    signals.async_wait([&](const boost::system::error_code &error, int /*signal*/) {
        if (!error) {
            supervisor.stop();
            awaitSignals(signals, supervisor);
        }
    });
}

} // namespace

void runFleet(const Options &options) {
    raiseLimits();
    FleetDirectory directory(options.directory);
    const Programs programs = findPrograms(options.module);
    const std::vector<CameraPlan> cameras = planCameras(options, directory.path());
    for (const std::string *file : {&options.hostsFile, &options.targetsFile}) {
        if (!file->empty()) {
            checkWritable(*file);
        }
    }
    checkPlaces(cameras);
    checkResources(options.count);
    warnOfOpenAddresses(cameras);
    // The reader of the output may close its end once the fleet is ready.
    static_cast<void>(std::signal(SIGPIPE, SIG_IGN));
    boost::asio::io_context io(1);
    boost::asio::signal_set signals(io, SIGINT, SIGTERM, SIGHUP);
    writeConfigurations(options, cameras, programs, directory);

    std::string failure;
    Supervisor *running = nullptr;
    Supervisor supervisor(io, cameras, programs,
                          {[&](double seconds) {
                               try {
                                   writeLists(options, cameras);
                                   sayReady(cameras, directory.path(), seconds);
                               } catch (const std::exception &error) {
                                   failure = error.what();
                                   running->stop();
                               }
                           },
                           say, warn});
    running = &supervisor;
    camera::LineServer server = makeServer(io, directory.path(), [&supervisor] { return supervisor.describe(); });
    if (const std::optional<std::string> error = server.open()) {
        throw std::runtime_error(*error);
    }
    awaitSignals(signals, supervisor);
    supervisor.start();
    io.run();
    server.close();
    if (supervisor.failure()) {
        failure = *supervisor.failure();
    }
    if (!failure.empty()) {
        throw std::runtime_error(failure);
    }
}

} // namespace fleet
