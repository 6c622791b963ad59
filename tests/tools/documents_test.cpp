// SPDX-License-Identifier: Apache-2.0
// Completeness of the manual page and of the completion.
#include <array>
#include <cstdio>
#include <fstream>
#include <set>
#include <sstream>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "command_line.h"

using namespace ptzctl;
using testing::HasSubstr;

namespace {

using Words = std::set<std::string>;

Words optionsOf(const CLI::App &app) {
    Words words;
    for (const CLI::Option *option : app.get_options()) {
        for (const std::string &name : option->get_lnames()) {
            words.insert("--" + name);
        }
        for (const std::string &name : option->get_snames()) {
            words.insert("-" + name);
        }
    }
    return words;
}

Words commandsOf(const CLI::App &app) {
    Words words;
    for (const CLI::App *command : app.get_subcommands([](const CLI::App *) { return true; })) {
        words.insert(command->get_name());
    }
    return words;
}

Words splitAt(const std::string &text, char separator) {
    Words words;
    std::istringstream stream(text);
    for (std::string word; std::getline(stream, word, separator);) {
        if (!word.empty()) {
            words.insert(word);
        }
    }
    return words;
}

std::string manual() {
    std::ifstream file(PTZCTL_MANUAL);
    EXPECT_TRUE(file.is_open());
    std::ostringstream text;
    text << file.rdbuf();
    return text.str();
}

/** Returns the words after a macro of the manual page. @param before start of the lines to search */
Words markedInManual(const std::string &macro, const std::string &before) {
    Words words;
    std::istringstream lines(manual());
    for (std::string line; std::getline(lines, line);) {
        std::istringstream parts(line);
        std::string previous;
        std::string part;
        for (bool first = true; line.rfind(before, 0) == 0 && parts >> part; first = false, previous = part) {
            if (!first && previous == macro) {
                words.insert(part);
            }
        }
    }
    return words;
}

/** Completes the last word of a command line. */
Words completed(const std::vector<std::string> &line) {
    std::string quoted;
    for (const std::string &word : line) {
        quoted += " '" + word + "'";
    }
    const std::string script = "bash -c '. \"$0\"; COMP_WORDS=(\"$@\"); COMP_CWORD=$(($# - 1)); _ptzctl; "
                               "printf \"%s\\n\" \"${COMPREPLY[@]}\"' '" PTZCTL_COMPLETION "'" +
                               quoted;
    FILE *const output = popen(script.c_str(), "r");
    std::string text;
    std::array<char, 4096> buffer{};
    for (std::size_t count = 1; count > 0; text.append(buffer.data(), count)) {
        count = fread(buffer.data(), 1, buffer.size(), output);
    }
    EXPECT_EQ(pclose(output), 0) << script;
    return splitAt(text, '\n');
}

/** Calls a function for each command and subcommand, with its path. */
void forEachCommand(const CLI::App &app, const std::vector<std::string> &path,
                    const std::function<void(const CLI::App &, const std::vector<std::string> &)> &use) {
    use(app, path);
    for (const CLI::App *command : app.get_subcommands([](const CLI::App *) { return true; })) {
        std::vector<std::string> further = path;
        further.push_back(command->get_name());
        forEachCommand(*command, further, use);
    }
}

class Documents : public testing::Test {
protected:
    Invocation invocation_;
    std::unique_ptr<CLI::App> app_ = commandLine(invocation_);
};

} // namespace

TEST_F(Documents, TheManualHasEveryOption) {
    Words expected;
    forEachCommand(*app_, {}, [&](const CLI::App &command, const std::vector<std::string> &) {
        const Words options = optionsOf(command);
        expected.insert(options.begin(), options.end());
    });
    Words documented;
    for (const std::string &flag : markedInManual("Fl", ".It")) {
        documented.insert("-" + flag);
    }
    EXPECT_EQ(documented, expected);
}

TEST_F(Documents, TheManualHasEveryCommand) {
    Words expected;
    forEachCommand(*app_, {}, [&](const CLI::App &command, const std::vector<std::string> &path) {
        if (!path.empty() && path.front() != "encode") {
            expected.insert(command.get_name());
        }
    });
    Words documented;
    for (const char *macro : {"Cm", "|"}) {
        const Words words = markedInManual(macro, ".It Cm");
        documented.insert(words.begin(), words.end());
    }
    for (const std::string &command : expected) {
        EXPECT_EQ(documented.count(command), 1U) << command;
    }
    const Words first = commandsOf(*app_);
    std::istringstream lines(manual());
    for (std::string line; std::getline(lines, line);) {
        if (line.rfind(".It Cm ", 0) == 0) {
            const std::string name = line.substr(7, line.find(' ', 7) - 7);
            EXPECT_EQ(first.count(name), 1U) << name << " is no command";
        }
    }
}

TEST_F(Documents, TheManualHasEveryVariable) {
    Words expected = {"NO_COLOR", "PTZCTL_AUTH_PASSPHRASE", "PTZCTL_PRIVACY_PASSPHRASE"};
    for (const CLI::Option *option : app_->get_options()) {
        if (!option->get_envname().empty()) {
            expected.insert(option->get_envname());
        }
    }
    EXPECT_EQ(markedInManual("Ev", ".It"), expected);
}

TEST_F(Documents, TheCompletionKnowsEveryCommand) {
    forEachCommand(*app_, {}, [](const CLI::App &command, std::vector<std::string> path) {
        const Words expected = commandsOf(command);
        if (expected.empty()) {
            return;
        }
        path.insert(path.begin(), "ptzctl");
        path.insert(path.end(), "");
        EXPECT_EQ(completed(path), expected) << testing::PrintToString(path);
    });
}

TEST_F(Documents, TheCompletionKnowsEveryOption) {
    const Words common = optionsOf(*app_);
    for (const CLI::App *command : app_->get_subcommands([](const CLI::App *) { return true; })) {
        Words expected = optionsOf(*command);
        expected.insert(common.begin(), common.end());
        EXPECT_EQ(completed({"ptzctl", command->get_name(), "-"}), expected) << command->get_name();
    }
}

TEST_F(Documents, TheCompletionKnowsValues) {
    EXPECT_EQ(completed({"ptzctl", "--byte-order", ""}), (Words{"low", "high"}));
    EXPECT_EQ(completed({"ptzctl", "-H", "status", "preset", ""}), (Words{"go", "store"}));
    EXPECT_EQ(completed({"ptzctl", "relay", "1", "o"}), (Words{"on", "off"}));
    EXPECT_EQ(completed({"ptzctl", "stop", ""}), (Words{"pan", "tilt", "zoom", "focus", "iris", "all"}));
    EXPECT_EQ(completed({"ptzctl", "--speed", ""}), Words{});
}
