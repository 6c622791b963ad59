// SPDX-License-Identifier: Apache-2.0
#include "fresh_process.h"
#include "handler_requests.h"

namespace {

const char *const kRebootInstance = oids::rebootDevice;
const char *const kReboot = "zorva_api_device_management_reboot_send";
const char *const kRebootCall =
    "zorva_api_device_management_reboot_send(device_management, \"device_management/1\", 2)";

const LogLine kRebooting{3, "handle_rebootDevice: snmpset reboot - rebooting system now!!!!"};

class RebootTest : public ModuleTest {
protected:
    void SetUp() override {
        openCore();
        core().targets("device_management", {"device_management/1", "device_management/2"});
        ASSERT_TRUE(InitRebootInfo(GetIpcCookie()));
        core().clearRecord();
    }
    void TearDown() override {
        phase(MODE_SET_UNDO, 0);
        DeinitRebootInfo();
    }

    /** One phase on the object's own handler, with the record of this phase only. */
    static Answer phase(int mode, long value) {
        core().clearRecord();
        return DirtyRequest(kRebootInstance, NewValue::integer(value)).runOwnHandler(mode);
    }
    static void expectValue(long expected) {
        EXPECT_THAT(get(kRebootInstance), isInteger(expected));
    }
};

} // namespace

class RebootFreshTest : public RebootTest {};

TEST_F(RebootFreshTest, IsZeroUntilItIsSet) {
    expectInFreshProcess([] {
        expectValue(0);
        EXPECT_THAT(core().calls(), IsEmpty());
        EXPECT_THAT(core().logs(), IsEmpty());
    });
}

TEST_F(RebootTest, EachOneRebootsTheFirstTargetAfterItsLine) {
    std::size_t lines = 0;
    core().during(kReboot, [&lines] { lines = core().logs().size(); });
    for (int i = 0; i < 2; ++i) {
        core().clearRecord();
        set(kRebootInstance, NewValue::integer(1));
        EXPECT_EQ(lines, 1U);
        EXPECT_THAT(core().calls(), ElementsAre(kRebootCall));
        EXPECT_THAT(core().logs(), ElementsAre(kRebooting));
        expectValue(1);
    }
}

TEST_F(RebootTest, OtherNumbersAreOnlyKept) {
    for (const long value : {7L, 0L, 2L, -1L, 256L, 65537L, 2147483647L, -2147483648L}) {
        set(kRebootInstance, NewValue::integer(value));
        expectValue(value);
    }
    EXPECT_THAT(core().calls(), IsEmpty());
    EXPECT_THAT(core().logs(), IsEmpty());
}

TEST_F(RebootTest, ACommitAnswersTheKeptNumber) {
    phase(MODE_SET_ACTION, 7);
    EXPECT_THAT(phase(MODE_SET_COMMIT, 1), isInteger(7));
    EXPECT_THAT(core().calls(), IsEmpty()) << "the kept number counts, not the request's";
    phase(MODE_SET_ACTION, 1);
    EXPECT_EQ(phase(MODE_SET_COMMIT, 7).integer, 1);
    EXPECT_THAT(core().calls(), ElementsAre(kRebootCall));
}

TEST_F(RebootTest, ARefusedRebootSucceedsAndAnswersZero) {
    core().fail(kReboot, kRefused);
    EXPECT_THAT(phase(MODE_SET_ACTION, 1), isAccepted());
    EXPECT_THAT(phase(MODE_SET_COMMIT, 1), isInteger(0));
    EXPECT_THAT(core().calls(), ElementsAre(kRebootCall));
    EXPECT_THAT(core().logs(), ElementsAre(kRebooting));
    expectValue(0);
}

TEST_F(RebootTest, TheLow32BitsOfANumberCount) {
    for (const auto &[value, kept] : {std::pair(0x100000007L, 7L), std::pair(0xFFFFFFFFL, -1L)}) {
        EXPECT_THAT(phase(MODE_SET_ACTION, value), isAccepted());
        expectValue(kept);
    }
    phase(MODE_SET_ACTION, 0x100000001L);
    phase(MODE_SET_COMMIT, 0);
    EXPECT_THAT(core().calls(), ElementsAre(kRebootCall));
}
