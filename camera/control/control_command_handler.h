// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Handler of the control program's commands.
 */
#ifndef QUARNSNMP_CAMERA_CONTROL_COMMAND_HANDLER_H
#define QUARNSNMP_CAMERA_CONTROL_COMMAND_HANDLER_H

#include <stdexcept>

#include "camera_model.h"
#include "faults.h"
#include "service_supervisor.h"

namespace camera {

/** Longest delay of an answer, in milliseconds. */
inline constexpr std::int64_t kLongestDelayMilliseconds = 600000;

/** Mode of a control connection after a command. */
enum class ControlMode : std::uint8_t {
    commands, ///< the next line is a command to the camera
    follow,   ///< the camera sends its events as well
    dryRun    ///< the following commands go to a copy of the camera
};

/** Answer to a control command. */
struct ControlReply {
    std::string line; ///< with its newline
    ControlMode mode = ControlMode::commands;
    bool skipMissingServices = false; ///< option of ControlMode::dryRun
};

/** Handler of control commands: checks and executes them. A refused command changes nothing. */
class ControlCommandHandler {
public:
    /** @param model,faults,services  must outlive the handler */
    ControlCommandHandler(CameraModel &model, Faults &faults, ServiceSupervisor &services)
        : model_(model), faults_(faults), services_(services) {}

    /** Executes a command and returns its answer, which may be a refusal. @param line  without its newline */
    ControlReply execute(std::string_view line);

    /** Returns the state of the camera: its name, its services with their targets, and the configured faults. */
    nlohmann::json state();

private:
    /** Effects of a command besides those on the camera. */
    struct Outcome {
        nlohmann::json answer = {{"ok", true}};
        ControlMode mode = ControlMode::commands;
        bool skipMissingServices = false;
    };
    using Action = void (ControlCommandHandler::*)(const nlohmann::json &command, Outcome &outcome);
    struct Command {
        std::string name;
        std::vector<std::string> required;
        std::vector<std::string> optional;
        Action action;
    };
    static const std::vector<Command> &commands();
    static const Command &findCommand(const nlohmann::json &command);

    void showState(const nlohmann::json &command, Outcome &outcome);
    void set(const nlohmann::json &command, Outcome &outcome);
    void takeDown(const nlohmann::json &command, Outcome &outcome);
    void bringUp(const nlohmann::json &command, Outcome &outcome);
    void fail(const nlohmann::json &command, Outcome &outcome);
    void delay(const nlohmann::json &command, Outcome &outcome);
    void clear(const nlohmann::json &command, Outcome &outcome);
    void follow(const nlohmann::json &command, Outcome &outcome);
    void startDryRun(const nlohmann::json &command, Outcome &outcome);

    /** Returns the service in a command; refuses services that the camera does not have. */
    std::string service(const nlohmann::json &command) const;

    /** Returns the service, or "directory", in a fault command; refuses others. */
    std::string faultyService(const nlohmann::json &command) const;

    /** Returns the operation of the service, or "*", in a fault command; refuses others. */
    std::string operation(const nlohmann::json &command, const std::string &service) const;

    CameraModel &model_;
    Faults &faults_;
    ServiceSupervisor &services_;
};

} // namespace camera

#endif
