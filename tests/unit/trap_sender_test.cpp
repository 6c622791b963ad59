#include "module_test.h"

#include <atomic>
#include <cstdlib>
#include <iostream>
#include <thread>

#include <sys/resource.h>
#include <unistd.h>

#include <net-snmp/library/fd_event_manager.h>

#include "trap_sender.h"

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

namespace {

struct SentTrap {
    std::vector<oid> firstName;
    std::vector<oid> trapOid;
    std::vector<oid> valueName;
    unsigned char valueType = 0;
    long value = 0;
    std::thread::id thread;
};

std::vector<SentTrap> gSent;

std::vector<oid> nameOf(const netsnmp_variable_list *vars) {
    return {vars->name, vars->name + vars->name_length};
}

} // namespace

/** In place of the agent library's function of this name, which has nowhere to send to in a unit test. */
extern "C" void send_v2trap(netsnmp_variable_list *vars) {
    SentTrap trap;
    ASSERT_NE(vars, nullptr);
    ASSERT_NE(vars->next_variable, nullptr);
    ASSERT_EQ(vars->next_variable->next_variable, nullptr);
    ASSERT_EQ(vars->type, ASN_OBJECT_ID);
    trap.firstName = nameOf(vars);
    trap.trapOid.assign(vars->val.objid, vars->val.objid + vars->val_len / sizeof(oid));
    trap.valueName = nameOf(vars->next_variable);
    trap.valueType = vars->next_variable->type;
    trap.value = *vars->next_variable->val.integer;
    trap.thread = std::this_thread::get_id();
    gSent.push_back(trap);
}

namespace {

oid gPowerOid[] = {1, 3, 6, 1, 4, 1, 99999, 1, 1, 8, 0};

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

/** One turn of the agent's event loop, as far as registered descriptors go. @return how many were ready */
int turnEventLoop() {
    int highest = 0;
    fd_set readable;
    fd_set writable;
    fd_set exceptional;
    FD_ZERO(&readable);
    FD_ZERO(&writable);
    FD_ZERO(&exceptional);
    netsnmp_external_event_info(&highest, &readable, &writable, &exceptional);
    timeval now{};
    int ready = select(highest, &readable, &writable, &exceptional, &now);
    const int result = ready;
    netsnmp_dispatch_external_events(&ready, &readable, &writable, &exceptional);
    return result;
}

void sendPower(int value) {
    EXPECT_EQ(SendTrap(gPowerOid, OID_LENGTH(gPowerOid), value), 0);
}

std::vector<long> sentValues() {
    std::vector<long> values;
    values.reserve(gSent.size());
    for (const SentTrap &trap : gSent) {
        values.push_back(trap.value);
    }
    return values;
}

} // namespace

TEST_F(TrapSenderTest, ATrapNamesTheObjectTwiceAndCarriesItsValueAsAGauge) {
    new QuarnSnmpTrapSend;
    sendPower(2);
    ASSERT_EQ(turnEventLoop(), 1);
    ASSERT_THAT(gSent, SizeIs(1));
    EXPECT_THAT(gSent[0].firstName, ElementsAre(1, 3, 6, 1, 6, 3, 1, 1, 4, 1, 0));
    EXPECT_EQ(gSent[0].trapOid, std::vector<oid>(gPowerOid, gPowerOid + OID_LENGTH(gPowerOid)));
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
    EXPECT_EQ(SendTrap(gPowerOid, OID_LENGTH(gPowerOid), 1), -1);
    QuarnSnmpTrapSend::snmpMainCallback(-1, nullptr);
}

TEST_F(TrapSenderTest, ASecondSenderEndsTheProcess) {
    testing::FLAGS_gtest_death_test_style = "threadsafe";
    EXPECT_EXIT(
        {
            openCore();
            std::atexit([] {
                for (const scripted::LogLine &line : scripted::core().logs()) {
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

    EXPECT_THAT(core().logs(), ElementsAre(scripted::LogLine{3, "QuarnSnmpTrapSend: Could not create pipe!"}));
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
    EXPECT_THAT(core().logs(),
                ElementsAre(scripted::LogLine{
                    3, "QuarnSnmpTrapSend: Couldn't register the callback function for sending traps!"}));
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
