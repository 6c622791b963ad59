// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Command lines as the program parses them.
 */
#ifndef QUARNSNMP_PARSED_COMMAND_LINE_H
#define QUARNSNMP_PARSED_COMMAND_LINE_H

#include <algorithm>
#include <memory>
#include <string>
#include <vector>

#include "command_line.h"

namespace ptzctl {

/** Parses a command line. @return its error, or an empty text */
inline std::string complaint(Invocation &invocation, std::vector<std::string> arguments) {
    const std::unique_ptr<CLI::App> app = commandLine(invocation);
    std::reverse(arguments.begin(), arguments.end()); // as the library wants them
    try {
        app->parse(arguments);
    } catch (const CLI::ParseError &error) {
        return errorOf(*app, error);
    } catch (const std::invalid_argument &error) {
        return error.what();
    }
    return "";
}

inline std::string complaint(const std::vector<std::string> &arguments) {
    Invocation invocation;
    return complaint(invocation, arguments);
}

} // namespace ptzctl

#endif
