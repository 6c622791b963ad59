// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Control program of the simulated camera.
 */
#include <chrono>
#include <exception>
#include <iostream>
#include <optional>

#include <CLI/CLI.hpp>

#include "command_text.h"
#include "control_client.h"
#include "control_command_line.h"
#include "scenario_runner.h"
#include "shipped_files.h"
#include "visible_text.h"
#include "wire.h"

namespace {

using nlohmann::json;

constexpr int kRefused = 1;
constexpr int kUsageError = 2;

/** Request of the command line. */
struct Request {
    std::string directory = wire::socketDirectory();
    camera::ControlRequest control;
};

int follow(camera::ControlClient &client, const std::string &directory) {
    while (const std::optional<std::string> line = client.nextLine()) {
        std::cout << camera::visible(*line) << std::endl;
    }
    throw camera::ControlError("the camera in " + directory + " has ended");
}

json executeOrThrow(camera::ControlClient &client, const json &command) {
    json answer = client.execute(command);
    if (const std::optional<std::string> refusal = camera::refusalIn(answer)) {
        throw camera::ControlError(*refusal);
    }
    return answer;
}

/** Checks a scenario with a dry run, which lasts as long as its own connection. */
void checkScenario(camera::Scenario &scenario, const std::string &directory) {
    camera::ControlClient client(directory);
    camera::dryRun(scenario, [&](const json &command) { return client.execute(command); });
}

int playScenario(const Request &request) {
    using Clock = std::chrono::steady_clock;
    camera::Scenario scenario = camera::readScenarioFile(camera::findShippedFile("scenario", request.control.scenario));
    checkScenario(scenario, request.directory);
    camera::ControlClient client(request.directory);
    std::cout << camera::visible(scenario.name + ": " + scenario.description) << std::endl;
    const Clock::time_point start = Clock::now();
    const camera::ScenarioRunner runner = {
        [&](double seconds) {
            client.waitUntil(start + std::chrono::ceil<Clock::duration>(std::chrono::duration<double>(seconds)));
        },
        [&](const json &command) { return client.execute(command); }, std::cout};
    runner.play(scenario, request.control.speed);
    std::cout << camera::visible(scenario.name) << " has been played" << std::endl;
    return 0;
}

int execute(const Request &request) {
    camera::ControlClient client(request.directory);
    const json answer = executeOrThrow(client, request.control.command);
    if (request.control.command["command"] == "follow") {
        return follow(client, request.directory);
    }
    if (answer.contains("state")) {
        std::cout << camera::visible(camera::printable(answer["state"], 2), "\n") << '\n';
    } else {
        std::cout << camera::visible(camera::doneText(request.control.command)) << '\n';
    }
    return 0;
}

int run(int argc, char **argv) {
    Request request;
    camera::ControlArguments arguments;
    CLI::App app("Controls the simulated camera.", "quarnsnmp-camctl");
    app.footer("Exit status: 0 success, 1 refused command or no camera, 2 usage error.");
    app.set_version_flag("--version", std::string("quarnsnmp-camctl ") + QUARNSNMP_VERSION);
    app.add_option("--directory", request.directory,
                   "Directory of the camera's sockets; QUARNSNMP_CAMERA_DIR overrides the default")
        ->type_name("DIR")
        ->capture_default_str();
    camera::addControlCommands(app, request.control, arguments);
    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError &error) {
        if (error.get_exit_code() == 0) {
            return app.exit(error);
        }
        std::cerr << "quarnsnmp-camctl: " << error.what() << "\nRun with --help for more information.\n";
        return kUsageError;
    }
    return request.control.scenario.empty() ? execute(request) : playScenario(request);
}

} // namespace

int main(int argc, char **argv) {
    try {
        return run(argc, argv);
    } catch (const std::exception &error) {
        std::cerr << "quarnsnmp-camctl: " << camera::visible(error.what()) << '\n';
        return kRefused;
    }
}
