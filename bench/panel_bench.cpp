// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Cost of the panel: processor time and memory without clients and with 1, 5 and 20 clients of the video stream, and
 * the frames that each client gets. On a busy machine there are fewer frames, and the time for each frame tells more.
 */
#include <algorithm>
#include <atomic>
#include <chrono>
#include <ctime>
#include <iostream>
#include <iterator>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "camera.h"
#include "http_client.h"
#include "process_information.h"
#include "table.h"

namespace {

using Clock = std::chrono::steady_clock;

/** Processor time of all threads of a process, in seconds. */
double processTime(pid_t process) {
    constexpr double kNanosecond = 1e-9;
    clockid_t clock{};
    timespec time{};
    if (clock_getcpuclockid(process, &clock) != 0 || clock_gettime(clock, &time) != 0) {
        throw std::runtime_error("no processor time of the panel");
    }
    return static_cast<double>(time.tv_sec) + kNanosecond * static_cast<double>(time.tv_nsec);
}

/** Reads frames until told to end. */
void watch(std::uint16_t port, const std::atomic<bool> &ends, std::atomic<long> &frames) {
    support::HttpConnection connection(port);
    connection.send("GET /stream.mjpeg HTTP/1.1\r\nHost: localhost\r\n\r\n");
    while (!ends) {
        const auto head = connection.readUntil("Content-Length: ");
        const auto length = connection.readUntil("\r\n\r\n");
        if (!head || !length || !connection.readOctets(std::stoul(*length))) {
            return;
        }
        ++frames;
    }
}

struct Round {
    double framesPerSecond = 0.0; ///< of each client
    double processorPercent = 0.0;
};

Round measure(std::uint16_t port, pid_t panel, int clients) {
    constexpr std::chrono::seconds kWarmUp{1};
    constexpr std::chrono::seconds kDuration{4};
    std::atomic<bool> ends{false};
    std::atomic<long> frames{0};
    std::vector<std::thread> threads;
    threads.reserve(static_cast<std::size_t>(clients));
    for (int i = 0; i < clients; ++i) {
        threads.emplace_back([&] { watch(port, ends, frames); });
    }
    std::this_thread::sleep_for(kWarmUp);
    const double before = processTime(panel);
    const long first = frames;
    const auto start = Clock::now();
    std::this_thread::sleep_for(kDuration);
    const double seconds = std::chrono::duration<double>(Clock::now() - start).count();
    const Round round = {clients > 0 ? static_cast<double>(frames - first) / seconds / clients : 0.0,
                         (processTime(panel) - before) / seconds * 100.0};
    ends = true;
    for (std::thread &thread : threads) {
        thread.join();
    }
    return round;
}

void run(int rounds) {
    const support::Camera camera("dome");
    // No agent is needed for pictures.
    support::Process panel(
        {{BENCH_PANEL, "--camera", camera.directory(), "--agent", "127.0.0.1:9", "--listen", "127.0.0.1:0"}});
    const std::string line = panel.output().awaitLine(0);
    if (line.empty()) {
        throw std::runtime_error("the panel does not start: " + panel.errors().text());
    }
    const auto port = static_cast<std::uint16_t>(std::stoul(line.substr(line.rfind(':') + 1)));
    bench::printHeading("Panel, 1280x720 at 15 frames per second");
    for (const int clients : {0, 1, 5, 20}) {
        std::vector<double> frames;
        std::vector<double> processor;
        for (int i = 0; i < rounds; ++i) {
            const Round round = measure(port, panel.pid(), clients);
            frames.push_back(round.framesPerSecond);
            processor.push_back(round.processorPercent);
        }
        const std::string who = std::to_string(clients) + (clients == 1 ? " client" : " clients");
        bench::printRounds(who + ": processor", processor, "% of one", 1);
        if (clients > 0) {
            constexpr double kMilliseconds = 10.0; ///< per second, for each percent
            std::vector<double> perFrame;
            std::transform(processor.begin(), processor.end(), frames.begin(), std::back_inserter(perFrame),
                           [](double percent, double rate) { return percent * kMilliseconds / std::max(rate, 0.1); });
            bench::printRounds(who + ": processor for each frame", perFrame, "ms", 1);
            bench::printRounds(who + ": frames for each", frames, "/s", 1);
        }
        constexpr double kKilobytes = 1024.0;
        bench::printValue(who + ": memory", static_cast<double>(support::residentKilobytes(panel.pid())) / kKilobytes,
                          "MB", 1);
    }
}

} // namespace

int main(int argc, char **argv) {
    try {
        const bool isQuick = argc > 1 && std::string(argv[1]) == "--quick";
        run(isQuick ? 1 : 3);
        return 0;
    } catch (const std::exception &error) {
        std::cerr << "bench-panel: " << error.what() << '\n';
        return 1;
    }
}
