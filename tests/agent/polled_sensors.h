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

/** Operation of a poll, and the camera's field with the value. */
struct Sensor {
    const char *service;
    const char *field;
    const char *operation;
};

inline constexpr Sensor kPowerSensor = {"power", "powerState", "get_power_state_send"};
inline constexpr Sensor kVoltageSensor = {"power", "voltageState", "get_voltage_state_send"};
inline constexpr Sensor kTemperatureSensor = {"temperature", "temperature", "get_temperature_send"};

/** Controls the values that polls read. A wait in vain fails the test. */
class PolledSensors {
public:
    /** @param camera  must outlive this object */
    explicit PolledSensors(const Camera &camera);

    /** Sets the value of a sensor: a temperature in thousandths of a degree, or the number of a state. */
    void show(const Sensor &sensor, int value) const;

    /** Waits until polls have met a number of further faults. */
    void awaitFaults(const Sensor &sensor, std::size_t count) const;

    /** Waits until a poll has read the present value; a short delay, which the camera reports, marks the poll. */
    void awaitPoll(const Sensor &sensor) const;

    /** Sets a value and waits until a poll has read it. */
    void pollWith(const Sensor &sensor, int value) const;

private:
    std::size_t faults(const Sensor &sensor) const;
    void awaitFaultsAfter(const Sensor &sensor, std::size_t count) const;

    const Camera &polled_;
    CameraEvents polls_;
};

} // namespace harness

#endif
