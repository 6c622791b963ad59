// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Test scripts: rows of short commands and expectations.
 */
#ifndef QUARNSNMP_TEST_SCRIPT_H
#define QUARNSNMP_TEST_SCRIPT_H

#include <functional>
#include <map>
#include <sstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

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

} // namespace camera::test

#endif
