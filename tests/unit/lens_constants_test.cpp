// SPDX-License-Identifier: Apache-2.0
#include "lens_test.h"

using requests::Answer;
using requests::get;
using requests::NewValue;
using requests::Request;
using scripted::LogLine;
using testing::IsEmpty;

namespace lens_tests {

namespace {

/** The range and time-out objects. */
class LensConstantTest : public LensTest, public testing::WithParamInterface<Drive> {
protected:
    void SetUp() override {
        LensTest::SetUp();
        start(GetParam());
    }

    static std::vector<LogLine> linesOfRead(std::size_t index) {
        const Object &object = GetParam().objects.at(index);
        std::vector<LogLine> lines{enter(object)};
        if (!GetParam().constantLines.at(index).empty()) {
            lines.push_back(said(object, 6, GetParam().constantLines.at(index)));
        }
        lines.push_back(done(object));
        return lines;
    }

    static void expectZero(const Answer &answer) {
        EXPECT_THAT(answer, isAccepted());
        EXPECT_EQ(answer.type, ASN_INTEGER);
        EXPECT_EQ(answer.integer, 0);
        EXPECT_THAT(core().calls(), IsEmpty());
    }
};

INSTANTIATE_TEST_SUITE_P(Drives, LensConstantTest, testing::ValuesIn(allDrives()), titleOf);

} // namespace

TEST_P(LensConstantTest, AnswersZero) {
    for (std::size_t i = 0; i < 2; ++i) {
        forget();
        // Another value to start with, which the answer has to replace.
        Request request(GetParam().objects.at(i).instance(), NewValue::integer(7));
        expectZero(request.run(MODE_GET));
        EXPECT_EQ(core().logs(), linesOfRead(i));
    }
}

TEST_P(LensConstantTest, AnswersAGetNextAsAGet) {
    for (std::size_t i = 0; i < 2; ++i) {
        forget();
        Request request(GetParam().objects.at(i).instance(), NewValue::integer(7));
        expectZero(request.runOwnHandler(MODE_GETNEXT));
        EXPECT_EQ(core().logs(), linesOfRead(i));
    }
}

TEST_P(LensConstantTest, NoOtherModeIsServedAndItEndsWithoutALine) {
    Modes modes(std::begin(kUnknownModes), std::end(kUnknownModes));
    modes.insert(modes.end(), {MODE_SET_RESERVE1, MODE_SET_RESERVE2, MODE_SET_ACTION, MODE_SET_COMMIT, MODE_SET_FREE,
                               MODE_SET_UNDO});
    for (std::size_t i = 0; i < 2; ++i) {
        const Object &object = GetParam().objects.at(i);
        for (const int mode : modes) {
            forget();
            Request request(object.instance(), NewValue::integer(7));
            const Answer answer = request.runOwnHandler(mode);
            EXPECT_THAT(answer, isRefused(SNMP_ERR_GENERR, SNMP_ERR_NOERROR)) << mode;
            EXPECT_EQ(answer.integer, 7) << mode;
            EXPECT_EQ(core().logs(), (std::vector<LogLine>{enter(object), unknownMode(object, mode)}));
        }
    }
}

TEST_P(LensConstantTest, ATimeoutCanBeWrittenByItsRecordButRefusesEveryValue) {
    const Object &timeout = GetParam().objects.at(1);
    for (const NewValue &value : {NewValue::integer(0), NewValue::integer(5), NewValue::text("abcd")}) {
        forget();
        Request request(timeout.instance(), value);
        EXPECT_EQ(request.run(MODE_SET_RESERVE1).returned, SNMP_ERR_GENERR);
        EXPECT_EQ(core().logs(), (std::vector<LogLine>{enter(timeout), unknownMode(timeout, MODE_SET_RESERVE1)}));
        EXPECT_EQ(get(timeout.instance()).integer, 0);
    }
}

TEST_P(LensConstantTest, ARangeIsReadOnly) {
    Request request(GetParam().objects.at(0).instance(), NewValue::integer(0));
    EXPECT_EQ(request.run(MODE_SET_RESERVE1).requestError, SNMP_ERR_NOTWRITABLE);
    EXPECT_THAT(core().logs(), IsEmpty());
}

} // namespace lens_tests
