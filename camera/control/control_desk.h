// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Carries out the commands of the control program.
 */
#ifndef QUARNSNMP_CAMERA_CONTROL_DESK_H
#define QUARNSNMP_CAMERA_CONTROL_DESK_H

#include <stdexcept>

#include "camera_model.h"
#include "faults.h"
#include "service_keeper.h"

namespace camera {

/** Longest delay that can be ordered. */
inline constexpr std::int64_t kLongestDelayMilliseconds = 600000;

/** The answer to a command as a line, newline included. */
struct ControlReply {
    std::string line;
    bool follow; ///< the client wants the events from now on
};

/** Checks and executes control commands. A command that is refused has changed nothing. */
class ControlDesk {
public:
    ControlDesk(CameraModel &model, Faults &faults, ServiceKeeper &services)
        : model_(model), faults_(faults), services_(services) {}

    /** Executes a command line, given without its newline. Every line has an answer. */
    ControlReply execute(std::string_view line);

    /** The whole camera: its name, its services with their targets, and the faults that wait. */
    nlohmann::json state();

private:
    using Action = void (ControlDesk::*)(const nlohmann::json &command, nlohmann::json &answer);
    struct Command {
        std::string name;
        std::vector<std::string> required;
        std::vector<std::string> optional;
        Action action;
        bool follow = false; ///< the events follow the answer
    };
    static const std::vector<Command> &commands();
    static const Command &findCommand(const nlohmann::json &command);

    void acknowledge(const nlohmann::json &command, nlohmann::json &answer);
    void showState(const nlohmann::json &command, nlohmann::json &answer);
    void set(const nlohmann::json &command, nlohmann::json &answer);
    void takeDown(const nlohmann::json &command, nlohmann::json &answer);
    void bringUp(const nlohmann::json &command, nlohmann::json &answer);
    void fail(const nlohmann::json &command, nlohmann::json &answer);
    void delay(const nlohmann::json &command, nlohmann::json &answer);
    void clear(const nlohmann::json &command, nlohmann::json &answer);

    /** The service that a command names; refuses one that the camera does not have. */
    std::string service(const nlohmann::json &command) const;

    /** The service or "directory" that a command names. */
    std::string faultyService(const nlohmann::json &command) const;

    /** The operation of a service, or "*", that a command names. */
    std::string operation(const nlohmann::json &command, const std::string &service) const;

    CameraModel &model_;
    Faults &faults_;
    ServiceKeeper &services_;
};

} // namespace camera

#endif
