// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * The line of a monitoring plugin: a state, a text, and performance data.
 */
#ifndef PTZCTL_PROBE_PLUGIN_LINE_H
#define PTZCTL_PROBE_PLUGIN_LINE_H

#include <string>
#include <vector>

namespace ptzctl {

/** State of a service. The number is the exit status. */
enum class State { Ok = 0, Warning = 1, Critical = 2, Unknown = 3 };

/** Returns the name of a state, such as "WARNING". */
const char *stateName(State state);

/** Returns the worse of two states. A known problem is worse than an unknown state. */
State worse(State left, State right);

/** A measured value. Limits that do not exist are empty. */
struct Measurement {
    std::string label;
    std::string value; ///< with its unit
    std::string warning;
    std::string critical;
    std::string lowest;
    std::string highest;
};

/** A statement about the camera. */
struct Statement {
    State state;
    std::string text;
};

/** What a probe has found. */
struct Findings {
    std::vector<Statement> statements;
    std::vector<Measurement> measurements;
};

/** Returns the worst state of the statements. */
State stateOf(const Findings &findings);

/** Joins the texts of the statements, the worst ones first. */
std::string textOf(const Findings &findings);

/** Writes a line without its end, such as "CAMERA OK - 31 °C|'temperature'=31;;;;". */
std::string pluginLine(const Findings &findings);

/** Writes the line of a failure. */
std::string pluginLine(State state, const std::string &text);

/**
 * Shortens a text from a camera, and replaces characters with a meaning for a monitoring system, its shell commands or
 * its web pages.
 */
std::string harmless(const std::string &text);

} // namespace ptzctl

#endif
