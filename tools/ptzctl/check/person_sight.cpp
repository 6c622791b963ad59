// SPDX-License-Identifier: Apache-2.0
#include <cmath>

#include <fmt/format.h>

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
        std::string line;
        std::getline(answers_, line);
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
    Seen ask(const std::string &question) {
        for (;;) {
            questions_ << question << " [y/n/?] " << std::flush;
            std::string answer;
            if (!std::getline(answers_, answer) || answer == "?") {
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
