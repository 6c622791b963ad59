// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Service `presets_tours`: stored positions.
 */
#ifndef QUARNSNMP_CAMERA_PRESETS_H
#define QUARNSNMP_CAMERA_PRESETS_H

#include "service.h"

namespace camera {

/** Largest number of presets of a camera. */
inline constexpr std::uint32_t kMostPresets = 255;

/** Highest number of a preset; the lowest is 0. All numbers are valid, independent of the number of presets. */
inline constexpr std::int32_t kHighestPresetNumber = 255;

/** Longest ID and name of a preset, in octets. */
inline constexpr std::size_t kLongestPresetText = 64;

/** Preset. ID and number are each unique in a target. */
struct Preset {
    std::string id;
    std::string name;
    std::int32_t number = 0;
    std::int32_t pan = 0;
    std::int32_t tilt = 0;
    std::int32_t zoom = 0;
};

/** Target of `presets_tours`; its presets are positions of the positioning target of the same number. */
struct Presets {
    std::uint32_t maximumPresets = 0;
    std::vector<Preset> presets;

    static const Definition<Presets> &definition();
};

} // namespace camera

#endif
