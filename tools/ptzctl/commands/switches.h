// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Inputs and relays of a camera.
 */
#ifndef PTZCTL_SWITCHES_H
#define PTZCTL_SWITCHES_H

#include <vector>

#include "object_oids.h"
#include "reading.h"
#include "request.h"

namespace ptzctl {

/** Inputs or relays: a column with one row each, or an object with one bit each. */
struct Switches {
    const char *label;
    const char *column;
    const char *bits;
};

inline constexpr Switches kInputs = {"Inputs", oids::alarmStatesState, oids::inputStatus};
inline constexpr Switches kRelays = {"Relays", oids::relayStatesState, oids::outputStatus};

/**
 * Reads the states of inputs or relays from the column or, without one, from the bits.
 * @return a reading for each row, or one with the bits; empty without either
 * @throws snmp::Failure as ptz::readColumn()
 */
std::vector<ptz::Reading> readSwitches(snmp::Requester &camera, const Switches &switches);

} // namespace ptzctl

#endif
