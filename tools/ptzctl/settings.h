// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Settings of the requests, the octets and the output.
 */
#ifndef PTZCTL_SETTINGS_H
#define PTZCTL_SETTINGS_H

#include "position_command.h"
#include "style.h"

namespace ptzctl {

struct Settings {
    ptz::ByteOrder order = ptz::ByteOrder::LowFirst;
    bool verbose = false;    ///< show raw values beside their meaning
    bool readsBefore = true; ///< read the objects that a command writes, and the limits of its number, before it
    Style style;
};

} // namespace ptzctl

#endif
