// SPDX-License-Identifier: Apache-2.0
// Output that cannot be written.
#include <array>
#include <cstdio>
#include <ostream>
#include <sstream>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "command_line.h"
#include "run.h"

using namespace ptzctl;
using testing::HasSubstr;

namespace {

/** Takes a number of characters and refuses the others. */
class FullDevice : public std::streambuf {
public:
    explicit FullDevice(int room) : room_(room) {}

protected:
    int_type overflow(int_type character) override {
        return --room_ < 0 ? traits_type::eof() : traits_type::not_eof(character);
    }

private:
    int room_;
};

/** Runs a command line with a device for its output. @return its exit code */
ExitCode runInto(int room, const std::string &arguments, std::ostream &errors) {
    Invocation invocation;
    commandLine(invocation)->parse(arguments);
    std::istringstream input;
    FullDevice device(room);
    std::ostream output(&device);
    return run(invocation, input, output, errors, false);
}

/** Runs a line of bash with the program's path as $0. @return what it prints */
std::string shell(const std::string &line) {
    FILE *const output = popen(("bash -c '" + line + "' '" PTZCTL_PROGRAM "' 2>&1").c_str(), "r");
    std::string text;
    std::array<char, 4096> buffer{};
    for (std::size_t count = 1; count > 0; text.append(buffer.data(), count)) {
        count = fread(buffer.data(), 1, buffer.size(), output);
    }
    pclose(output);
    return text;
}

} // namespace

TEST(Output, TextThatCannotBeWrittenIsAnError) {
    std::ostringstream errors;
    EXPECT_EQ(runInto(10, "encode pan stop", errors), ExitCode::BadResponse);
    EXPECT_EQ(errors.str(), "ptzctl: cannot write the output\n");
    EXPECT_EQ(runInto(100, "encode pan stop", errors), ExitCode::Done);
}

TEST(Output, WatchingEndsOnAFullDevice) {
    std::ostringstream errors;
    EXPECT_EQ(runInto(0, "-H 127.0.0.1:9 -c x -t 0.05 --json watch --interval 0.05", errors), ExitCode::BadResponse);
    EXPECT_THAT(errors.str(), HasSubstr("ptzctl: cannot write the output\n"));
}

TEST(Output, TheProgramReportsAFullDevice) {
    const std::string failed = "ptzctl: cannot write the output\n5\n";
    EXPECT_EQ(shell("\"$0\" get --list >/dev/full; echo $?"), failed);
    EXPECT_EQ(shell("\"$0\" --help >/dev/full; echo $?"), failed);
    EXPECT_EQ(shell("\"$0\" --version >/dev/full; echo $?"), failed);
}

TEST(Output, TheProgramReportsAClosedPipe) {
    EXPECT_THAT(shell("\"$0\" -H 127.0.0.1:9 -c x -t 0.05 --json watch --interval 0.05 | :; echo ${PIPESTATUS[0]}"),
                testing::EndsWith("ptzctl: cannot write the output\n5\n"));
}
