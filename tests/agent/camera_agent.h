// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * A module with a running camera.
 */
#ifndef QUARNSNMP_CAMERA_AGENT_H
#define QUARNSNMP_CAMERA_AGENT_H

#include <string>

#include <gtest/gtest.h>

#include "agent.h"
#include "camera_events.h"

namespace harness {

/** Adds the module of this build and a running camera to the options of an agent. */
AgentOptions withCamera(AgentOptions options, const Camera &camera);

/** Returns options of an agent whose clock runs sixty times as fast, so that the module polls once a second. */
AgentOptions withFastClock();

/** Returns modelName as the agent answers it; empty without such an object. */
std::string modelName(const Agent &agent);

/** OIDs of the objects that the module answers without any service of a camera: pan, tilt and presets. */
std::vector<std::string> objectsWithoutServices();

/** Returns the OIDs of varbinds. */
std::vector<std::string> oidsOf(const std::vector<Varbind> &varbinds);

/** Number of an agent's threads: its own, one of the emulator that it may run in, and the module's poll thread. */
std::size_t threadsWithoutModule();
std::size_t threadsWithModule();

/** A camera with an agent, and a manager that may write. */
class CameraAgent : public testing::Test {
protected:
    /**
     * Starts the camera and the agent.
     * @param camera  name of a camera that comes with the project, or path of a camera file
     * @param agent   options of the agent without module and camera
     */
    explicit CameraAgent(const std::string &camera, const AgentOptions &agent = {});

    /** Reads an object. @return the value as recordedValue() writes it */
    std::string get(const std::string &oid);

    /** Returns all objects of the module. */
    std::vector<Varbind> walk();

    /** Writes octets to an object; a refusal fails the test. */
    void set(const std::string &oid, const std::string &octets);

    /** Writes an integer to an object; a refusal fails the test. */
    void setInteger(const std::string &oid, std::int64_t value);

    /** Counts the lines of the module's log that contain a text. */
    std::size_t logged(const std::string &text) const;

    /** Runs the camera's control program, which must not refuse. */
    template <typename... Texts>
    void control(const Texts &...arguments) const {
        const CommandResult result = camera_.control(std::vector<std::string>{std::string(arguments)...});
        EXPECT_TRUE(result.status.clean()) << result.errors;
    }

    /** Returns the operations of all requests so far, after an event behind them has arrived; see operations(). */
    std::vector<std::string> finishedOperations(const CameraEvents &events) const;

    Camera camera_;
    Agent agent_;
    Manager manager_;
};

/** Returns the operations of all commands so far, in their order. An operation that only reads is not a command. */
std::vector<std::string> operations(const CameraEvents &events);

} // namespace harness

#endif
