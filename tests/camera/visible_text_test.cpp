// SPDX-License-Identifier: Apache-2.0
// Control characters in the output of camera and control program.
#include <gmock/gmock.h>

#include "camera_process.h"

using namespace camera::test;
using namespace support;

namespace {

/** Returns true if a text could control a terminal: an escape character, or the control character U+009B. */
bool controlsTerminal(const std::string &text) {
    return text.find_first_of("\x1b\x7f\a\b\r") != std::string::npos || text.find("\xc2\x9b") != std::string::npos;
}

class VisibleText : public ControlProgramTest {
protected:
    /** Text with JSON escapes of control characters for a file. */
    static constexpr const char *kHostile = R"(\u001b]0;x\u0007\u007f\u009b2J\nforged)";

    static void expectVisible(const CommandResult &ended, const std::string &expected) {
        EXPECT_FALSE(controlsTerminal(ended.output)) << ended.output;
        EXPECT_FALSE(controlsTerminal(ended.errors)) << ended.errors;
        EXPECT_THAT(ended.output + ended.errors, testing::HasSubstr(expected));
    }
};

TEST_F(VisibleText, EscapesAKeyOfACameraFile) {
    const std::string file =
        root_.write("own.json", R"({"name":"own","services":{},")" + std::string(kHostile) + R"(":1})");
    expectVisible(runCommand({cameraPath(), "--camera", file, "--directory", directory_}), kHostile);
}

TEST_F(VisibleText, EscapesTheNameOfACamera) {
    const std::string hostile = kHostile;
    const std::string file = root_.write("own.json", R"({"name":")" + hostile + R"(ü","services":{}})");
    RunningCamera camera(directory_, file);
    EXPECT_EQ("camera " + hostile + "\u00fc ready in " + directory_, camera.readyLine());
    expectVisible(control({"state"}), kHostile);
}

TEST_F(VisibleText, EscapesTheTextsOfAScenario) {
    RunningCamera camera(directory_, "minimal");
    const std::string hostile = kHostile;
    const std::string file =
        root_.write("own.json", R"({"name":")" + hostile + R"(","description":")" + hostile + R"(","steps":[]})");
    expectVisible(control({"play", file}), hostile + ": " + hostile + "\n");
    const std::string wrong = root_.write("wrong.json", R"({"name":"x",")" + hostile + R"(":1})");
    expectVisible(control({"play", wrong}), hostile);
}

} // namespace
