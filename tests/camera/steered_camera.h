// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Camera with a simulated clock, and test scripts: rows of short commands and expectations.
 */
#ifndef QUARNSNMP_TEST_STEERED_CAMERA_H
#define QUARNSNMP_TEST_STEERED_CAMERA_H

#include <functional>
#include <map>
#include <sstream>
#include <string>
#include <vector>

#include <gmock/gmock.h>

#include "event_recorder.h"
#include "test_cameras.h"
#include "text_file.h"

namespace camera::test {

/** Arguments of a command: JSON values, or texts without quotes. */
using ScriptArguments = std::vector<nlohmann::json>;

/** Commands of a fixture by name. */
using ScriptCommands = std::map<std::string, std::function<void(const ScriptArguments &)>>;

/** Row of a test table. */
struct Script {
    const char *name;
    const char *text; ///< commands, separated by semicolons; `after SECONDS COMMAND` lets time pass before a command
};

/** Runs a script. The fixture must have the command `pass`. An unknown command fails the test. */
inline void runScript(const Script &script, const ScriptCommands &commands) {
    std::istringstream text(script.text);
    for (std::string command; std::getline(text, command, ';');) {
        SCOPED_TRACE(std::string(script.name) + ": " + command);
        std::istringstream words(command);
        std::string name;
        words >> name;
        ScriptArguments arguments;
        for (std::string word; words >> word;) {
            const nlohmann::json value = nlohmann::json::parse(word, nullptr, false);
            arguments.push_back(value.is_discarded() ? nlohmann::json(word) : value);
        }
        if (name == "after") {
            ASSERT_LE(2U, arguments.size());
            commands.at("pass")({arguments[0]});
            name = arguments[1];
            arguments.erase(arguments.begin(), arguments.begin() + 2);
        }
        ASSERT_EQ(1U, commands.count(name)) << "unknown command";
        commands.at(name)(arguments);
    }
}

/** Camera with a clock that starts at 0 and moves only with pass() and passAwake(). */
class SteeredCamera : public testing::Test {
protected:
    /** @param file  text of the camera file */
    explicit SteeredCamera(const std::string &file) : file_(file), camera_(makeCamera(file, [this] { return now_; })) {}

    /** The shipped camera "dome". */
    SteeredCamera() : SteeredCamera(readTextFile(QUARNSNMP_CAMERAS "/dome.json")) {}

    /** Runs scripts, each on a new camera. The fixture's commands extend those of this class. */
    void runScripts(const std::vector<Script> &scripts, ScriptCommands commands) {
        commands["pass"] = [this](const ScriptArguments &arguments) { pass(arguments.at(0)); };
        commands["awake"] = [this](const ScriptArguments &arguments) { passAwake(arguments.at(0)); };
        commands["reboot"] = [this](const ScriptArguments & /*arguments*/) { reboot(); };
        commands["next"] = [this](const ScriptArguments &arguments) {
            EXPECT_DOUBLE_EQ(arguments.at(0) == "never" ? kNever : arguments.at(0).get<double>(), camera_->nextTime());
        };
        for (const Script &script : scripts) {
            events_.stop();
            now_ = 0.0;
            camera_ = makeCamera(file_, [this] { return now_; });
            events_.start(camera_->events());
            runScript(script, commands);
        }
    }

    /** Advances the clock without a call to the camera. */
    void pass(double seconds) {
        now_ += seconds;
    }

    /** Advances the clock, with a call to advance() at each timed event, as the timer does. */
    void passAwake(double seconds) {
        const double end = now_ + seconds;
        while (camera_->nextTime() <= end) {
            now_ = camera_->nextTime();
            camera_->advance();
        }
        now_ = end;
        camera_->advance();
    }

    /** Calls an operation of a service's first target. */
    wire::Status callService(const std::string &service, const std::string &operation,
                             const nlohmann::json &arguments) {
        nlohmann::json request = nlohmann::json::array({operation, service + "/1"});
        request.insert(request.end(), arguments.begin(), arguments.end());
        answer_ = camera_->call(service, request);
        return answer_.status;
    }

    void reboot() {
        ASSERT_EQ(wire::kSuccess, callService("device_management", "reboot_send", {2}));
    }

    /** Sets a field of a service's first target. */
    void setField(const std::string &service, const std::string &key, const nlohmann::json &value) {
        const std::optional<Problem> problem = camera_->set(service + "/1", key, value);
        ASSERT_FALSE(problem) << toString(*problem);
    }

    /** Expects the state of a drive. A drive at rest has no target. */
    void expectDrive(const std::string &name, const nlohmann::json &drive, int position, int velocity, bool moving) {
        EXPECT_EQ(position, drive["position"]) << name << " at " << now_;
        EXPECT_EQ(velocity, drive["velocity"]) << name << " at " << now_;
        EXPECT_EQ(moving, drive["moving"]) << name << " at " << now_;
        if (!moving) {
            EXPECT_EQ(nullptr, drive["target"]) << name << " at " << now_;
        }
    }

    std::string file_;
    double now_ = 0.0;
    std::unique_ptr<CameraModel> camera_;
    EventRecorder events_{camera_->events()};
    Answer answer_;
};

} // namespace camera::test

#endif
