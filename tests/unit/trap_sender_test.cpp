// SPDX-License-Identifier: Apache-2.0
#include <atomic>
#include <cstdlib>
#include <iostream>
#include <thread>

#include <sys/resource.h>
#include <unistd.h>

#include "fresh_process.h"
#include "module_test.h"
#include "oids.h"
#include "sent_traps.h"
#include "trap_sender.h"

using namespace traps;

namespace {

class TrapSenderTest : public ModuleTest {
protected:
    void SetUp() override {
        openCore();
        gSent.clear();
    }
    void TearDown() override {
        QuarnSnmpTrapSend::DestroyInstance();
    }
};

void sendPower(int value) {
    EXPECT_EQ(SendTrap(oid_power, OID_LENGTH(oid_power), value), 0);
}

} // namespace

TEST_F(TrapSenderTest, ATrapNamesTheObjectTwiceAndCarriesItsValueAsAGauge) {
    new QuarnSnmpTrapSend;
    sendPower(2);
    ASSERT_EQ(turnEventLoop(), 1);
    ASSERT_THAT(gSent, SizeIs(1));
    EXPECT_THAT(gSent[0].firstName, ElementsAre(1, 3, 6, 1, 6, 3, 1, 1, 4, 1, 0));
    EXPECT_EQ(gSent[0].trapOid, std::vector<oid>(oid_power, oid_power + OID_LENGTH(oid_power)));
    EXPECT_EQ(gSent[0].valueName, gSent[0].trapOid);
    EXPECT_EQ(gSent[0].valueType, ASN_UNSIGNED);
    EXPECT_EQ(gSent[0].value, 2);
}

TEST_F(TrapSenderTest, ThreeQueuedTrapsGoOutInOrderInOneCallback) {
    new QuarnSnmpTrapSend;
    sendPower(1);
    sendPower(2);
    sendPower(3);
    EXPECT_THAT(gSent, IsEmpty());
    EXPECT_EQ(turnEventLoop(), 1);
    EXPECT_THAT(sentValues(), ElementsAre(1, 2, 3));
    EXPECT_EQ(turnEventLoop(), 0) << "the pipe is not empty";
    const std::string calling = "CallSnmpSendTrap: Calling into snmp code to send trap.";
    const std::string removing = "CallSnmpSendTrap: Removing from queue...";
    EXPECT_THAT(core().logs(7), ElementsAre(calling, removing, calling, removing, calling, removing));
}

TEST_F(TrapSenderTest, UnsentTrapsAreDroppedWithTheSender) {
    new QuarnSnmpTrapSend;
    sendPower(1);
    sendPower(2);
    QuarnSnmpTrapSend::DestroyInstance();
    EXPECT_THAT(gSent, IsEmpty());
    EXPECT_EQ(turnEventLoop(), 0);
    EXPECT_EQ(QuarnSnmpTrapSend::GetInstance(), nullptr);
}

TEST_F(TrapSenderTest, DestroyingWithoutAnInstanceDoesNothing) {
    QuarnSnmpTrapSend::DestroyInstance();
    EXPECT_EQ(SendTrap(oid_power, OID_LENGTH(oid_power), 1), -1);
    QuarnSnmpTrapSend::snmpMainCallback(-1, nullptr);
}

class TrapSenderFreshTest : public TrapSenderTest {};

TEST_F(TrapSenderFreshTest, ASecondSenderEndsTheProcess) {
    runDeathTestAnew();
    EXPECT_EXIT(
        {
            openCore();
            std::atexit([] {
                for (const LogLine &line : scripted::core().logs()) {
                    std::cerr << line << std::endl;
                }
            });
            new QuarnSnmpTrapSend;
            new QuarnSnmpTrapSend;
        },
        testing::ExitedWithCode(255), "3 \"QuarnSnmpTrapSend: Duplicate instance, exiting!\"\n$");
}

TEST_F(TrapSenderTest, WithoutAPipeTrapsAreNeverSent) {
    rlimit before{};
    ASSERT_EQ(getrlimit(RLIMIT_NOFILE, &before), 0);
    rlimit none = before;
    none.rlim_cur = 3;
    ASSERT_EQ(setrlimit(RLIMIT_NOFILE, &none), 0);
    new QuarnSnmpTrapSend;
    ASSERT_EQ(setrlimit(RLIMIT_NOFILE, &before), 0);

    EXPECT_THAT(core().logs(), ElementsAre(LogLine{3, "QuarnSnmpTrapSend: Could not create pipe!"}));
    sendPower(1);
    EXPECT_EQ(turnEventLoop(), 0);
    EXPECT_THAT(gSent, IsEmpty());
}

TEST_F(TrapSenderTest, WithoutARegistrationTrapsAreNeverSent) {
    // The agent watches a fixed number of descriptors; fill what is left.
    std::vector<int> others;
    while (register_readfd(
               dup(STDIN_FILENO), [](int, void *) {}, nullptr) == FD_REGISTERED_OK) {
        others.push_back(external_readfd[external_readfdlen - 1]);
    }
    new QuarnSnmpTrapSend;
    EXPECT_THAT(
        core().logs(),
        ElementsAre(LogLine{3, "QuarnSnmpTrapSend: Couldn't register the callback function for sending traps!"}));
    sendPower(1);
    QuarnSnmpTrapSend::DestroyInstance();
    for (const int fd : others) {
        unregister_readfd(fd);
        close(fd);
    }
    EXPECT_THAT(gSent, IsEmpty());
}

TEST_F(TrapSenderTest, DescriptorsStayFlatOverManySenders) {
    const int first = dup(STDIN_FILENO);
    close(first);
    for (int i = 0; i < 1000; ++i) {
        new QuarnSnmpTrapSend;
        sendPower(i);
        ASSERT_EQ(turnEventLoop(), 1);
        QuarnSnmpTrapSend::DestroyInstance();
    }
    const int last = dup(STDIN_FILENO);
    close(last);
    EXPECT_EQ(first, last);
    EXPECT_THAT(gSent, SizeIs(1000));
}

TEST_F(TrapSenderTest, TrapsOfAnotherThreadAreSentOnTheAgentsThreadInOrder) {
    constexpr int kTraps = 10000;
    new QuarnSnmpTrapSend;
    std::atomic<bool> done{false};
    std::thread producer([&done] {
        for (int i = 0; i < kTraps; ++i) {
            sendPower(i);
        }
        done = true;
    });
    while (!done || turnEventLoop() > 0) {
        turnEventLoop();
    }
    producer.join();
    ASSERT_THAT(gSent, SizeIs(kTraps));
    for (int i = 0; i < kTraps; ++i) {
        ASSERT_EQ(gSent[static_cast<std::size_t>(i)].value, i);
        ASSERT_EQ(gSent[static_cast<std::size_t>(i)].thread, std::this_thread::get_id());
    }
}
