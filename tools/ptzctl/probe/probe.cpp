// SPDX-License-Identifier: Apache-2.0
#include "probe/probe.h"

#include <algorithm>
#include <charconv>
#include <stdexcept>

#include <fmt/format.h>

#include "camera_requests.h"
#include "commands/switches.h"
#include "failure.h"
#include "format_value.h"
#include "object_oids.h"

namespace ptzctl {

namespace {

using ptz::Reading;
using Clock = std::chrono::steady_clock;

/** A camera that has a limited time for all requests together. Each request has half of the rest for an attempt. */
class HurriedCamera : public snmp::Requester {
public:
    HurriedCamera(snmp::Requester &camera, std::chrono::microseconds time)
        : camera_(camera), end_(Clock::now() + time) {}

    snmp::Response exchange(snmp::Operation operation, const std::vector<snmp::Varbind> &varbinds,
                            const snmp::Patience &patience) override {
        const auto left = std::chrono::duration_cast<std::chrono::microseconds>(end_ - Clock::now());
        const auto attempt = left / patience.attempts;
        if (attempt < std::chrono::milliseconds(1)) {
            throw snmp::Failure(snmp::Cause::NoAnswer, "no time left");
        }
        return camera_.exchange(operation, varbinds, {patience.attempts, attempt});
    }

    snmp::WriteResponse write(const std::vector<snmp::Varbind> & /*read*/,
                              const std::vector<snmp::Varbind> & /*written*/) override {
        throw std::logic_error("a probe only reads");
    }

private:
    snmp::Requester &camera_;
    Clock::time_point end_;
};

std::string textOf(const std::optional<AlertRange> &range) {
    return range ? range->text : "";
}

/** Collects the findings of one camera. */
class Prober {
public:
    Prober(snmp::Requester &camera, const Expectations &expected) : camera_(camera), expected_(expected) {}

    Findings run() {
        try {
            measureLatency();
            addModel();
            addTemperature();
            addState("power", oids::power, expected_.power);
            addState("voltage", oids::voltage, expected_.voltage);
            addInputs();
            requireCamera();
        } catch (const std::exception &failure) {
            say(expected_.unreadable, failure.what());
        }
        if (latency_) {
            measure({"latency", fmt::format("{:.3f}s", *latency_), "", "", "0", ""});
        }
        return std::move(findings_);
    }

private:
    void say(State state, const std::string &text) {
        findings_.statements.push_back({state, text});
    }

    void measure(Measurement measurement) {
        findings_.measurements.push_back(std::move(measurement));
    }

    /** Reads an object that every agent has, and that needs no service of the camera. */
    void measureLatency() {
        const auto start = Clock::now();
        ptz::read(camera_, ptz::instanceAt(oids::sysUpTime));
        latency_ = std::chrono::duration<double>(Clock::now() - start).count();
    }

    /**
     * Reads a value of the camera.
     * @param isExpected  the camera must have it
     * @return nothing for a value that is missing or cannot be read, which is stated if it matters
     */
    std::optional<snmp::Varbind> valueOf(const char *name, const char *oid, bool isExpected) {
        Reading reading;
        try {
            reading = ptz::read(camera_, ptz::instanceAt(oid));
        } catch (const snmp::Failure &failure) {
            throw snmp::Failure(failure.cause(), fmt::format("{}: {}", name, failure.what()));
        }
        hasAny_ = hasAny_ || !reading.missing;
        if (reading.ok()) {
            return reading.value;
        }
        if (!reading.missing || isExpected) {
            say(expected_.unreadable, fmt::format("{}: {}", name, reading.problem));
        }
        return std::nullopt;
    }

    void addModel() {
        const std::optional<snmp::Varbind> value = valueOf("modelName", oids::modelName, false);
        if (value && !value->octets.empty()) {
            say(State::Ok, harmless(value->octets));
        }
    }

    void addTemperature() {
        const bool isExpected = expected_.warning || expected_.critical;
        const std::optional<snmp::Varbind> value = valueOf("temperature", oids::temperature, isExpected);
        if (!value) {
            return;
        }
        const int degrees = ptz::degreesCelsius(*value);
        const std::string text = fmt::format("temperature {} °C", degrees);
        if (expected_.critical && expected_.critical->alertsFor(degrees)) {
            say(State::Critical, text + " is " + expected_.critical->alertText());
        } else if (expected_.warning && expected_.warning->alertsFor(degrees)) {
            say(State::Warning, text + " is " + expected_.warning->alertText());
        } else {
            say(State::Ok, text);
        }
        measure(
            {"temperature", std::to_string(degrees), textOf(expected_.warning), textOf(expected_.critical), "", ""});
    }

    void addState(const char *name, const char *oid, const std::optional<int> &expected) {
        const std::optional<snmp::Varbind> value = valueOf(name, oid, expected.has_value());
        if (!value) {
            return;
        }
        const bool isRight = !expected || value->number == *expected;
        say(isRight ? State::Ok : State::Critical,
            fmt::format("{} {}", name, value->number) + (isRight ? "" : fmt::format(" instead of {}", *expected)));
        measure({name, std::to_string(value->number), "", expected ? fmt::format("{0}:{0}", *expected) : "", "", ""});
    }

    /** Converts readings of rows or of bits to readings by number, from 1. */
    static std::map<unsigned int, std::optional<std::int64_t>> statesOf(const std::vector<Reading> &readings) {
        std::map<unsigned int, std::optional<std::int64_t>> states;
        for (const Reading &reading : readings) {
            const bool isBits = reading.instance.oid == oids::inputStatus;
            for (unsigned int bit = 0; bit < (isBits ? ptz::kInputBits : 1); ++bit) {
                const std::int64_t number = isBits ? ptz::firstOctet(reading.value) >> bit & 1U : reading.value.number;
                states.emplace(states.size() + 1, reading.ok() ? std::optional(number) : std::nullopt);
            }
        }
        return states;
    }

    void addInputs() {
        const auto states = statesOf(readSwitches(camera_, kInputs));
        hasAny_ = hasAny_ || !states.empty();
        std::string active;
        for (const auto &[number, state] : states) {
            addInput(number, state);
            if (state.value_or(0) != 0) {
                active += fmt::format("{}{}", active.empty() ? "" : " and ", number);
            }
        }
        for (const auto &[number, isActive] : expected_.inputs) {
            if (states.count(number) == 0) {
                say(expected_.unreadable, fmt::format("the camera has no input {}", number));
            }
        }
        if (!states.empty()) {
            say(State::Ok, active.empty() ? "inputs off" : "input " + active + " on");
        }
    }

    void addInput(unsigned int number, const std::optional<std::int64_t> &state) {
        const auto expected = expected_.inputs.find(number);
        const bool isExpected = expected != expected_.inputs.end();
        if (!state) {
            say(expected_.unreadable, fmt::format("input {} cannot be read", number));
            return;
        }
        const bool isActive = *state != 0;
        if (isExpected && isActive != expected->second) {
            say(State::Critical, fmt::format("input {} is {}", number, isActive ? "on" : "off"));
        }
        // For an expected active input, every state but 0 is in order.
        const char *const critical = !isExpected ? "" : expected->second ? "1:" : "0:0";
        measure({fmt::format("input_{}", number), std::to_string(*state), "", critical, "0", ""});
    }

    /** States that an agent without any value is not a camera. */
    void requireCamera() {
        if (!hasAny_ && !valueOf("rangeMaximumPreset", oids::rangeMaximumPreset, false) && !hasAny_) {
            say(expected_.unreadable, "the agent answers, but has no objects of a camera");
        } else if (findings_.statements.empty()) {
            say(State::Ok, "the agent answers");
        }
    }

    snmp::Requester &camera_;
    const Expectations &expected_;
    Findings findings_;
    std::optional<double> latency_; ///< in seconds
    bool hasAny_ = false;           ///< the camera has an object
};

} // namespace

void expectInput(Expectations &expectations, const std::string &text) {
    const std::size_t separator = text.find('=');
    const std::string state = separator == std::string::npos ? "" : text.substr(separator + 1);
    unsigned int number = 0;
    const char *const end = text.data() + (separator == std::string::npos ? 0 : separator);
    const auto [last, error] = std::from_chars(text.data(), end, number);
    if (error != std::errc() || last != end || number == 0 || (state != "on" && state != "off")) {
        throw std::invalid_argument("--input: '" + text + "' is not a number and a state such as 2=on or 2=off");
    }
    if (!expectations.inputs.emplace(number, state == "on").second) {
        throw std::invalid_argument("--input: two states for input " + std::to_string(number));
    }
}

Findings probe(snmp::Requester &camera, const Expectations &expectations, std::chrono::microseconds time) {
    HurriedCamera hurried(camera, time);
    return Prober(hurried, expectations).run();
}

} // namespace ptzctl
