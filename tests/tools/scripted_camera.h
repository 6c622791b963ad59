// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * A camera that answers from a table, with any faults that a test needs.
 */
#ifndef QUARNSNMP_SCRIPTED_CAMERA_H
#define QUARNSNMP_SCRIPTED_CAMERA_H

#include <cstdint>
#include <functional>
#include <map>
#include <string>
#include <vector>

#include "context.h"
#include "failure.h"
#include "object_table.h"
#include "request.h"

namespace scripted {

/** Cause of a failure that the camera reports. */
inline constexpr snmp::Cause kRefused = snmp::Cause::Refused;

/** Error statuses. */
inline constexpr long kGenErr = 5;
inline constexpr long kNotWritable = 17;

class Camera : public snmp::Requester {
public:
    /** A camera with every object, each with a valid value. */
    Camera();

    snmp::Response exchange(snmp::Operation operation, const std::vector<snmp::Varbind> &varbinds,
                            const snmp::Patience &patience) override;
    snmp::WriteResponse write(const std::vector<snmp::Varbind> &read,
                              const std::vector<snmp::Varbind> &written) override;

    /** Sets the value of an object. */
    void put(const std::string &name, std::int64_t number);
    void put(const std::string &name, const std::string &octets);
    void remove(const std::string &name);

    /** Makes requests for an object fail. */
    void failGet(const std::string &name, long error);
    void failSet(const std::string &name, long error);

    /** Changes responses. */
    std::function<void(snmp::Operation, snmp::Response &)> spoil;

    /** Makes the camera answer no more reads. */
    bool answersReads = true;

    /**
     * Requests as texts, such as "set positionPan=00 00 00 00 positionTilt=…". The number of attempts precedes a
     * request that has others than usual.
     */
    std::vector<std::string> log;

private:
    snmp::Response get(const std::vector<snmp::Varbind> &varbinds) const;
    snmp::Response next(const snmp::Varbind &varbind) const;
    snmp::Response set(const std::vector<snmp::Varbind> &varbinds);
    void store(const snmp::Varbind &value);

    using Key = std::vector<std::uint32_t>;
    std::map<Key, snmp::Varbind> values_;
    std::map<std::string, long> getErrors_;
    std::map<std::string, long> setErrors_;
};

/** Returns the OID of a named object. */
std::string id(const std::string &name);

/** Runs a command and returns its report. */
ptzctl::Report report(Camera &camera, const ptzctl::Action &action, const ptzctl::Settings &settings = {});

/** Runs a command and returns the text of its failure. A success or another cause fails the test. */
std::string failure(Camera &camera, const ptzctl::Action &action, snmp::Cause cause,
                    const ptzctl::Settings &settings = {});

} // namespace scripted

#endif
