// SPDX-License-Identifier: Apache-2.0
#include <array>
#include <exception>
#include <stdexcept>
#include <thread>

#include <unistd.h>

#include "agents.h"
#include "families.h"
#include "line_chart.h"
#include "load_generator.h"
#include "objects.h"
#include "processors.h"
#include "statistics.h"
#include "table.h"

namespace bench {

namespace {

/** How late the camera's answers are, in milliseconds; 0 is as fast as it can. */
constexpr std::array<int, 8> kDelays = {0, 1, 2, 5, 10, 20, 50, 100};
constexpr int kLeastAnswers = 10; // of a measurement, however late they are

void order(const support::Camera &camera, int delay) {
    const bool obeyed =
        camera.control("clear").status.clean() &&
        (delay == 0 || camera.control("delay", "temperature", "get_temperature_send", std::to_string(delay), "--always")
                           .status.clean());
    if (!obeyed) {
        throw std::runtime_error("the camera does not take orders");
    }
}

/** Answers in a second to two managers with one request under way each. */
struct Rates {
    double called = 0; ///< of the object that the camera is asked for
    double held = 0;   ///< of an object that the module holds, at the same time
};

Rates rates(std::uint16_t port, std::chrono::milliseconds duration) {
    Rates result;
    std::exception_ptr failure;
    std::thread other([&] {
        try {
            result.held = LoadGenerator({port}).run(Message(Pdu::Get, {{kModuleType}}), 1, duration).perSecond;
        } catch (...) {
            failure = std::current_exception();
        }
    });
    try {
        result.called = LoadGenerator({port}).run(Message(Pdu::Get, {{kTemperature}}), 1, duration).perSecond;
    } catch (...) {
        failure = std::current_exception();
    }
    other.join();
    if (failure) {
        std::rethrow_exception(failure);
    }
    return result;
}

/** Rounds of one delay. */
struct Figures {
    std::vector<double> called;
    std::vector<double> held;
};

std::array<Figures, kDelays.size()> measure(const CameraAgent &pair, const Effort &effort) {
    std::array<Figures, kDelays.size()> figures;
    for (int round = 0; round < effort.rounds; ++round) {
        for (std::size_t i = 0; i < kDelays.size(); ++i) {
            order(pair.camera, kDelays.at(i));
            const std::chrono::milliseconds least(kDelays.at(i) * kLeastAnswers);
            const Rates both = rates(pair.agent->port(), std::max(effort.slice, least));
            figures.at(i).called.push_back(both.called);
            figures.at(i).held.push_back(both.held);
        }
    }
    return figures;
}

} // namespace

void measureSlowCamera(const Effort &effort) {
    tie(::getpid(), kManagerProcessor);
    const CameraAgent pair("dome");
    const std::array<Figures, kDelays.size()> figures = measure(pair, effort);

    printFamily("A slow camera: two managers, one request under way each", "of the prompt camera's");
    LineChart chart;
    chart.title = "Requests in a second over the time that the camera takes";
    chart.xTitle = "time that the camera takes for a call (ms)";
    chart.yTitle = "answers in a second";
    chart.series = {{"an object that needs a call", {}}, {"an object that the module holds, at the same time", {}}};
    for (std::size_t i = 0; i < kDelays.size(); ++i) {
        const Figures &each = figures.at(i);
        const std::string delay = kDelays.at(i) == 0 ? "prompt" : std::to_string(kDelays.at(i));
        const std::string text = kDelays.at(i) == 0 ? "prompt camera: " : delay + " ms for a call: ";
        printRounds(text + "GET with one service call", each.called, "/s", 0, ratios(each.called, figures[0].called));
        printRounds(text + "GET of a held number", each.held, "/s", 0, ratios(each.held, figures[0].held));
        chart.xLabels.push_back(delay);
        chart.series[0].values.push_back(median(each.called));
        chart.series[1].values.push_back(median(each.held));
    }
    writeSvg(chart, effort.plot);
}

} // namespace bench
