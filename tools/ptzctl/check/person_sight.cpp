// SPDX-License-Identifier: Apache-2.0
#include <cmath>
#include <optional>

#include <fmt/format.h>

#include "check/context.h"
#include "check/interruption.h"
#include "check/sight.h"

namespace ptzctl::check {

namespace {

std::string directionOf(const ptz::Axis &axis, int direction) {
    return direction > 0 ? axis.directions.forward : axis.directions.backward;
}

std::string amountText(const ptz::Axis &axis, double positions) {
    constexpr double kHundredths = 100;
    constexpr double kWhole = 65535;
    return axis.range.unit == ptz::Unit::Degrees ? fmt::format("{:.2f}°", positions / kHundredths)
                                                 : fmt::format("{:.0f}%", positions * 100 / kWhole);
}

class PersonSight : public Sight {
public:
    PersonSight(std::istream &answers, std::ostream &questions) : answers_(answers), questions_(questions) {}

    std::string blindness(const ptz::Axis & /*axis*/) override {
        return answers_ ? "" : "nobody answers";
    }

    std::optional<double> position(const ptz::Axis & /*axis*/) override {
        return std::nullopt;
    }

    void announce(const std::string &what) override {
        questions_ << what << ". Look at the camera and press Enter. " << std::flush;
        readLine();
    }

    Seen moves(const ptz::Axis &axis, std::optional<double> /*before*/, int direction) override {
        return ask(fmt::format("Did it move {} {}?", axis.name, directionOf(axis, direction)));
    }

    Seen rests(const ptz::Axis &axis) override {
        return ask(fmt::format("Is {} at rest now?", axis.name));
    }

    Seen reaches(const ptz::Axis &axis, double target) override {
        return ask(fmt::format("Is {} at {} now?", axis.name, amountText(axis, target)));
    }

    Seen steps(const ptz::Axis &axis, std::optional<double> /*before*/, double offset) override {
        return ask(fmt::format("Did it move {} {} by {}?", axis.name, directionOf(axis, offset > 0 ? 1 : -1),
                               amountText(axis, std::abs(offset))));
    }

private:
    /** Reads a line. @return nothing at the end of the input @throws Ended after an interruption */
    std::optional<std::string> readLine() {
        std::string line;
        const bool hasLine = static_cast<bool>(std::getline(answers_, line));
        if (interrupted()) {
            throw Ended("interrupted");
        }
        return hasLine ? std::optional(line) : std::nullopt;
    }

    Seen ask(const std::string &question) {
        for (;;) {
            questions_ << question << " [y/n/?] " << std::flush;
            const std::optional<std::string> answer = readLine();
            if (!answer || answer == "?") {
                return {Seen::Answer::Unknown, "a person could not tell: " + question};
            }
            if (answer == "y" || answer == "n") {
                const bool yes = answer == "y";
                return {yes ? Seen::Answer::Yes : Seen::Answer::No,
                        fmt::format("a person answered {}: {}", yes ? "yes" : "no", question)};
            }
        }
    }

    std::istream &answers_;
    std::ostream &questions_;
};

} // namespace

std::unique_ptr<Sight> personSight(std::istream &answers, std::ostream &questions) {
    return std::make_unique<PersonSight>(answers, questions);
}

} // namespace ptzctl::check
