// SPDX-License-Identifier: Apache-2.0
#include "lens_test.h"

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

} // namespace lens_tests
