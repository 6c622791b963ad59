// SPDX-License-Identifier: Apache-2.0
// Start and end of the camera process.
#include <csignal>
#include <filesystem>

#include <sys/stat.h>

#include <gmock/gmock.h>

#include "camera_process.h"

using namespace camera::test;
using namespace support;

namespace {

CommandResult start(const std::vector<std::string> &arguments) {
    std::vector<std::string> command = {cameraPath()};
    command.insert(command.end(), arguments.begin(), arguments.end());
    return runCommand(command);
}

mode_t permissionsOf(const std::string &path) {
    struct stat status {};
    EXPECT_EQ(0, stat(path.c_str(), &status)) << path;
    return status.st_mode & 07777U;
}

/** Expects that a start fails with one line on standard error. */
void expectStartError(const std::vector<std::string> &arguments, const std::string &error) {
    const CommandResult ended = start(arguments);
    EXPECT_EQ(1, ended.status.code);
    EXPECT_EQ("", ended.output);
    EXPECT_THAT(ended.errors, testing::MatchesRegex("quarnsnmp-camera: " + error + "\n"));
}

/** Creates a directory, regardless of the umask. */
void createDirectory(const std::string &path, mode_t mode) {
    ASSERT_EQ(0, mkdir(path.c_str(), mode)) << path;
    ASSERT_EQ(0, chmod(path.c_str(), mode)) << path;
}

class Program : public testing::Test {
protected:
    TemporaryDirectory root_;
    std::string directory_ = root_.file("sockets");
};

TEST_F(Program, IsForItsOwnerOnly) {
    RunningCamera camera(directory_);
    EXPECT_EQ(0700U, permissionsOf(directory_));
    for (const std::string &entry : entriesOf(directory_)) {
        EXPECT_EQ(0600U, permissionsOf(directory_ + "/" + entry)) << entry;
    }
}

TEST_F(Program, RefusesAnUnsafeDirectory) {
    createDirectory(directory_, 0770);
    expectStartError({"--directory", directory_}, directory_ + " is writable by other users; run chmod go-w on it");
    EXPECT_THAT(entriesOf(directory_), testing::IsEmpty());
    ASSERT_EQ(0, chmod(directory_.c_str(), 0755));
    std::filesystem::create_directory_symlink(directory_, root_.file("link"));
    for (const char *const suffix : {"", "/", "//"}) {
        expectStartError({"--directory", root_.file("link") + suffix},
                         root_.file("link") + " is a symbolic link; give the path of the directory itself");
    }
    EXPECT_THAT(entriesOf(directory_), testing::IsEmpty());
    RunningCamera camera(directory_);
}

TEST_F(Program, IsForItsOwnerOnlyWhereEverybodyMayRead) {
    createDirectory(directory_, 0755);
    Process camera({{"/bin/sh", "-c", "umask 0; exec \"$0\" --directory \"$1\"", cameraPath(), directory_}});
    ASSERT_EQ("camera dome ready in " + directory_, camera.output().awaitLine(0));
    for (const std::string &entry : entriesOf(directory_)) {
        EXPECT_EQ(0600U, permissionsOf(directory_ + "/" + entry)) << entry;
    }
    const CommandResult brought = runCommand({controlPath(), "--directory", directory_, "down", "alarm"});
    EXPECT_EQ(0, brought.status.code) << brought.errors;
    EXPECT_EQ(0, runCommand({controlPath(), "--directory", directory_, "up", "alarm"}).status.code);
    EXPECT_EQ(0600U, permissionsOf(directory_ + "/alarm.sock")) << "opened again";
}

TEST_F(Program, LeavesNothingBehind) {
    for (const int signal : {SIGTERM, SIGINT}) {
        RunningCamera camera(directory_);
        LineClient client(directory_, "alarm");
        EXPECT_TRUE(camera.stop(signal).clean());
        EXPECT_EQ("", camera.errors().text());
        EXPECT_FALSE(std::filesystem::exists(directory_));
        EXPECT_TRUE(client.ends());
    }
}

TEST_F(Program, SurvivesAReaderOfItsOutputThatIsGone) {
    RunningCamera camera(directory_);
    camera.signal(SIGPIPE);
    EXPECT_EQ(kTemperatureAnswer, LineClient(directory_, "temperature").ask(kTemperatureRequest));
}

TEST_F(Program, LeavesADirectoryThatWasThere) {
    createDirectory(directory_, 0755);
    RunningCamera camera(directory_);
    EXPECT_TRUE(camera.stop().clean());
    EXPECT_TRUE(std::filesystem::is_empty(directory_));
}

TEST_F(Program, LeavesTheFilesOfOthers) {
    RunningCamera camera(directory_);
    writeFile(directory_ + "/notes", "x");
    EXPECT_TRUE(camera.stop().clean());
    EXPECT_THAT(entriesOf(directory_), testing::ElementsAre("notes"));
}

TEST_F(Program, StartsAgainAfterAKilledOne) {
    {
        RunningCamera camera(directory_);
        camera.kill();
        EXPECT_TRUE(std::filesystem::exists(directory_ + "/positioning.sock"));
    }
    RunningCamera camera(directory_, "minimal");
    EXPECT_EQ("camera minimal ready in " + directory_, camera.readyLine());
    // Sockets of services that the new camera does not have would pretend that it had.
    EXPECT_FALSE(std::filesystem::exists(directory_ + "/positioning.sock"));
    EXPECT_TRUE(LineClient(directory_, "device_information").connected());
    EXPECT_TRUE(camera.stop().clean());
    // The directory is still the camera's own.
    EXPECT_FALSE(std::filesystem::exists(directory_));
}

TEST_F(Program, IsRefusedInADirectoryInUse) {
    RunningCamera camera(directory_);
    expectStartError({"--directory", directory_}, "another camera runs in " + directory_);
    EXPECT_EQ(kTemperatureAnswer, LineClient(directory_, "temperature").ask(kTemperatureRequest));
}

TEST_F(Program, RunsBesideAnotherOneElsewhere) {
    RunningCamera first(directory_);
    RunningCamera second(root_.file("more"), "stepper");
    EXPECT_TRUE(LineClient(directory_, "positioning").connected());
    EXPECT_TRUE(LineClient(root_.file("more"), "zoom_stepper").connected());
}

TEST_F(Program, RefusesAnUnusableDirectory) {
    writeFile(directory_, "");
    expectStartError({"--directory", directory_}, directory_ + " is not a directory");
    expectStartError({"--directory", root_.file("a/b")},
                     "cannot create the directory " + root_.file("a/b") + ": No such file or directory");
    const std::string longName = root_.file(std::string(100, 'd'));
    expectStartError({"--directory", longName},
                     "cannot listen on " + longName + "/alarm.sock: a socket's path has at most 107 octets");
    EXPECT_FALSE(std::filesystem::exists(longName));
}

TEST_F(Program, DoesNotRemoveAFileInTheWay) {
    createDirectory(directory_, 0755);
    writeFile(directory_ + "/alarm.sock", "precious");
    expectStartError({"--directory", directory_}, directory_ + "/alarm.sock is in the way: it is not a socket");
    EXPECT_THAT(entriesOf(directory_), testing::ElementsAre("alarm.sock"));
}

TEST_F(Program, PlaysTheCameraOfAFile) {
    writeFile(root_.file("own.json"),
              R"({"name": "own", "services": {"temperature": {"targets": [{"temperature": -1}]}}})");
    RunningCamera camera(directory_, root_.file("own.json"));
    EXPECT_EQ("camera own ready in " + directory_, camera.readyLine());
    LineClient client(directory_, "temperature");
    EXPECT_EQ("[0,-1]", client.ask(R"(["get_temperature_send","temperature/1"])"));
}

TEST_F(Program, HasTheSerialNumberOfAnOption) {
    Process camera({{cameraPath(), "--directory", directory_, "--serial", "QN-7"}});
    ASSERT_EQ("camera dome ready in " + directory_, camera.output().awaitLine(0));
    EXPECT_THAT(
        LineClient(directory_, "device_information").ask(R"(["get_static_information_send","device_information/1"])"),
        testing::HasSubstr(R"("QN-7")"));
}

TEST_F(Program, RefusesASerialNumberThatTheCameraCannotHave) {
    expectStartError({"--directory", directory_, "--serial", std::string(1000, '7')}, "--serial: .*");
    writeFile(root_.file("own.json"), R"({"name": "own", "services": {}})");
    expectStartError({"--camera", root_.file("own.json"), "--directory", directory_, "--serial", "QN-7"},
                     "--serial: .*");
    EXPECT_FALSE(std::filesystem::exists(directory_));
}

TEST_F(Program, ReportsAnErrorInACameraFile) {
    writeFile(root_.file("own.json"),
              "{\n\"name\": \"own\",\n\"services\": {\"alarm\": {\"targets\": [{\"state\": true}]}}}");
    expectStartError({"--camera", root_.file("own.json"), "--directory", directory_},
                     root_.file("own.json") + ": services.alarm.targets.0..state: expected an integer from -2147483648 "
                                              "to 2147483647, found true");
    EXPECT_FALSE(std::filesystem::exists(directory_));
}

TEST_F(Program, NamesTheShippedCamerasInAnError) {
    expectStartError({"--camera", "cube", "--directory", directory_},
                     "no camera 'cube' in .*/share/quarnsnmp/cameras; available: dome, minimal, stepper, twinfocus");
}

TEST_F(Program, ListsItsCameras) {
    const CommandResult ended = start({"--list"});
    EXPECT_EQ(0, ended.status.code);
    EXPECT_EQ("dome       A dome with pan, tilt and zoom, presets, 4 alarm inputs and 2 relays\n"
              "minimal    A camera that only says who it is\n"
              "stepper    A fixed camera whose focus and zoom are driven by stepper motors\n"
              "twinfocus  A fixed camera whose lens can be focused by a plain motor and by a stepper motor\n",
              ended.output);
}

TEST_F(Program, TellsItsVersionAndItsOptions) {
    for (const std::string &program : {cameraPath(), controlPath()}) {
        const CommandResult version = runCommand({program, "--version"});
        EXPECT_EQ(0, version.status.code);
        EXPECT_THAT(version.output, testing::MatchesRegex("quarnsnmp-cam[a-z]+ [0-9]+\\.[0-9]+\\.[0-9]+\n"));
        const CommandResult help = runCommand({program, "--help"});
        EXPECT_EQ(0, help.status.code);
        EXPECT_THAT(help.output, testing::HasSubstr("--directory"));
    }
}

TEST_F(Program, RefusesWrongUsage) {
    for (const std::vector<std::string> &wrong :
         {std::vector<std::string>{"--colour"}, {"dome"}, {"--camera"}, {"--directory"}}) {
        const CommandResult ended = start(wrong);
        EXPECT_EQ(2, ended.status.code) << wrong.front();
        EXPECT_EQ("", ended.output);
        EXPECT_THAT(ended.errors, testing::StartsWith("quarnsnmp-camera: "));
    }
}

TEST_F(Program, TakesItsDirectoryFromTheEnvironment) {
    const std::map<std::string, std::string> environment = {{"QUARNSNMP_CAMERA_DIR", directory_}};
    Process camera({{cameraPath(), "--camera", "minimal"}, environment});
    EXPECT_EQ("camera minimal ready in " + directory_, camera.output().awaitLine(0));
    const CommandResult control = runCommand({controlPath(), "state"}, environment);
    EXPECT_EQ(0, control.status.code);
    EXPECT_THAT(control.output, testing::HasSubstr("\"camera\": \"minimal\""));
}

} // namespace
