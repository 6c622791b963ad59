// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * `probe`: a camera as a service of a monitoring system.
 */
#ifndef PTZCTL_PROBE_PROBE_H
#define PTZCTL_PROBE_PROBE_H

#include <chrono>
#include <map>
#include <optional>

#include "probe/plugin_line.h"
#include "probe/range.h"
#include "request.h"

namespace ptzctl {

/** Time-out of a whole probe, in seconds, unless the user chooses another one. */
inline constexpr double kProbeSeconds = 10;

/** What is in order for a camera. */
struct Expectations {
    std::optional<AlertRange> warning; ///< temperatures in degrees Celsius
    std::optional<AlertRange> critical;
    std::optional<int> power;            ///< states; another one is critical
    std::optional<int> voltage;          ///< as `power`
    std::map<unsigned int, bool> inputs; ///< active or not, by number from 1; another state is critical
    State unreadable = State::Unknown;   ///< state for a value that cannot be read, and for a camera without an answer
};

/** Adds an expected state such as "2=on". @throws std::invalid_argument for another text */
void expectInput(Expectations &expectations, const std::string &text);

/**
 * Reads a camera's health. Throws nothing: a failure is a statement. What the camera does not have and nobody expects
 * is left out.
 * @param time  for all requests together
 */
Findings probe(snmp::Requester &camera, const Expectations &expectations, std::chrono::microseconds time);

} // namespace ptzctl

#endif
