// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * The service `presets_tours`: positions that are kept under a number and come back on demand.
 */
#ifndef QUARNSNMP_CAMERA_PRESETS_H
#define QUARNSNMP_CAMERA_PRESETS_H

#include "service.h"

namespace camera {

/** Most presets that a camera can have. */
inline constexpr std::uint32_t kMostPresets = 255;

/** Highest number of a preset; the lowest is 0. Any of them may be used, however many presets there can be. */
inline constexpr std::int32_t kHighestPresetNumber = 255;

/** Longest identifier and name of a preset in octets. */
inline constexpr std::size_t kLongestPresetText = 64;

/** A preset: identifier and number are both unique in a target. */
struct Preset {
    std::string id;
    std::string name;
    std::int32_t number = 0;
    std::int32_t pan = 0;
    std::int32_t tilt = 0;
    std::int32_t zoom = 0;
};

/** A target of the service; its positions are those of the positioning target of the same number. */
struct Presets {
    std::uint32_t maximumPresets = 0;
    std::vector<Preset> presets;

    static const Definition<Presets> &definition();
};

} // namespace camera

#endif
