// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * The two sets of lens feature objects as records, and a fixture for tests of both.
 */
#ifndef QUARNSNMP_LENS_FEATURES_TEST_H
#define QUARNSNMP_LENS_FEATURES_TEST_H

#include "lens_test.h"

namespace lens_tests {

struct FeatureSet {
    Drive drive;
    const char *targetsText; ///< name of the list of targets, in the text of a failed call
    const char *startText;
    const char *startOperation;

    const Object &control() const;
    const Object &status() const;
    const Object &equipped() const;
};

void PrintTo(const FeatureSet &set, std::ostream *stream);

std::vector<FeatureSet> featureSets();

/** A call to the exposure service. */
std::string exposureCall(const std::string &operation, const std::string &arguments);

inline const char *const kSetManual = "set_manual_mode_enable_send";
inline const char *const kGetManual = "get_manual_mode_enable_send";

/** A camera with an exposure service and a drive that is up; all writable objects are 0 at the start of each test. */
class FeatureSetTest : public LensTest, public testing::WithParamInterface<FeatureSet> {
protected:
    void SetUp() override;
    void TearDown() override;

    /** Starts anew on a camera without an exposure service. */
    static void restartWithoutExposure();
    /** Starts anew on a camera whose exposure service does not open. */
    static void restartWithClosedExposure();
};

std::string setTitleOf(const testing::TestParamInfo<FeatureSet> &info);

} // namespace lens_tests

#endif
