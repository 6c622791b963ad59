// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Recorder of a camera's events.
 */
#ifndef QUARNSNMP_TEST_EVENT_RECORDER_H
#define QUARNSNMP_TEST_EVENT_RECORDER_H

#include <algorithm>
#include <vector>

#include <gtest/gtest.h>

#include "events.h"

namespace camera::test {

/** Recorder of a camera's events, with their times in a list of their own. */
class EventRecorder {
public:
    explicit EventRecorder(Events &events) {
        start(events);
    }

    /** Records the events of a camera from now on, in place of earlier ones. */
    void start(Events &events) {
        clear();
        subscription_ = events.subscribe([this](const nlohmann::json &event) {
            EXPECT_TRUE(event.at("time").is_number());
            EXPECT_GE(event.at("time"), times_.empty() ? 0.0 : times_.back());
            times_.push_back(event.at("time"));
            seen_.push_back(event);
            seen_.back().erase("time");
        });
    }

    const std::vector<nlohmann::json> &seen() const {
        return seen_;
    }
    const std::vector<double> &times() const {
        return times_;
    }

    /** Returns the events of axes, each as kind and axis, such as "move_stopped pan". */
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
