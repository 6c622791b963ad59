// SPDX-License-Identifier: Apache-2.0
#include "usage.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <fstream>
#include <iomanip>
#include <ostream>
#include <sstream>
#include <thread>

#include "agent_asker.h"
#include "agent_files.h"
#include "visible_text.h"

namespace fleet {

namespace {

using boost::asio::ip::udp;
using Clock = std::chrono::steady_clock;

/** An agent's counter of messages at a time. */
struct Reading {
    std::optional<unsigned long> count;
    Clock::time_point time;
    unsigned asked = 0; ///< requests of this program before the response
};

/** Reads the counters of all agents, each several times. */
class CounterReader {
public:
    explicit CounterReader(const std::vector<FleetCamera> &cameras)
        : question_(snmp::getRequest({kReceivedMessages}, kCounterCommunity)), asked_(cameras.size(), 0) {
        for (const FleetCamera &camera : cameras) {
            agents_.emplace_back(boost::asio::ip::make_address_v4(camera.address),
                                 static_cast<unsigned short>(camera.port));
        }
    }

    std::vector<Reading> read() {
        readings_.assign(agents_.size(), {});
        missing_ = agents_.size();
        boost::asio::io_context io(1);
        AgentAsker asker(
            io, agents_.front().address(),
            [this](const udp::endpoint &from, const snmp::DecodedResponse &response) { take(from, response); });
        // An agent that waits for a hanging service does not answer in time, and an overrun socket loses requests.
        constexpr int kAttempts = 4;
        constexpr std::chrono::milliseconds kPatience{500};
        for (int i = 0; i < kAttempts && missing_ > 0; ++i) {
            askMissing(io, asker);
            const Clock::time_point deadline = Clock::now() + kPatience;
            while (missing_ > 0 && io.run_one_until(deadline) > 0) {
            }
        }
        return readings_;
    }

private:
    void askMissing(boost::asio::io_context &io, AgentAsker &asker) {
        for (std::size_t i = 0; i < agents_.size(); ++i) {
            if (!readings_[i].count) {
                ++asked_[i];
                asker.ask(agents_[i], question_, static_cast<std::uint32_t>(i));
                io.poll(); // takes responses before they fill the socket
            }
        }
    }

    void take(const udp::endpoint &from, const snmp::DecodedResponse &response) {
        if (response.id < agents_.size() && agents_[response.id] == from && response.error == 0 &&
            response.values == 1 && !readings_[response.id].count) {
            readings_[response.id] = {response.count, Clock::now(), asked_[response.id]};
            --missing_;
        }
    }

    snmp::Message question_;
    std::vector<udp::endpoint> agents_;
    std::vector<unsigned> asked_;
    std::vector<Reading> readings_;
    std::size_t missing_ = 0;
};

std::optional<double> rateBetween(const Reading &first, const Reading &last) {
    if (!first.count || !last.count || *last.count < *first.count) {
        return std::nullopt; // an agent that is new counts from 0
    }
    const double own = last.asked - first.asked;
    const double seconds = std::chrono::duration<double>(last.time - first.time).count();
    return std::max(0.0, static_cast<double>(*last.count - *first.count) - own) / seconds;
}

std::string withUnit(const std::optional<double> &value, double divisor, const char *unit) {
    if (!value) {
        return "?";
    }
    char text[48];
    std::snprintf(text, sizeof text, "%.1f %s", *value / divisor, unit);
    return text;
}

constexpr double kKilobytesInMegabyte = 1024.0;

void printLine(std::ostream &output, const std::vector<std::string> &cells) {
    const int widths[] = {13, 22, 12, 10, 10, 11, 0};
    std::ostringstream line;
    for (std::size_t i = 0; i < cells.size(); ++i) {
        line << std::left << std::setw(widths[i]) << cells[i];
    }
    output << camera::visible(line.str()) << '\n';
}

void printTable(const std::vector<Usage> &cameras, std::ostream &output) {
    printLine(output, {"camera", "address", "kind", "state", "restarts", "memory", "requests"});
    unsigned ready = 0;
    unsigned restarts = 0;
    double kilobytes = 0.0;
    double requests = 0.0;
    for (const Usage &each : cameras) {
        const FleetCamera &camera = each.camera;
        printLine(output,
                  {camera.name, camera.address + ":" + std::to_string(camera.port), camera.kind,
                   camera.isReady ? "ready" : "starting", std::to_string(camera.restarts),
                   withUnit(each.kilobytes, kKilobytesInMegabyte, "MB"), withUnit(each.requestsPerSecond, 1.0, "/s")});
        ready += camera.isReady ? 1 : 0;
        restarts += camera.restarts;
        kilobytes += each.kilobytes.value_or(0.0);
        requests += each.requestsPerSecond.value_or(0.0);
    }
    output << cameras.size() << (cameras.size() == 1 ? " camera, " : " cameras, ") << ready << " ready, " << restarts
           << (restarts == 1 ? " restart, " : " restarts, ") << withUnit(kilobytes, kKilobytesInMegabyte, "MB") << ", "
           << withUnit(requests, 1.0, "requests/s") << '\n';
}

nlohmann::json valueOrNull(const std::optional<double> &value) {
    return value ? nlohmann::json(*value) : nlohmann::json(nullptr);
}

} // namespace

std::optional<double> proportionalKilobytes(int process) {
    if (process <= 0) {
        return std::nullopt;
    }
    std::ifstream file("/proc/" + std::to_string(process) + "/smaps_rollup");
    for (std::string line; std::getline(file, line);) {
        std::istringstream words(line);
        std::string name;
        double kilobytes = 0.0;
        if (words >> name >> kilobytes && name == "Pss:") {
            return kilobytes;
        }
    }
    return std::nullopt;
}

std::vector<Usage> measureFleet(const StatusOptions &options) {
    const std::vector<FleetCamera> cameras = camerasOf(options.directory);
    CounterReader counters(cameras);
    const std::vector<Reading> before = counters.read();
    const Clock::time_point end =
        Clock::now() + std::chrono::duration_cast<Clock::duration>(std::chrono::duration<double>(options.interval));
    std::vector<Usage> usages;
    for (const FleetCamera &camera : cameras) {
        const std::optional<double> first = proportionalKilobytes(camera.processes[0]);
        const std::optional<double> second = proportionalKilobytes(camera.processes[1]);
        Usage usage{camera, std::nullopt, std::nullopt};
        if (first && second) {
            usage.kilobytes = *first + *second;
        }
        usages.push_back(std::move(usage));
    }
    std::this_thread::sleep_until(end);
    const std::vector<Reading> after = counters.read();
    for (std::size_t i = 0; i < usages.size(); ++i) {
        usages[i].requestsPerSecond = rateBetween(before[i], after[i]);
    }
    return usages;
}

void printUsage(const std::vector<Usage> &cameras, bool asJson, std::ostream &output) {
    if (!asJson) {
        return printTable(cameras, output);
    }
    nlohmann::ordered_json list = nlohmann::ordered_json::array();
    for (const Usage &each : cameras) {
        list.push_back({{"name", each.camera.name},
                        {"address", each.camera.address + ":" + std::to_string(each.camera.port)},
                        {"kind", each.camera.kind},
                        {"ready", each.camera.isReady},
                        {"restarts", each.camera.restarts},
                        {"kilobytes", valueOrNull(each.kilobytes)},
                        {"requestsPerSecond", valueOrNull(each.requestsPerSecond)}});
    }
    constexpr int kIndent = 2;
    output << list.dump(kIndent, ' ', false, nlohmann::ordered_json::error_handler_t::replace) << '\n';
}

} // namespace fleet
