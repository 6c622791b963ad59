// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Numbers and names of the public definitions that several rules use.
 */
#ifndef PTZCTL_CHECK_DEFINITIONS_H
#define PTZCTL_CHECK_DEFINITIONS_H

namespace ptzctl::check {

constexpr int kCircle = 36000; ///< hundredths of a degree

// Sources of expectations.
constexpr const char *kLimitSource = "NTCIP 1205, cctvRange (1206.4.2.7.1)";
constexpr const char *kTimeoutSource = "NTCIP 1205, cctvTimeout (1206.4.2.7.2)";
constexpr const char *kPresetSource = "NTCIP 1205, cctvPreset (1206.4.2.7.3)";
constexpr const char *kPositionSource = "NTCIP 1205, PositionReference (1206.4.2.7.4)";
constexpr const char *kLensSource = "NTCIP 1205, cctvSystem (1206.4.2.7.5)";
constexpr const char *kModuleSource = "NTCIP 1201, globalModuleTable (1206.4.2.6.1.3)";
constexpr const char *kVendorSource = "vendor's MIB, optional";

constexpr const char *kPositions = "positionPan, positionTilt, positionZoomLens, positionFocusLens, positionIrisLens";

} // namespace ptzctl::check

#endif
