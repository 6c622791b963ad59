// SPDX-License-Identifier: Apache-2.0
// A camera or a service that hangs, and the rest of the agent.
#include <atomic>
#include <csignal>
#include <thread>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "camera_agent.h"
#include "object_oids.h"
#include "position_commands.h"

namespace {

using namespace harness;
using Clock = std::chrono::steady_clock;
using std::chrono::milliseconds;
using std::chrono::seconds;

milliseconds since(Clock::time_point start) {
    return std::chrono::duration_cast<milliseconds>(Clock::now() - start);
}

/** A dome whose processes hang. */
class HangTiming : public CameraAgent {
protected:
    HangTiming() : CameraAgent("dome") {
        manager_.setTimeout(patient(seconds(20)));
        EXPECT_TRUE(manager_.get(oids::positionPan).ok());
    }

    /** Sends a GET. @return time until the answer */
    milliseconds timeOfGet(const std::vector<std::string> &objects) {
        const Clock::time_point start = Clock::now();
        EXPECT_TRUE(manager_.getAll(objects).answered) << objects.size() << " varbinds from " << objects.front();
        return since(start);
    }
};

class HangSlowTiming : public HangTiming {};

} // namespace

TEST_F(HangTiming, ARequestOfManyReadsWaitsForOneCall) {
    ASSERT_EQ(kill(camera_.pid(), SIGSTOP), 0);
    for (const auto &[object, count] :
         {std::pair(oids::rangePanLeftLimit, 2000), std::pair(oids::rangeMaximumPreset, 10),
          std::pair(oids::temperature, 10), std::pair(oids::inputStatus, 10)}) {
        const std::vector<std::string> objects(static_cast<std::size_t>(count), object);
        EXPECT_GE(timeOfGet(objects), milliseconds(1900)) << object;
        EXPECT_LT(timeOfGet(objects), milliseconds(500)) << object;
    }
    ASSERT_EQ(kill(camera_.pid(), SIGCONT), 0);
}

TEST_F(HangTiming, AFailedReadNamesItsVarbind) {
    control("down", "temperature");
    control("down", "alarm");
    const Result scalar = manager_.get(oids::positionPan, oids::temperature, oids::positionTilt);
    EXPECT_EQ(scalar.error, ErrorStatus::GenErr);
    EXPECT_EQ(scalar.errorIndex, 2);
    const Result cells = manager_.getAll({oids::row(oids::alarmStatesKind, 1), oids::row(oids::alarmStatesState, 2)});
    EXPECT_EQ(cells.error, ErrorStatus::GenErr);
    EXPECT_EQ(cells.errorIndex, 2);
}

TEST_F(HangSlowTiming, OthersAreAnsweredWhileSomebodyPollsAHungSensor) {
    constexpr int kRounds = 12;
    control("delay", "temperature", "*", "600000", "--always");
    std::atomic<bool> polling = true;
    std::thread poller([this, &polling] {
        Manager manager(agent_.peer());
        manager.setTimeout(patient(seconds(20)));
        for (Clock::time_point next = Clock::now(); polling; next += seconds(1)) {
            manager.get(oids::temperature);
            std::this_thread::sleep_until(next + seconds(1));
        }
    });
    Manager other(agent_.peer());
    other.setTimeout(seconds(1));
    int answered = 0;
    const Clock::time_point start = Clock::now() + milliseconds(200);
    for (int round = 0; round < kRounds; ++round) {
        std::this_thread::sleep_until(start + round * seconds(1));
        answered += other.get(oids::sysUpTime).answered ? 1 : 0;
    }
    EXPECT_GE(answered, 10);
    const Clock::time_point stop = Clock::now();
    set(oids::positionPan, position_commands::stop());
    EXPECT_LT(since(stop), milliseconds(2500));
    polling = false;
    poller.join();
}
