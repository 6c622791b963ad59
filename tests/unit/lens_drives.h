// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * The four drives of a lens as records of their differences.
 */
#ifndef QUARNSNMP_LENS_DRIVES_H
#define QUARNSNMP_LENS_DRIVES_H

#include <cstdint>
#include <string>
#include <vector>

#include "module_test.h"

namespace lens_tests {

/** An object that a lens feature registers. */
struct Object {
    const char *name;
    const char *handler;

    /** OID of the registration, which has no instance. */
    std::string registeredOid() const;
    std::string instance() const;
};

/** Position and limits of a drive; 64 bits hold signed and unsigned positions. */
struct Lens {
    std::int64_t current;
    std::int64_t min;
    std::int64_t max;
    std::int64_t minSpeed = 3;
    std::int64_t maxSpeed = 77;
};

inline constexpr Lens kLens{4000, 1000, 9000};

struct Drive : Row {
    std::string word;    ///< in log lines of commands
    std::string capital; ///< in names of positions in log lines
    std::string service;
    std::string initName;
    bool (*init)(void *);
    void (*deinit)();
    std::string noTargetText;
    std::string initiatorText; ///< in the log line of a service that does not open
    bool waits;                ///< for a service that comes late
    bool opensExposure;
    bool isStepper;  ///< has its limits read at the start only, and moves at its highest speed
    bool isUnsigned; ///< in its positions
    bool runs;       ///< can be driven continuously, and stopped
    bool logsStop;
    bool logsDirection;
    std::string readRange; ///< operation that tells the limits at the start
    std::string rangeWord; ///< for it in the log
    std::string readRangeText;
    std::string readPosition; ///< operation that a delta begins with
    std::string move;
    std::vector<Object> objects;            ///< in the order of their registration: range, time-out, position, others
    std::vector<std::string> constantLines; ///< after the handler's name, for range and time-out; empty without a line

    const Object &position() const;
    std::string function(const std::string &operation) const;
    /** A call to the first target as the scripted library records it. */
    std::string call(const std::string &operation, const std::string &arguments) const;
    std::string readRangeCall() const;
    std::string readPositionCall() const;
    std::string moveCall(std::int64_t target, std::int64_t speed = kLens.maxSpeed) const;
    std::string velocityCall(int direction, int run) const;
    /** Line of a start that read the limits, without the level. */
    std::string rangeLine(const Lens &lens) const;
    std::string deltaLine(const Lens &lens, std::int64_t step, std::int64_t target) const;
    std::string absoluteLine(const Lens &lens, std::int64_t target) const;
};

Drive focus();
Drive focusStepper();
Drive iris();
Drive zoomStepper();
std::vector<Drive> allDrives();

} // namespace lens_tests

#endif
