// SPDX-License-Identifier: Apache-2.0
#include "polled_sensors.h"

#include <gtest/gtest.h>

#include "eventually.h"

namespace harness {

PolledSensors::PolledSensors(const Camera &camera) : polled_(camera), polls_(camera) {}

void PolledSensors::show(const Sensor &sensor, int value) const {
    setField(polled_, std::string(sensor.service) + "/1", sensor.field, value);
}

std::size_t PolledSensors::faults(const Sensor &sensor) const {
    return polls_.matching({{"event", "fault"}, {"operation", sensor.operation}}).size();
}

void PolledSensors::awaitFaultsAfter(const Sensor &sensor, std::size_t count) const {
    ASSERT_TRUE(eventually(std::chrono::seconds(20), [&] { return faults(sensor) > count; })) << sensor.operation;
}

void PolledSensors::awaitFaults(const Sensor &sensor, std::size_t count) const {
    awaitFaultsAfter(sensor, faults(sensor) + count - 1);
}

void PolledSensors::awaitPoll(const Sensor &sensor) const {
    const std::size_t before = faults(sensor);
    const CommandResult ordered = polled_.control("delay", sensor.service, sensor.operation, "1");
    ASSERT_TRUE(ordered.status.clean()) << ordered.errors;
    awaitFaultsAfter(sensor, before);
}

void PolledSensors::pollWith(const Sensor &sensor, int value) const {
    show(sensor, value);
    awaitPoll(sensor);
}

} // namespace harness
