// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Input and output of a command for one camera.
 */
#ifndef PTZCTL_CONTEXT_H
#define PTZCTL_CONTEXT_H

#include <functional>
#include <string>

#include <nlohmann/json.hpp>

#include "request.h"
#include "settings.h"

namespace ptzctl {

/** Output of a command, for people and for programs. */
struct Report {
    std::string text;
    nlohmann::ordered_json data = nlohmann::ordered_json::object();
};

/** One command for one camera. */
struct Context {
    snmp::Requester &camera;
    const Settings &settings;
    Report &report;
};

/** A command. It throws snmp::Failure; the report up to then is printed all the same. */
using Action = std::function<void(Context &)>;

} // namespace ptzctl

#endif
