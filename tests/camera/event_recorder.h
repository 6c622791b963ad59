// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Collecting the events of a camera in tests.
 */
#ifndef QUARNSNMP_TEST_EVENT_RECORDER_H
#define QUARNSNMP_TEST_EVENT_RECORDER_H

#include <algorithm>
#include <vector>

#include <gtest/gtest.h>

#include "events.h"

namespace camera::test {

/** Collects the events of a camera, and their times apart from them. */
class EventRecorder {
public:
    explicit EventRecorder(Events &events)
        : subscription_(events.subscribe([this](const nlohmann::json &event) {
              EXPECT_TRUE(event.at("time").is_number());
              EXPECT_GE(event.at("time"), times_.empty() ? 0.0 : times_.back());
              times_.push_back(event.at("time"));
              seen_.push_back(event);
              seen_.back().erase("time");
          })) {}

    const std::vector<nlohmann::json> &seen() const {
        return seen_;
    }
    const std::vector<double> &times() const {
        return times_;
    }

    /** The kinds of the events that tell of moves, each with its axis, as in "move_stopped pan". */
    std::vector<std::string> moves() const {
        std::vector<std::string> kinds;
        for (const nlohmann::json &event : seen_) {
            if (event.contains("axis")) {
                kinds.push_back(event["event"].get<std::string>() + " " + event["axis"].get<std::string>());
            }
        }
        return kinds;
    }

    /** Ends the recording. */
    void stop() {
        subscription_ = Events::Subscription();
    }

    void clear() {
        seen_.clear();
        times_.clear();
    }

private:
    std::vector<double> times_;
    std::vector<nlohmann::json> seen_;
    Events::Subscription subscription_;
};

} // namespace camera::test

#endif
