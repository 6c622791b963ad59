// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * A camera in memory with every object. It reaches a position at once, and a continuous move ends with its time-out.
 */
#ifndef QUARNSNMP_CHECK_MODEL_H
#define QUARNSNMP_CHECK_MODEL_H

#include <array>
#include <chrono>
#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "axes.h"
#include "varbind.h"

namespace wrong {

/** Known ways to answer that a check must not count as failures. */
struct Dialect {
    ptz::ByteOrder order = ptz::ByteOrder::HighFirst;
    bool answersPosition = false; ///< a position object answers the position, not the last command
    bool isVendors = false; ///< preset numbers as octets, signed tilt limits, and the vendor's instances of alarmStatus
                            ///< and of the module table
};

using Numbers = std::vector<std::uint32_t>;

/** An instance that the agent serves. */
struct Instance {
    std::function<snmp::Varbind()> read;              ///< returns the value; the agent adds the OID
    bool isWritable = false;                          ///< otherwise a SET is notWritable
    std::function<long(const snmp::Varbind &)> check; ///< returns the error status for a value, 0 to accept it
    std::function<void(const snmp::Varbind &)> write; ///< takes an accepted value
};

/** One axis of the camera or its lens. */
struct AxisState {
    double position = 0;                           ///< in positions of the axis
    int speed = 0;                                 ///< of a continuous move; 0 at rest
    std::int64_t timeout = 5000;                   ///< milliseconds; 0 for none
    std::string command;                           ///< octets of the last command
    std::chrono::steady_clock::time_point started; ///< of the continuous move
};

class Model {
public:
    using Clock = std::chrono::steady_clock;

    explicit Model(const Dialect &dialect);
    Model(const Model &) = delete;
    Model &operator=(const Model &) = delete;

    /** Instances in the order of their OIDs. Faults change them. */
    std::map<Numbers, Instance> instances;

    /** Returns the instance of an object, or of its first row, by its name in the MIB. @throws std::out_of_range */
    Instance &named(const std::string &name);
    const Numbers &numbersOf(const std::string &name) const;

    /** Replaces the value of a read-only object. */
    void hold(const std::string &name, std::int64_t number);
    void hold(const std::string &name, const std::string &octets);

    /** Axis by its place in ptz::axes(). */
    AxisState &axis(std::size_t place) {
        return axes_.at(place);
    }

    /** Executes an accepted command. */
    void move(std::size_t place, const std::string &octets);
    /** Ends a continuous move whose time-out is over. */
    void settle(std::size_t place);
    bool isMoving(std::size_t place);
    double positionOf(std::size_t place);

    const Dialect dialect;
    std::array<bool, 4> inputs{};
    std::array<bool, 2> relays{};
    unsigned int automatic = 0;                                          ///< bits of automatic features
    std::map<std::int64_t, std::array<double, ptz::kAxisCount>> presets; ///< positions by number
    int restarts = 0;
    bool isAway = false; ///< a restart has begun, which the next reading of the temperature shows
    bool obeysTimeouts = true;
    bool obeysStops = true;
    bool obeysAbsolutes = true;
    bool obeysDeltas = true;
    bool reverses = false; ///< runs against the direction of the speed

private:
    Instance &add(const std::string &name, const std::string &oid, Instance instance);
    void addScalars();
    void addRanges();
    void addTimeouts();
    void addPresets();
    void addPositions();
    void addLens();
    void addOutputs();
    void addTables();
    void addModules();
    std::string positionOctets(std::size_t place);

    std::array<AxisState, ptz::kAxisCount> axes_;
    std::map<std::string, Numbers> names_;
};

/** Checks a position command as NTCIP 1205 defines it. @return the error status, 0 to accept it */
long checkCommand(const snmp::Varbind &value, const ptz::Axis &axis, ptz::ByteOrder order);

/** Makes a value without an OID. */
snmp::Varbind number(std::int64_t value);
snmp::Varbind octets(const std::string &value);

} // namespace wrong

#endif
