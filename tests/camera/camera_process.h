// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * A running camera and its clients.
 */
#ifndef QUARNSNMP_TEST_CAMERA_PROCESS_H
#define QUARNSNMP_TEST_CAMERA_PROCESS_H

#include <optional>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "camera.h"
#include "eventually.h"
#include "line_client.h"

namespace camera::test {

/** A request for the temperature, and a camera's answer to it unless it has been told otherwise. */
inline const std::string kTemperatureRequest = R"(["get_temperature_send","temperature/1"])";
inline const std::string kTemperatureAnswer = "[0,31500]";

/** The control socket's answer to a successful command. */
inline const nlohmann::json kDone = {{"ok", true}};

/** A camera with its sockets in a directory of the test. */
class RunningCamera : public support::Camera {
public:
    explicit RunningCamera(const std::string &directory, const std::string &camera = "dome", unsigned filesLimit = 0)
        : Camera(camera, {directory, {}, {}, filesLimit}) {}

    /** The line that announces that the camera is ready. */
    std::string readyLine() const {
        return output().awaitLine(0);
    }
};

/** Client that follows the events of a camera. */
class Follower {
public:
    explicit Follower(const std::string &directory) : client_(directory, "control") {
        EXPECT_EQ(kDone, client_.call({{"command", "follow"}}));
    }

    /** Returns the next event; an empty object without one. */
    nlohmann::json next() {
        return nlohmann::json::parse(client_.readLine().value_or("{}"));
    }

    /** Returns the next events, up to and including the first one of a kind. The test fails without it. */
    std::vector<nlohmann::json> until(const std::string &kind) {
        std::vector<nlohmann::json> events;
        do {
            events.push_back(next());
        } while (!events.back().empty() && events.back()["event"] != kind);
        EXPECT_FALSE(events.back().empty()) << "no event " << kind;
        return events;
    }

    /** Returns true if there are unread events. */
    bool readable() {
        return client_.readable();
    }

private:
    support::LineClient client_;
};

/** Test with a running camera and a connection to its control socket. */
class CameraTest : public testing::Test {
protected:
    explicit CameraTest(const std::string &camera = "dome") : camera_(directory_, camera) {}

    nlohmann::json set(const std::string &target, const std::string &field, const nlohmann::json &value) {
        return control_.call({{"command", "set"}, {"target", target}, {"field", field}, {"value", value}});
    }

    nlohmann::json state() {
        return control_.call({{"command", "state"}})["state"];
    }

    /** Returns the state of a service's first target. */
    nlohmann::json targetState(const std::string &service) {
        return state()["services"][service]["targets"][service + "/1"];
    }

    support::TemporaryDirectory root_;
    std::string directory_ = root_.file("sockets");
    RunningCamera camera_;
    support::LineClient control_{directory_, "control"};
};

/** Test of the control program, on a directory for the sockets of a camera. */
class ControlProgramTest : public testing::Test {
protected:
    support::CommandResult control(const std::vector<std::string> &arguments) {
        std::vector<std::string> command = {support::controlPath(), "--directory", directory_};
        command.insert(command.end(), arguments.begin(), arguments.end());
        return support::runCommand(command);
    }

    void expectRefused(const std::vector<std::string> &arguments, const std::string &error) {
        const support::CommandResult ended = control(arguments);
        EXPECT_EQ(1, ended.status.code);
        EXPECT_EQ("", ended.output);
        EXPECT_EQ("quarnsnmp-camctl: " + error + "\n", ended.errors);
    }

    support::TemporaryDirectory root_;
    std::string directory_ = root_.file("sockets");
};

} // namespace camera::test

#endif
