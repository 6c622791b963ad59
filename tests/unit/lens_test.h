// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Helpers for the tests of the lens: a camera with one drive, phases on the objects' own handlers, and a record of log
 * lines and calls in one order.
 */
#ifndef QUARNSNMP_LENS_TEST_H
#define QUARNSNMP_LENS_TEST_H

#include "handler_requests.h"
#include "lens_drives.h"

namespace lens_tests {

using Lines = Calls;

/** A log line as story() has it. */
std::string line(const LogLine &log);

class LensTest : public ModuleTest {
protected:
    void SetUp() override;

    /** Adds the drive and its services to the camera. */
    static void offer(const Drive &drive, const Lens &lens = kLens);
    /** Sets the answers of the drive's service from now on. */
    static void answer(const Drive &drive, const Lens &lens);
    /** Brings the drive up, and forgets the calls and log lines of that. */
    static void start(const Drive &drive, const Lens &lens = kLens);

    static void forget();

    /** Notes when these functions are called, for story(). */
    static void watch(const std::string &function);
    /** Log lines, and calls of watched functions, in the order in which they came. */
    static Lines story();

    /** One phase on the object's own handler, with the record of this phase only. */
    static Answer phase(const Object &object, int mode, const std::string &value);
    /** An ACTION and a COMMIT without a check, with the record of the COMMIT only. */
    static Answer commit(const Object &object, const std::string &value);
};

/** Lines of an object's handler. */
LogLine enter(const Object &object);
LogLine done(const Object &object, int level = 7);
LogLine said(const Object &object, int level, const std::string &text);

/** A drive that is up; the command that it holds is 0 at the start of each test. */
class LensDriveTest : public LensTest, public testing::WithParamInterface<Drive> {
protected:
    void SetUp() override;

    static const Object &object();
    static Answer phase(int mode, const std::string &value);
    static Answer commit(const std::string &value);
    static std::string committed();
    /** The pending command, which becomes the committed one. */
    static std::string pending();
    /** Ends the drive and brings it up anew. */
    static void restart(const Lens &lens = kLens);
    /** The same, with limits that cannot be read at the start; later reads succeed. */
    static void restartWithoutLimits();
};

} // namespace lens_tests

#endif
