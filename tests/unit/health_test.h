// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * What the tests of the watched values share: polls, and the traps that they send.
 */
#ifndef QUARNSNMP_HEALTH_TEST_H
#define QUARNSNMP_HEALTH_TEST_H

#include <optional>
#include <vector>

#include "handler_checks.h"
#include "sent_traps.h"
#include "trap_sender.h"

/** One reading of a service; without a value the service fails. */
using Reading = std::optional<std::int64_t>;

class HealthTest : public ModuleTest {
protected:
    void SetUp() override {
        openCore();
        new QuarnSnmpTrapSend;
        traps::gSent.clear();
    }
    void TearDown() override {
        QuarnSnmpTrapSend::DestroyInstance();
    }

    static void script(const char *function, const Reading &reading) {
        if (reading) {
            core().answer(function, {*reading});
        } else {
            core().fail(function, kRefused);
        }
    }

    /** Runs a poll, with the record of this poll only. @return its traps, as the agent's thread sent them */
    static std::vector<traps::SentTrap> trapsOf(void (*poll)()) {
        core().clearRecord();
        traps::gSent.clear();
        poll();
        EXPECT_THAT(traps::gSent, testing::IsEmpty()) << "sent by the poll itself";
        const std::vector<scripted::LogLine> lines = core().logs();
        if (traps::turnEventLoop() > 0) {
            EXPECT_EQ(traps::turnEventLoop(), 0);
        }
        pollLines = lines;
        return traps::gSent;
    }
    static std::vector<long> valuesOf(void (*poll)()) {
        trapsOf(poll);
        return traps::sentValues();
    }

    /** Log lines of the last poll. */
    static inline std::vector<scripted::LogLine> pollLines;
};

#endif
