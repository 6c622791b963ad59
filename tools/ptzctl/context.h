// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * What a command for one camera is given, and what it leaves behind.
 */
#ifndef PTZCTL_CONTEXT_H
#define PTZCTL_CONTEXT_H

#include <functional>
#include <string>

#include <nlohmann/json.hpp>

#include "position_command.h"
#include "requester.h"
#include "style.h"

namespace ptzctl {

/** How values are read, sent and shown. */
struct Settings {
    ByteOrder order = ByteOrder::LowFirst;
    bool verbose = false; ///< show raw values beside their meaning
    Style style;
};

/** What a command has to say, for people and for programs. */
struct Report {
    std::string text;
    nlohmann::ordered_json data = nlohmann::ordered_json::object();
};

/** One command for one camera. */
struct Context {
    Requester &camera;
    const Settings &settings;
    Report &report;
};

/** A command. What it throws is a Failure; what it has reported by then is shown all the same. */
using Action = std::function<void(Context &)>;

} // namespace ptzctl

#endif
