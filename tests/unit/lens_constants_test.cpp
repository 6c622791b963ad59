// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * The range and the time-out of a drive, which are always 0.
 */
#include "lens_test.h"

namespace lens_tests {

namespace {

using LensConstantTest = LensDriveTest;

INSTANTIATE_TEST_SUITE_P(Drives, LensConstantTest, testing::ValuesIn(allDrives()), nameOf<Drive>);

} // namespace

TEST_P(LensConstantTest, AnswersZero) {
    for (const std::size_t i : {0U, 1U}) {
        const Object &object = GetParam().objects.at(i);
        const std::string &text = GetParam().constantLines.at(i);
        forget();
        // Another value to start with, which the answer replaces.
        EXPECT_THAT(Request(object.instance(), NewValue::integer(7)).run(MODE_GET), isInteger(0));
        EXPECT_THAT(core().calls(), IsEmpty());
        EXPECT_EQ(core().logs(),
                  text.empty() ? logs::from(object.handler) : logs::from(object.handler, {said(object, 6, text)}));
    }
}

// The registration of a time-out allows a SET, which its handler does not know.
TEST_P(LensConstantTest, ATimeoutRefusesEveryValue) {
    const Object &timeout = GetParam().objects.at(1);
    for (const NewValue &value : {NewValue::integer(0), NewValue::integer(5), NewValue::text("abcd")}) {
        forget();
        EXPECT_EQ(Request(timeout.instance(), value).run(MODE_SET_RESERVE1).returned, SNMP_ERR_GENERR);
        EXPECT_THAT(core().logs(), ElementsAre(enter(timeout), said(timeout, 3, "unknown mode (0)")));
        EXPECT_EQ(get(timeout.instance()).integer, 0);
    }
}

} // namespace lens_tests
