// SPDX-License-Identifier: Apache-2.0
// Power, voltage and temperature, and the traps about their changes. The agent's clock runs sixty times as fast,
// so that the module polls once a second.
#include <algorithm>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "camera_agent.h"
#include "eventually.h"
#include "object_oids.h"
#include "polled_sensors.h"
#include "trap_receiver.h"

namespace {

using namespace harness;
using std::chrono::seconds;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

/** A receiver, and an agent that sends its traps there. */
struct Receiver {
    explicit Receiver(bool daemonised) {
        agent.fakeTime = "+0 x60";
        agent.daemonised = daemonised;
        agent.configuration = {receiver.configurationLine()};
    }
    TrapReceiver receiver;
    AgentOptions agent;
};

/** Value of a trap's object, with the object. */
using Sent = std::pair<std::string, std::int64_t>;

class HealthTraps : protected Receiver, public CameraAgent, protected PolledSensors {
protected:
    explicit HealthTraps(bool daemonised = false)
        : Receiver(daemonised), CameraAgent("dome", agent), PolledSensors(camera_) {}

    /** The module's traps so far, in their order. */
    std::vector<Sent> sent() const {
        std::vector<Sent> result;
        for (const Trap &trap : receiver.traps()) {
            if (isBelow(trap.notification(), oids::kVendorSubtree)) {
                EXPECT_THAT(trap.varbinds, SizeIs(3)) << trap;
                result.emplace_back(trap.varbinds.back().oid, trap.varbinds.back().number);
            }
        }
        return result;
    }

    /** Waits until a trap has come; then all before it have. */
    testing::AssertionResult arrives(const Sent &last) const {
        const bool there = eventually(seconds(20), [&] {
            const std::vector<Sent> now = sent();
            return !now.empty() && now.back() == last;
        });
        return there ? testing::AssertionSuccess() : testing::AssertionFailure() << testing::PrintToString(sent());
    }

    void expectTrapsBeforeAndAfterAReload() {
        awaitPoll(kPowerSensor);
        pollWith(kPowerSensor, 1);
        EXPECT_TRUE(arrives({oids::registered::power, 1}));
        agent_.hup();
        awaitPoll(kPowerSensor);
        pollWith(kPowerSensor, 2);
        EXPECT_TRUE(arrives({oids::registered::power, 2}));
        EXPECT_THAT(sent(), SizeIs(2)) << "the first reading after the reload is not told";
    }
};

class DaemonHealthTraps : public HealthTraps {
protected:
    DaemonHealthTraps() : HealthTraps(true) {}
};

/** A camera that needs as good as no time to restart. */
class Reboot : public CameraAgent {
protected:
    Reboot() : CameraAgent("dome"), events_(camera_) {
        setField(camera_, "device_management/1", "rebootSeconds", 1);
    }

    CameraEvents events_;
};

} // namespace

TEST_F(HealthTraps, EveryChangeOfPowerAndVoltageIsTold) {
    awaitPoll(kPowerSensor);
    awaitPoll(kVoltageSensor);
    EXPECT_THAT(sent(), IsEmpty()) << "the first reading has nothing to compare with";
    pollWith(kPowerSensor, 1);
    pollWith(kPowerSensor, 1);
    pollWith(kPowerSensor, 2);
    pollWith(kVoltageSensor, 9);
    EXPECT_TRUE(arrives({oids::registered::voltage, 9}));
    EXPECT_THAT(sent(), ElementsAre(Sent{oids::registered::power, 1}, Sent{oids::registered::power, 2},
                                    Sent{oids::registered::voltage, 9}));
    const Trap trap = receiver.traps().back();
    EXPECT_EQ(trap.varbinds[0].oid, oids::sysUpTime);
    EXPECT_EQ(trap.varbinds[1].oid, oids::snmpTrapOID);
    EXPECT_EQ(trap.varbinds[1].octets, oids::registered::voltage);
    EXPECT_EQ(trap.varbinds[2].oid, oids::registered::voltage) << "the object, without the instance";
    EXPECT_EQ(trap.varbinds[2].type, Type::Gauge32);
    EXPECT_EQ(logged("PollPower: trap triggered for power 2 -> 2"), 1U);
    EXPECT_EQ(logged("PollPower: trap triggered for voltage 9 -> 9"), 1U);
}

TEST_F(HealthTraps, TheTemperatureIsToldWhenItHasMovedByMoreThanTwoDegrees) {
    pollWith(kTemperatureSensor, 40000);
    awaitPoll(kTemperatureSensor);
    pollWith(kTemperatureSensor, 42000);
    pollWith(kTemperatureSensor, 42999);
    pollWith(kTemperatureSensor, 43000);
    pollWith(kTemperatureSensor, -1500);
    pollWith(kTemperatureSensor, 1000);
    pollWith(kTemperatureSensor, 2000);
    EXPECT_TRUE(arrives({oids::registered::temperature, 2}));
    std::vector<Sent> traps = sent();
    // The camera may have been polled before it was warm, and the trap of that may arrive late.
    const Sent warming = {oids::registered::temperature, 40};
    traps.erase(std::remove(traps.begin(), traps.end(), warming), traps.end());
    EXPECT_THAT(traps,
                ElementsAre(Sent{oids::registered::temperature, 43}, Sent{oids::registered::temperature, 4294967295},
                            Sent{oids::registered::temperature, 2}));
    EXPECT_EQ(logged("PollTemperature: trap triggered for temp 40 -> 43"), 1U);
    EXPECT_EQ(logged("PollTemperature: trap triggered for temp 43 -> -1"), 1U);
}

TEST_F(HealthTraps, WhatCannotBeReadIsNotTold) {
    awaitPoll(kTemperatureSensor);
    control("fail", "temperature", "get_temperature_send", "1", "--always");
    show(kTemperatureSensor, 60000);
    awaitFaults(kTemperatureSensor, 2);
    show(kTemperatureSensor, 31500);
    control("clear");
    awaitPoll(kTemperatureSensor);
    pollWith(kTemperatureSensor, 50000);
    EXPECT_TRUE(arrives({oids::registered::temperature, 50}));
    EXPECT_THAT(sent(), SizeIs(1));
}

TEST_F(HealthTraps, AServiceThatWasAwayIsPolledAgain) {
    awaitPoll(kPowerSensor);
    control("down", "power");
    EXPECT_TRUE(eventually(seconds(20), [&] { return logged("get_power_state_send sensor 0 failed") > 1; }));
    show(kPowerSensor, 4);
    control("up", "power");
    EXPECT_TRUE(arrives({oids::registered::power, 4}));
    EXPECT_THAT(sent(), SizeIs(1));
}

TEST_F(HealthTraps, AChangeAroundAReloadIsNotReportedButTheReloadIs) {
    awaitPoll(kPowerSensor);
    control("fail", kPowerSensor.service, kPowerSensor.operation, "1", "--always");
    show(kPowerSensor, 1);
    agent_.hup();
    control("clear");
    awaitPoll(kPowerSensor);
    pollWith(kPowerSensor, 2);
    EXPECT_TRUE(arrives({oids::registered::power, 2}));
    EXPECT_THAT(sent(), ElementsAre(Sent{oids::registered::power, 2}));
    std::vector<std::string> starts;
    for (const Trap &trap : receiver.traps()) {
        if (!isBelow(trap.notification(), oids::kVendorSubtree)) {
            starts.push_back(trap.notification());
        }
    }
    EXPECT_THAT(starts, ElementsAre(".1.3.6.1.6.3.1.1.5.1", ".1.3.6.1.4.1.8072.4.0.3")) << "coldStart, nsNotifyRestart";
}

TEST_F(HealthTraps, TheyGoOnAfterAReload) {
    expectTrapsBeforeAndAfterAReload();
}

TEST_F(DaemonHealthTraps, TheyComeFromADaemonAndAfterItsReload) {
    expectTrapsBeforeAndAfterAReload();
}

TEST_F(Reboot, TheCameraGoesAwayAndComesBackWhileTheAgentAnswers) {
    const Result result = manager_.set(oids::rebootDevice, Type::Integer, 1);
    ASSERT_TRUE(result.ok()) << result;
    EXPECT_EQ(result.single().number, 1);
    EXPECT_EQ(logged("handle_rebootDevice: snmpset reboot - rebooting system now!!!!"), 1U);
    ASSERT_TRUE(events_.waitFor({{"event", "service_down"}, {"service", "temperature"}}));
    int answered = 0;
    EXPECT_TRUE(eventually(seconds(20), [&] {
        EXPECT_EQ(manager_.get(oids::modelName).single().type, Type::Octets);
        EXPECT_EQ(get(oids::rebootDevice), "1");
        ++answered;
        return manager_.get(oids::temperature).ok();
    }));
    EXPECT_GT(answered, 1) << "the camera was away in between";
    EXPECT_EQ(get(oids::temperature), "31");
}
