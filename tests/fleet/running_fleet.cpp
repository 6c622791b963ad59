// SPDX-License-Identifier: Apache-2.0
#include "running_fleet.h"

#include <filesystem>
#include <stdexcept>

#include "camera.h"
#include "line_client.h"
#include "settings.h"

namespace fleet_test {

namespace {

constexpr std::chrono::seconds kStartTime{90};

} // namespace

std::map<std::string, std::string> fleetEnvironment(const TemporaryDirectory &files) {
    std::string preloaded;
    for (const std::string &library : harness::sanitizerRuntimes()) {
        preloaded += (preloaded.empty() ? "" : ":") + library;
    }
    if (preloaded.empty()) {
        return {};
    }
    const std::string script =
        files.write("agent", "#!/bin/sh\nASAN_OPTIONS=detect_leaks=0:verify_asan_link_order=0 LD_PRELOAD=" + preloaded +
                                 " exec " + harness::agentPath() + " \"$@\"\n");
    std::filesystem::permissions(script, std::filesystem::perms::owner_all);
    return {{"QUARNSNMP_SNMPD", script}};
}

CommandResult runFleetProgram(const std::vector<std::string> &arguments) {
    std::vector<std::string> command = {FLEET_PROGRAM};
    command.insert(command.end(), arguments.begin(), arguments.end());
    return runCommand(command, {}, kStartTime);
}

void RunningFleet::begin(std::vector<std::string> arguments) {
    arguments.insert(arguments.begin(), FLEET_PROGRAM);
    arguments.insert(arguments.end(), {"--port", port(), "--directory", directory_});
    process_ = std::make_unique<Process>(Launch{arguments, fleetEnvironment(files_)});
}

void RunningFleet::start(std::vector<std::string> arguments) {
    begin(std::move(arguments));
    const bool isReady =
        eventually(kStartTime, [this] { return process_->output().count(" ready in ") > 0 || !process_->running(); });
    ASSERT_TRUE(isReady && process_->running()) << process_->output().text() << process_->errors().text();
}

void RunningFleet::stop() {
    process_->signal(SIGINT);
    const std::optional<ExitStatus> status = process_->wait(kPatience);
    ASSERT_TRUE(status) << "the fleet does not end";
    EXPECT_TRUE(status->clean()) << status->describe();
}

CommandResult RunningFleet::control(const std::string &select, const std::vector<std::string> &command,
                                    const std::vector<std::string> &options) const {
    std::vector<std::string> arguments = {"control", "--directory", directory_, "--select", select};
    arguments.insert(arguments.end(), options.begin(), options.end());
    arguments.emplace_back("--");
    arguments.insert(arguments.end(), command.begin(), command.end());
    return runFleetProgram(arguments);
}

nlohmann::json RunningFleet::status() const {
    const CommandResult result = runFleetProgram({"status", "--directory", directory_, "--json", "--interval", "0.2"});
    EXPECT_EQ(0, result.status.code) << result.errors;
    return nlohmann::json::parse(result.output);
}

nlohmann::json RunningFleet::camera(unsigned number) const {
    return LineClient(directory_, "control").call({{"command", "status"}}).at("cameras").at(number - 1);
}

std::vector<pid_t> RunningFleet::processes() const {
    std::vector<pid_t> processes;
    const nlohmann::json status = LineClient(directory_, "control").call({{"command", "status"}});
    for (const auto &each : status.at("cameras")) {
        processes.push_back(each.at("camera").at("process").get<pid_t>());
        processes.push_back(each.at("agent").at("process").get<pid_t>());
    }
    return processes;
}

nlohmann::json RunningFleet::value(unsigned number, const std::string &target, const std::string &field) const {
    LineClient client(camera(number).at("directory").get<std::string>(), "control");
    const nlohmann::json state = client.call({{"command", "state"}}).at("state");
    for (const auto &service : state.at("services")) {
        for (const auto &each : service.at("targets").items()) {
            if (each.key() == target) {
                return each.value().at(field);
            }
        }
    }
    throw std::runtime_error("no target " + target + " in " + state.dump());
}

} // namespace fleet_test
