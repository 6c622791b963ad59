// SPDX-License-Identifier: Apache-2.0
// Three clients, faults, frozen cameras, reloads and power cuts, all at the same time and for as long as one likes: the
// environment's QUARNSNMP_SOAK_SECONDS says how long.
#include <algorithm>
#include <array>
#include <atomic>
#include <csignal>
#include <iostream>
#include <thread>

#include <gtest/gtest.h>

#include "eventually.h"
#include "fault_sweep.h"
#include "footprint.h"
#include "object_oids.h"
#include "settings.h"

namespace {

using namespace harness;
using namespace faults;
using Clock = std::chrono::steady_clock;
using std::chrono::milliseconds;
using std::chrono::seconds;

/**
 * The longest time of a request. It may have to wait for a reload, which takes up to 40 s if it begins with a frozen
 * camera. Then there may be a request of each other client before it, and its own calls: at most six each.
 */
constexpr milliseconds kAnswerLimit = seconds(40) + 3 * (6 * kCallLimit);

/** Varbinds of the requests with many of them. */
constexpr std::size_t kMany = 200;

constexpr seconds kFreeze(3);

/** Outcomes of a client's requests. */
struct Counts {
    std::size_t gets = 0;
    std::size_t sets = 0;
    std::size_t failed = 0; ///< answered with genErr
    std::size_t absent = 0; ///< for an object whose service was not there at the last reload
    std::size_t unanswered = 0;
    std::size_t unexpected = 0;
    milliseconds longest{0};

    void add(const Counts &other) {
        gets += other.gets;
        sets += other.sets;
        failed += other.failed;
        absent += other.absent;
        unanswered += other.unanswered;
        unexpected += other.unexpected;
        longest = std::max(longest, other.longest);
    }
};

/** Disturbances of the camera and the agent. */
struct Disturbances {
    std::size_t faults = 0;
    std::size_t freezes = 0;
    std::size_t reloads = 0;
    std::size_t powerCuts = 0;
    milliseconds longestReload{0};
};

/** Returns true for the answer of an agent without the object. */
bool isAbsent(const Request &request, const Result &result) {
    if (!request.isGet()) {
        return result.error != request.error &&
               (result.error == ErrorStatus::NotWritable || result.error == ErrorStatus::NoCreation);
    }
    return result.ok() && (result.single().type == Type::NoSuchObject || result.single().type == Type::NoSuchInstance);
}

void count(const Request &request, const Result &result, Counts &counts) {
    ++(request.isGet() ? counts.gets : counts.sets);
    if (!result.answered) {
        ++counts.unanswered;
        ADD_FAILURE() << request.varbind << " is not answered";
    } else if (result.error == ErrorStatus::GenErr && request.error != ErrorStatus::GenErr) {
        ++counts.failed;
    } else if (isAbsent(request, result)) {
        ++counts.absent;
    } else if (result.error != request.error) {
        ++counts.unexpected;
        ADD_FAILURE() << request.varbind << ": " << result;
    }
}

/** Sends requests in rounds until `stop` is set or one of them fails. */
void load(const std::string &peer, std::vector<Request> requests, std::size_t first, std::atomic<bool> &stop,
          Counts &counts) {
    Manager manager(peer);
    manager.setTimeout(patient(kAnswerLimit));
    std::rotate(requests.begin(), requests.begin() + static_cast<std::ptrdiff_t>(first), requests.end());
    while (!stop) {
        for (const Request &request : requests) {
            if (stop || request.onlyFailed) {
                continue;
            }
            const Clock::time_point start = Clock::now();
            const Result result = request.isGet() ? manager.get(request.varbind.oid) : manager.set({request.varbind});
            counts.longest = std::max(counts.longest, std::chrono::duration_cast<milliseconds>(Clock::now() - start));
            count(request, result, counts);
            if (counts.unanswered + counts.unexpected != 0) {
                stop = true;
            }
        }
    }
}

/** Sends GETs of many limits and states, in which the module makes the most calls, until `stop` is set. */
void loadWithMany(const std::string &peer, std::atomic<bool> &stop, Counts &counts) {
    Manager manager(peer);
    manager.setTimeout(patient(kAnswerLimit));
    std::vector<std::string> objects;
    for (std::size_t i = 0; i < kMany; i += 4) {
        objects.insert(objects.end(),
                       {oids::rangePanLeftLimit, oids::rangeMaximumPreset, oids::inputStatus, oids::temperature});
    }
    while (!stop) {
        const Clock::time_point start = Clock::now();
        const Result result = manager.getAll(objects);
        counts.longest = std::max(counts.longest, std::chrono::duration_cast<milliseconds>(Clock::now() - start));
        counts.gets += objects.size();
        if (!result.answered) {
            ++counts.unanswered;
            stop = true;
            ADD_FAILURE() << "a GET of many objects is not answered";
        }
    }
}

AgentOptions quiet() {
    AgentOptions options;
    options.environment = {{"QUARNSNMP_LOG_LEVEL", "error"}}; // hours of debug lines fill a disk
    return options;
}

/** A periodic action. */
class Schedule {
public:
    explicit Schedule(milliseconds period) : period_(period), next_(Clock::now() + period) {}

    bool isDue() {
        if (Clock::now() < next_) {
            return false;
        }
        next_ = Clock::now() + period_;
        return true;
    }

private:
    milliseconds period_;
    Clock::time_point next_;
};

class SoakSlowTiming : public FaultSweep {
protected:
    SoakSlowTiming() : FaultSweep("dome", quiet()), names_(services().begin(), services().end()) {}

    /** Loads the agent and disturbs it for a time. */
    void soak(seconds duration) {
        std::vector<Request> requests = reads_;
        requests.insert(requests.end(), writes_.begin(), writes_.end());
        std::atomic<bool> stop = false;
        std::array<Counts, 3> counts;
        std::thread first(load, agent_.peer(), requests, 0, std::ref(stop), std::ref(counts[0]));
        std::thread second(load, agent_.peer(), requests, requests.size() / 2, std::ref(stop), std::ref(counts[1]));
        std::thread many(loadWithMany, agent_.peer(), std::ref(stop), std::ref(counts[2]));
        EXPECT_NO_THROW(disturb(duration, stop));
        stop = true;
        for (std::thread *client : {&first, &second, &many}) {
            client->join();
        }
        for (const Counts &each : counts) {
            counts_.add(each);
        }
    }

    /** Ends all faults and makes every call, so that the module has opened all connections. */
    Footprint settle() {
        control("clear");
        agent_.hup();
        recover();
        return footprint(agent_);
    }

    Counts counts_;
    Disturbances disturbances_;

private:
    void disturb(seconds duration, const std::atomic<bool> &stop) {
        const Clock::time_point end = Clock::now() + duration;
        Schedule faults(seconds(1));
        Schedule reloads(seconds(10));
        Schedule powerCuts(seconds(30));
        Schedule freezes(seconds(25));
        while (!stop && Clock::now() < end) {
            if (faults.isDue()) {
                changeFault();
            }
            if (reloads.isDue()) {
                disturbances_.longestReload = std::max(disturbances_.longestReload, agent_.hup());
                ++disturbances_.reloads;
            }
            if (freezes.isDue()) {
                camera_.signal(SIGSTOP);
                eventually(kFreeze, [&stop] { return stop.load(); });
                camera_.signal(SIGCONT);
                ++disturbances_.freezes;
            }
            if (powerCuts.isDue()) {
                camera_.kill();
                camera_.start();
                down_.clear(); // with all other faults
                ++disturbances_.powerCuts;
            }
            eventually(milliseconds(20), [&stop] { return stop.load(); });
        }
        endFault();
    }

    /** Starts the next fault of the next service, or a pause without faults. */
    void changeFault() {
        endFault();
        if (++step_ % 2 == 0) {
            return;
        }
        ++disturbances_.faults;
        constexpr std::size_t kWays = 4;
        const std::size_t number = step_ / 2;
        const std::string &service = names_.at(number % names_.size());
        switch (number / names_.size() % kWays) {
        case 0:
            order("fail", service, "*", "1");
            break;
        case 1:
            control("down", service);
            down_ = service;
            break;
        case 2:
            order("delay", service, "*", "50");
            break;
        default:
            order("delay", service, "*", "600000");
            break;
        }
    }

    void endFault() {
        control("clear");
        if (!down_.empty()) {
            control("up", down_);
            down_.clear();
        }
    }

    std::vector<std::string> names_;
    std::size_t step_ = 0;
    std::string down_; ///< the service that is down; empty for none
};

} // namespace

TEST_F(SoakSlowTiming, EveryRequestIsAnsweredAndNothingGrows) {
    const seconds duration(std::stol(environmentOr("QUARNSNMP_SOAK_SECONDS", "120")));
    constexpr int kFirstReloads = 20; // fill the caches of agent, loader and allocator
    for (int i = 0; i < kFirstReloads; ++i) {
        agent_.hup();
    }
    soak(duration / 8);
    const Footprint before = settle();
    soak(duration);
    const Footprint after = settle();
    // The agent itself loses some memory at each reload, with the module and without it.
    constexpr std::size_t kKilobytesPerReload = 8;
    expectFlat(before, after, kSlackKilobytes + kKilobytesPerReload * disturbances_.reloads);
    EXPECT_GT(counts_.failed, 0U) << "no fault has struck";
    std::cout << counts_.gets << " GET, " << counts_.sets << " SET: " << counts_.failed << " genErr, " << counts_.absent
              << " without an object, " << counts_.unanswered << " unanswered, the longest " << counts_.longest.count()
              << " ms\n"
              << disturbances_.faults << " faults, " << disturbances_.freezes << " freezes, " << disturbances_.powerCuts
              << " power cuts, " << disturbances_.reloads << " reloads, the longest "
              << disturbances_.longestReload.count() << " ms\n"
              << before << ", then " << after << '\n';
}
