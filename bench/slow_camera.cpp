// SPDX-License-Identifier: Apache-2.0
#include <array>
#include <exception>
#include <fstream>
#include <iomanip>
#include <stdexcept>
#include <thread>

#include <unistd.h>

#include "agents.h"
#include "load_generator.h"
#include "object_oids.h"
#include "processors.h"
#include "statistics.h"
#include "suites.h"
#include "table.h"

namespace bench {

namespace {

/** Delays of the camera's responses in milliseconds. */
constexpr std::array<int, 8> kDelays = {0, 1, 2, 5, 10, 20, 50, 100};
constexpr int kMinimumResponses = 10; // per measurement, even with the longest delay

void setDelay(const support::Camera &camera, int delay) {
    const bool isSet =
        camera.control("clear").status.clean() &&
        (delay == 0 || camera.control("delay", "temperature", "get_temperature_send", std::to_string(delay), "--always")
                           .status.clean());
    if (!isSet) {
        throw std::runtime_error("the camera rejects the delay");
    }
}

/** Responses per second to two simultaneous managers with one outstanding request each. */
struct Rates {
    double called = 0; ///< for an object that needs a call to the camera
    double cached = 0; ///< for an object cached by the module
};

Rates rates(std::uint16_t port, std::chrono::milliseconds duration) {
    Rates result;
    std::exception_ptr failure;
    std::thread other([&] {
        try {
            result.cached = LoadGenerator({port}).run(getRequest({oids::moduleType}), 1, duration).perSecond;
        } catch (...) {
            failure = std::current_exception();
        }
    });
    try {
        result.called = LoadGenerator({port}).run(getRequest({oids::temperature}), 1, duration).perSecond;
    } catch (...) {
        failure = std::current_exception();
    }
    other.join();
    if (failure) {
        std::rethrow_exception(failure);
    }
    return result;
}

/** Results for one delay, with one value per round. */
struct Figures {
    std::vector<double> called;
    std::vector<double> cached;
};

std::array<Figures, kDelays.size()> measure(const CameraAgent &pair, const Effort &effort) {
    std::array<Figures, kDelays.size()> figures;
    for (int round = 0; round < effort.rounds; ++round) {
        for (std::size_t i = 0; i < kDelays.size(); ++i) {
            setDelay(pair.camera, kDelays.at(i));
            const std::chrono::milliseconds least(kDelays.at(i) * kMinimumResponses);
            const Rates both = rates(pair.agent->port(), std::max(effort.slice, least));
            figures.at(i).called.push_back(both.called);
            figures.at(i).cached.push_back(both.cached);
        }
    }
    return figures;
}

/** Writes the medians for the chart, one delay per line. @throws std::runtime_error when the file cannot be written */
void writeData(const std::array<Figures, kDelays.size()> &figures, const std::string &path) {
    std::ofstream file(path);
    file << std::fixed << std::setprecision(1)
         << "# delay of a call (ms)\tobject that needs a call (requests/s)\tcached object (requests/s)\n";
    for (std::size_t i = 0; i < kDelays.size(); ++i) {
        const Figures &each = figures.at(i);
        file << kDelays.at(i) << '\t' << median(each.called) << '\t' << median(each.cached) << '\n';
    }
    if (!file.flush()) {
        throw std::runtime_error(path + " cannot be written");
    }
}

} // namespace

void measureSlowCamera(const Effort &effort) {
    pinToProcessor(::getpid(), kManagerProcessor);
    const CameraAgent pair("dome");
    const std::array<Figures, kDelays.size()> figures = measure(pair, effort);

    printHeading("Slow camera: two managers, 1 outstanding request each", "relative to no delay");
    for (std::size_t i = 0; i < kDelays.size(); ++i) {
        const Figures &each = figures.at(i);
        const std::string text = kDelays.at(i) == 0 ? "no delay: " : std::to_string(kDelays.at(i)) + " ms per call: ";
        printRounds(text + "GET with one service call", each.called, "/s", 0, ratios(each.called, figures[0].called));
        printRounds(text + "GET of a cached number", each.cached, "/s", 0, ratios(each.cached, figures[0].cached));
    }
    writeData(figures, effort.data);
}

} // namespace bench
