// SPDX-License-Identifier: Apache-2.0
#include <limits>
#include <map>
#include <set>

#include <gtest/gtest.h>

#include "status.h"
#include "zorva-core.h"

namespace {

TEST(Statuses, HaveTexts) {
    const std::map<zorva_core_status, std::string> texts = {
        {wire::kSuccess, "success"},
        {wire::kFailed, "the device failed"},
        {wire::kInvalidArgument, "invalid argument"},
        {wire::kUnknownTarget, "no such target"},
        {wire::kUnknownOperation, "no such operation"},
        {wire::kNotSupported, "not supported"},
        {wire::kServiceDown, "service is not running"},
        {wire::kNotInitialised, "library is not initialised"},
        {wire::kInvalidHandle, "invalid handle"},
        {wire::kUnreachable, "service cannot be reached"},
        {wire::kTimedOut, "no answer in time"},
        {wire::kConnectionLost, "connection lost"},
        {wire::kBadResponse, "answer not understood"},
        {wire::kNoMemory, "out of memory"},
    };
    for (const auto &[status, text] : texts) {
        EXPECT_EQ(text, zorva::core::statusToString(status));
    }
}

TEST(Statuses, OtherNumbersAreUnknown) {
    for (const zorva_core_status status : {-1, 7, 99, 107, std::numeric_limits<zorva_core_status>::min(),
                                           std::numeric_limits<zorva_core_status>::max()}) {
        EXPECT_STREQ("unknown status", zorva::core::statusToString(status));
    }
}

} // namespace
