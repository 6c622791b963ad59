// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Shares of the kinds of cameras in a fleet.
 */
#ifndef QUARNSNMP_FLEET_MIXTURE_H
#define QUARNSNMP_FLEET_MIXTURE_H

#include <cstddef>
#include <string>
#include <vector>

namespace fleet {

/** A kind of camera and its share of the fleet. */
struct Share {
    std::string camera; ///< name of a shipped camera, or path of a camera file
    unsigned weight = 1;
};

/** Highest weight of a share. */
inline constexpr unsigned kHighestWeight = 1000;

/** Parses `NAME|FILE[:SHARE]`. @throws std::invalid_argument */
Share parseShare(const std::string &text);

/**
 * Spreads the kinds evenly: any stretch of cameras as long as the sum of all weights has each kind as often as its
 * weight says. The same shares always give the same order.
 * @param shares  at least one
 * @return the index of a share for each camera
 */
std::vector<std::size_t> mixtureOf(const std::vector<Share> &shares, std::size_t count);

} // namespace fleet

#endif
