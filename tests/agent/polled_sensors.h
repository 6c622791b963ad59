// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * The sensors that the module polls, of a camera under test.
 */
#ifndef QUARNSNMP_POLLED_SENSORS_H
#define QUARNSNMP_POLLED_SENSORS_H

#include <cstddef>
#include <string>

#include "camera_events.h"

namespace harness {

/** An operation that a poll reads with, and what the camera's sensor shows. */
struct Sensor {
    const char *service;
    const char *field;
    const char *operation;
};

inline constexpr Sensor kPowerSensor = {"power", "powerState", "get_power_state_send"};
inline constexpr Sensor kVoltageSensor = {"power", "voltageState", "get_voltage_state_send"};
inline constexpr Sensor kTemperatureSensor = {"temperature", "temperature", "get_temperature_send"};

/** Steers what the polls find. A wait that is not met fails the test. */
class PolledSensors {
public:
    /** @param camera  must outlive this object */
    explicit PolledSensors(const Camera &camera);

    /** Lets a sensor show a value from now on: a temperature in thousandths of a degree, a state as its number. */
    void show(const Sensor &sensor, int value) const;

    /** Waits until polls have met so many faults more. */
    void awaitFaults(const Sensor &sensor, std::size_t count) const;

    /** Waits until a poll has read what the sensor shows now; an answer that comes a little late tells of it. */
    void awaitPoll(const Sensor &sensor) const;

    /** Shows a value and waits until a poll has read it. */
    void pollWith(const Sensor &sensor, int value) const;

private:
    std::size_t faults(const Sensor &sensor) const;
    void awaitFaultsAfter(const Sensor &sensor, std::size_t count) const;

    const Camera &polled_;
    CameraEvents polls_;
};

} // namespace harness

#endif
