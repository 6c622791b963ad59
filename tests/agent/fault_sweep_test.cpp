// SPDX-License-Identifier: Apache-2.0
// Every call of the core library fails, comes late or finds its service gone, while every object is read and written:
// each request is answered in time, as the users' documents say, and nothing is left behind.
#include <algorithm>
#include <csignal>
#include <iostream>
#include <iterator>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "eventually.h"
#include "fault_sweep.h"
#include "footprint.h"
#include "object_oids.h"
#include "process_information.h"

namespace {

using namespace harness;
using namespace faults;
using std::chrono::milliseconds;
using std::chrono::seconds;
using testing::IsEmpty;

constexpr const char *kFailed = "1";     ///< a status of the camera
constexpr const char *kNever = "600000"; ///< milliseconds of delay beyond all that is waited for

/** Returns true for a call of the module's start, which no request makes. */
bool belongsToStart(const std::string &service, const std::string &operation) {
    const std::vector<StartFault> faults = startFaults(service);
    return std::any_of(faults.begin(), faults.end(),
                       [&operation](const StartFault &fault) { return fault.operation == operation; });
}

/** Sweeps over the services one by one. */
class FaultSweepOf : public FaultSweep, public testing::WithParamInterface<std::string> {
protected:
    FaultSweepOf() : FaultSweep(cameraWith(GetParam())) {}

    /** The service under test. */
    static const std::string &service() {
        return GetParam();
    }

    bool makes(const std::string &operation) const {
        const Fault fault = {{service()}, operation};
        const auto strikes = [&fault](const Request &request) { return !fault.struck(request.calls).empty(); };
        return std::any_of(reads_.begin(), reads_.end(), strikes) ||
               std::any_of(writes_.begin(), writes_.end(), strikes);
    }
};

class FaultSweepSlowOf : public FaultSweepOf {
protected:
    /** Sends the first request that makes a call, under a fault of one such call. */
    void strikeOnce(const std::string &operation, const std::string &delay, Fault fault) {
        SCOPED_TRACE(operation + " late by " + delay + " ms");
        fault.services = {service()};
        fault.operation = operation;
        forgetRelaySetUp();
        for (const std::vector<Request> *requests : {&reads_, &writes_}) {
            for (const Request &request : *requests) {
                if (!request.onlyFailed && !fault.struck(request.calls).empty()) {
                    control("delay", service(), operation, delay);
                    send(request, fault);
                    recover();
                    return;
                }
            }
        }
    }
};

/** A start with one fault. */
class FaultStart : public CameraAgent, public testing::WithParamInterface<std::string> {
protected:
    FaultStart() : CameraAgent(cameraWith(GetParam())) {}

    /** Returns the present objects and their values. */
    std::vector<std::string> shown() {
        std::vector<std::string> lines;
        for (const Varbind &varbind : walk()) {
            lines.push_back(varbind.oid + " " + recordedValue(varbind));
        }
        return lines;
    }

    /** Reloads the module under every fault of the start, and without it. @param how of a control command */
    void startUnder(const char *command, const char *how) {
        agent_.hup();
        const std::vector<std::string> before = shown();
        for (const StartFault &fault : startFaults(GetParam())) {
            SCOPED_TRACE(fault.operation);
            const CameraEvents events(camera_);
            const std::size_t logStart = agent_.moduleLog().size();
            control(command, fault.service, fault.operation, how, "--always");
            agent_.hup();
            EXPECT_TRUE(
                events.waitFor({{"event", "fault"}, {"service", fault.service}, {"operation", fault.operation}}));
            EXPECT_GE(agent_.moduleLog().count(fault.log, logStart), 1U) << fault.log;
            control("clear");
            EXPECT_EQ(shown(), changedBy(fault, before));
            agent_.hup();
            EXPECT_EQ(shown(), before);
        }
    }

private:
    static std::vector<std::string> changedBy(const StartFault &fault, const std::vector<std::string> &before) {
        std::vector<std::string> after;
        for (const std::string &line : before) {
            const std::string oid = line.substr(0, line.find(' '));
            const bool isMissing = std::any_of(fault.missing.begin(), fault.missing.end(),
                                               [&oid](const std::string &root) { return isBelow(oid, root); });
            const auto change = std::find_if(fault.changed.begin(), fault.changed.end(),
                                             [&oid](const auto &each) { return each.first == oid; });
            if (!isMissing) {
                after.push_back(change == fault.changed.end() ? line : oid + " " + change->second);
            }
        }
        return after;
    }
};

class FaultStartSlow : public FaultStart {};

/** A start for which nothing is to be found: it waits for the lens, which at this pace of its clock takes no time. */
class FaultDiscovery : public CameraAgent {
protected:
    FaultDiscovery() : CameraAgent("dome", withFastClock()) {}

    /** Reloads the module without targets, or without services that open, and then with all of them. */
    void expectPanTiltAndPresetsOnly(const std::vector<std::string> &services, const char *operation) {
        agent_.hup();
        const std::vector<Varbind> before = walk();
        for (const std::string &service : services) {
            control("fail", service, operation, kFailed, "--always");
        }
        agent_.hup();
        EXPECT_EQ(oidsOf(manager_.walk(oids::kNtcipSubtree)), objectsWithoutServices());
        EXPECT_THAT(manager_.walk(oids::kVendorSubtree), IsEmpty());
        control("clear");
        agent_.hup();
        EXPECT_EQ(walk(), before);
    }
};

/** Sweeps over whole cameras. */
class FaultSweepOfCamera : public FaultSweep, public testing::WithParamInterface<const char *> {
protected:
    FaultSweepOfCamera() : FaultSweep(GetParam()) {}

    void orderForAll(const char *command, const char *how) {
        for (const std::string &service : services()) {
            order(command, service, "*", how);
        }
    }
};

class FaultSweepSlowOfCamera : public FaultSweepOfCamera {};

/** The services whose calls can be late: not that of the start, nor that of the restart, which ends all connections. */
std::vector<std::string> calledServices() {
    std::vector<std::string> services = allServices();
    const auto isNotCalled = [](const std::string &service) { return service.rfind("device_", 0) == 0; };
    services.erase(std::remove_if(services.begin(), services.end(), isNotCalled), services.end());
    return services;
}

std::string nameOf(const testing::TestParamInfo<std::string> &service) {
    return service.param;
}

} // namespace

TEST_P(FaultSweepOf, EachCallFails) {
    for (const std::string &operation : operationsOf(service())) {
        SCOPED_TRACE(operation);
        if (!makes(operation)) {
            EXPECT_TRUE(belongsToStart(service(), operation)) << "no request makes this call";
            continue;
        }
        const CameraEvents events(camera_);
        forgetRelaySetUp();
        order("fail", service(), operation, kFailed);
        sweep({{service()}, operation});
        EXPECT_TRUE(events.waitFor({{"event", "fault"}, {"service", service()}, {"operation", operation}}));
        control("clear");
        recover();
    }
}

TEST_P(FaultSweepOf, AllCallsFailAndThenTheServiceIsDown) {
    order("fail", service(), "*", kFailed);
    sweep({{service()}});
    control("clear");
    recover();
    control("down", service());
    sweep({{service()}});
    control("up", service());
    recover();
}

TEST_P(FaultSweepSlowOf, ACallThatIsLateSucceedsOrIsGivenUp) {
    constexpr milliseconds kLate{1500};
    for (const std::string &operation : operationsOf(service())) {
        strikeOnce(operation, std::to_string(kLate.count()), {{}, "", false, kLate, kLate});
        strikeOnce(operation, kNever, {{}, "", true, kCallLimit, kCallLimit - milliseconds(50)});
    }
}

TEST_P(FaultSweepSlowOf, AServiceThatHangsHoldsARequestForItsCallsOnly) {
    order("delay", service(), "*", kNever);
    sweep({{service()}, "", true, kCallLimit, kCallLimit - milliseconds(50)});
    control("clear");
    recover();
}

TEST_P(FaultStart, AServiceThatFailsLeavesTheOthersAsTheyAre) {
    startUnder("fail", kFailed);
}

TEST_P(FaultStartSlow, AServiceThatHangsLeavesTheOthersAsTheyAre) {
    startUnder("delay", kNever);
}

TEST_F(FaultDiscovery, WithoutTargetsThereArePanTiltAndPresets) {
    expectPanTiltAndPresetsOnly({"directory"}, "get_target_ids");
    EXPECT_EQ(logged("no zorva API dev info"), 3U);
}

TEST_F(FaultDiscovery, WhenNothingOpensThereArePanTiltAndPresets) {
    const std::vector<std::string> all = allServices();
    std::vector<std::string> present;
    std::copy_if(all.begin(), all.end(), std::back_inserter(present),
                 [](const std::string &service) { return cameraWith(service) == "dome"; });
    expectPanTiltAndPresetsOnly(present, "initiator_init");
    EXPECT_EQ(logged("failed dev info initiator init"), 3U);
}

TEST_P(FaultSweepOfCamera, EverythingFailsAgainAndAgainAndNothingIsLeftBehind) {
    constexpr int kRounds = 5;
    Footprint before{};
    std::size_t cameraDescriptors = 0;
    for (int round = 0; round < kRounds; ++round) {
        orderForAll("fail", kFailed);
        sweep({services()});
        control("clear");
        for (const std::string &service : services()) {
            control("down", service);
        }
        sweep({services()});
        for (const std::string &service : services()) {
            control("up", service);
        }
        recover();
        // The first rounds fill the allocator's store.
        if (round == 1) {
            before = footprint(agent_);
            cameraDescriptors = descriptorCount(camera_.pid());
        }
    }
    expectFlat(before, footprint(agent_));
    EXPECT_EQ(descriptorCount(camera_.pid()), cameraDescriptors);
    std::cout << reads_.size() << " GET, " << writes_.size() << " SET: " << before << ", then " << footprint(agent_)
              << '\n';
}

TEST_P(FaultSweepSlowOfCamera, ACameraThatIsStoppedInMidWalkHoldsEachObjectForItsCallsOnly) {
    const Fault hang = {services(), "", true, kCallLimit, kCallLimit - milliseconds(50)};
    const std::size_t middle = reads_.size() / 2;
    for (std::size_t i = 0; i < reads_.size(); ++i) {
        if (i == middle) {
            ASSERT_EQ(kill(camera_.pid(), SIGSTOP), 0);
        }
        send(reads_.at(i), i < middle ? Fault{} : hang);
    }
    // Round the end to where it stopped.
    for (std::size_t i = 0; i < middle; ++i) {
        send(reads_.at(i), hang);
    }
    ASSERT_EQ(kill(camera_.pid(), SIGCONT), 0);
    recover();
}

INSTANTIATE_TEST_SUITE_P(Services, FaultSweepOf, testing::ValuesIn(allServices()), nameOf);
INSTANTIATE_TEST_SUITE_P(Services, FaultSweepSlowOf, testing::ValuesIn(calledServices()), nameOf);
INSTANTIATE_TEST_SUITE_P(Services, FaultStart, testing::ValuesIn(allServices()), nameOf);
INSTANTIATE_TEST_SUITE_P(Services, FaultStartSlow, testing::ValuesIn(allServices()), nameOf);
INSTANTIATE_TEST_SUITE_P(Cameras, FaultSweepOfCamera, testing::Values("dome", "stepper", "twinfocus"),
                         [](const auto &camera) { return std::string(camera.param); });
INSTANTIATE_TEST_SUITE_P(Cameras, FaultSweepSlowOfCamera, testing::Values("dome"),
                         [](const auto &camera) { return std::string(camera.param); });
