// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * The objects of the lens as a whole: `systemLensEquipped`, `systemLensFeatureControl` and `systemLensFeatureStatus`.
 * There are two sets of them, one for each kind of focus drive. The set that is registered first serves the objects.
 *
 * Bit 7 of an octet stands for the automatic iris and bit 6 for the automatic focus. The other bits are 0.
 */
#ifndef QUARNSNMP_LENS_FEATURES_H
#define QUARNSNMP_LENS_FEATURES_H

#include <array>

#include "lens_service.h"

namespace lens {

/** Constants of a set: names of its handlers, and calls to its focus drive. */
struct LensFeatureDrive {
    const char *equippedHandler;
    const char *controlHandler;
    const char *statusHandler;
    const char *autoFocusText;              ///< logged when the automatic focus starts
    void (*setManualFocus)(uint8_t enable); ///< 0 automatic, 1 manual
    void (*startAutoFocus)();               ///< one run
    /** Reads 0 for automatic, anything else for manual. Throws zorva::core::ZorvaApiException. */
    void (*readManualFocus)(uint8_t &manualMode);
};

/** A set of the three objects. */
struct LensFeatureSet {
    const LensFeatureDrive &drive;
    Exposure exposure{}; ///< switches the automatic iris
    std::array<uint8_t, 1> equipped{};
    std::array<uint8_t, 1> pendingEquipped{};
    std::array<uint8_t, 2> control{};
    std::array<uint8_t, 2> pendingControl{};
};

/** Serves `systemLensEquipped`, one octet that is only stored. */
int HandleLensEquipped(LensFeatureSet &set, const netsnmp_agent_request_info *reqinfo, netsnmp_request_info *requests);

/**
 * Serves `systemLensFeatureControl`. Octet 0 selects the features to switch. Bit 7 of octet 1 is 1 for automatic and 0
 * for manual. A GET answers the last command, also after the device has changed its mode.
 */
int HandleLensFeatureControl(LensFeatureSet &set, const netsnmp_agent_request_info *reqinfo,
                             netsnmp_request_info *requests);

/** Serves `systemLensFeatureStatus`: the features that are automatic now. The bit of a failed call is 0. */
int HandleLensFeatureStatus(const LensFeatureSet &set, const netsnmp_agent_request_info *reqinfo,
                            netsnmp_request_info *requests);

} // namespace lens

#endif
