// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Families of rules, in the order of the report.
 */
#ifndef PTZCTL_CHECK_FAMILIES_H
#define PTZCTL_CHECK_FAMILIES_H

#include <vector>

#include "check/rule.h"

namespace ptzctl::check {

/** Presence, instance, type, length and range of each object. */
std::vector<Rule> objectRules();

/** Objects that say something about each other. */
std::vector<Rule> consistencyRules();

/** GETNEXT and GETBULK: order, end, completeness. */
std::vector<Rule> walkRules();

/** GET: many varbinds, wrong instances, stable values, latency. */
std::vector<Rule> getRules();

/** SETs that change nothing but time-outs, which are restored. */
std::vector<Rule> writeRules();

/** Commands to the axes and presets, as far as the responses tell. */
std::vector<Rule> moveRules();

/** Commands to the axes, as a witness sees them. */
std::vector<Rule> motionRules();

/** Relays, automatic lens functions, storing a preset, restart. */
std::vector<Rule> disruptiveRules();

/** The responses to all requests of the other rules. */
std::vector<Rule> responseRules();

} // namespace ptzctl::check

#endif
