// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Settings of the output and of the octets.
 */
#ifndef PTZCTL_SETTINGS_H
#define PTZCTL_SETTINGS_H

#include "position_command.h"
#include "style.h"

namespace ptzctl {

struct Settings {
    ptz::ByteOrder order = ptz::ByteOrder::LowFirst;
    bool verbose = false; ///< show raw values beside their meaning
    Style style;
};

} // namespace ptzctl

#endif
