// SPDX-License-Identifier: Apache-2.0
// A person as the witness of moves, at an input that says what a terminal would.
#include <csignal>
#include <sstream>
#include <streambuf>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "check/context.h"
#include "check/interruption.h"
#include "check/sight.h"

namespace {

using ptzctl::check::personSight;
using ptzctl::check::Seen;

/** An input at which Ctrl-C is pressed. */
class Interruption : public std::streambuf {
    int_type underflow() override {
        static_cast<void>(std::raise(SIGINT));
        return traits_type::eof();
    }
};

} // namespace

TEST(CheckPerson, AnswersYesNoOrNothing) {
    const std::pair<const char *, Seen::Answer> cases[] = {{"y\n", Seen::Answer::Yes},
                                                           {"n\n", Seen::Answer::No},
                                                           {"perhaps\ny\n", Seen::Answer::Yes},
                                                           {"?\n", Seen::Answer::Unknown},
                                                           {"", Seen::Answer::Unknown}};
    for (const auto &[typed, answer] : cases) {
        std::istringstream answers(typed);
        std::ostringstream questions;
        EXPECT_EQ(personSight(answers, questions)->rests(ptz::axes()[0]).answer, answer) << typed;
        EXPECT_THAT(questions.str(), testing::StartsWith("Is pan at rest now? [y/n/?] ")) << typed;
    }
}

TEST(CheckPerson, CtrlCEndsTheCheckAtAQuestionAndAtAnAnnouncement) {
    ptzctl::check::noteInterruptions();
    Interruption interruption;
    std::istream answers(&interruption);
    std::ostringstream questions;
    const auto sight = personSight(answers, questions);
    EXPECT_THROW(sight->rests(ptz::axes()[0]), ptzctl::check::Ended);
    answers.clear();
    EXPECT_THROW(sight->announce("Pan goes"), ptzctl::check::Ended);
}
