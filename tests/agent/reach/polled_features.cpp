// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * The feature table with nothing but its polls. The real one also names what starts and ends every feature, which the
 * agent's thread calls and the poll thread does not.
 */
#include "feature_modules.h"

std::array<FeatureModule, 13> gFeatureModules = {{
    {nullptr, nullptr, PollPower, false},
    {nullptr, nullptr, PollTemperature, false},
}};
