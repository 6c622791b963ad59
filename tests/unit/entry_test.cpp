// SPDX-License-Identifier: Apache-2.0
#include "module_test.h"
#include "oids.h"
#include "trap_sender.h"

namespace {

std::vector<std::string> gSteps;

using EntryTest = ModuleTest;

const LogLine kLeaving{7, "timer_thread_func: LEAVING IN THREAD FUNC due to interruption"};

} // namespace

TEST_F(EntryTest, WithoutAFeatureTheModuleTearsItselfDownAndReportsFailure) {
    emptyFeatureTable();
    EXPECT_EQ(init_quarnsnmp(), 1);
    EXPECT_THAT(core().calls(), ElementsAre("zorva_core_init()", "zorva_core_logging_init(\"SNMP\", &)",
                                            "zorva_core_ipc_initiator_init(log, null, &)", "zorva_core_ipc_deinit(ipc)",
                                            "zorva_core_logging_deinit(log)", "zorva_core_deinit()"));
    EXPECT_THAT(core().logs(), ElementsAre(kLeaving));
    EXPECT_EQ(QuarnSnmpTrapSend::GetInstance(), nullptr);
}

TEST_F(EntryTest, TheAgentMayUnloadAModuleThatFailedToLoad) {
    emptyFeatureTable();
    ASSERT_EQ(init_quarnsnmp(), 1);
    core().clearRecord();
    EXPECT_EQ(deinit_quarnsnmp(), 0);
    EXPECT_THAT(core().calls(), ElementsAre("zorva_core_ipc_deinit(closed)", "zorva_core_logging_deinit(closed)",
                                            "zorva_core_deinit()"));
}

TEST_F(EntryTest, EveryFeatureIsTriedAndOnlyThoseThatAreUpAreEndedInTableOrder) {
    emptyFeatureTable();
    gSteps.clear();
    gFeatureModules.at(2).init = [](void *) { return gSteps.emplace_back("init 2"), true; };
    gFeatureModules.at(2).deinit = [] { gSteps.emplace_back("deinit 2"); };
    gFeatureModules.at(5).init = [](void *) { return gSteps.emplace_back("init 5"), false; };
    gFeatureModules.at(12).init = [](void *) { return gSteps.emplace_back("init 12"), true; };
    gFeatureModules.at(12).deinit = [] { gSteps.emplace_back("deinit 12"); };
    ASSERT_EQ(init_quarnsnmp(), 0);
    EXPECT_NE(QuarnSnmpTrapSend::GetInstance(), nullptr);
    EXPECT_THAT(core().logs(), Not(Contains(kLeaving)));
    ASSERT_EQ(deinit_quarnsnmp(), 0);
    EXPECT_THAT(core().logs(), ElementsAre(kLeaving));
    EXPECT_EQ(QuarnSnmpTrapSend::GetInstance(), nullptr);
    EXPECT_THAT(gSteps, ElementsAre("init 2", "init 5", "init 12", "deinit 2", "deinit 12"));
}

TEST_F(EntryTest, EachFeatureGetsTheIpcHandle) {
    emptyFeatureTable();
    gSteps.clear();
    for (FeatureModule &feature : gFeatureModules) {
        feature.init = [](void *ipcCookie) { return gSteps.push_back(scripted::core().nameOf(ipcCookie)), false; };
    }
    ASSERT_EQ(init_quarnsnmp(), 1);
    EXPECT_THAT(gSteps, testing::AllOf(SizeIs(gFeatureModules.size()), testing::Each("ipc")));
}

TEST_F(EntryTest, AFeatureThatThrowsIsNotUpAndTheOthersStart) {
    emptyFeatureTable();
    gFeatureModules.at(0).init = [](void *) -> bool { throw std::runtime_error("no room"); };
    gFeatureModules.at(1).init = [](void *) { return true; };
    gFeatureModules.at(1).deinit = [] {};
    EXPECT_EQ(init_quarnsnmp(), 0);
    EXPECT_FALSE(gFeatureModules.at(0).initialised);
    EXPECT_THAT(core().logs(3), ElementsAre("InitFeature: no room"));
    deinit_quarnsnmp();
}

TEST_F(EntryTest, TheTableHasTheFeaturesInOrder) {
    const std::vector<bool (*)(void *)> inits = {
        InitAlarm, InitDeviceInfo, InitFocus,      InitFocusStepper, InitIris,  InitModuleInfo, InitPositioning,
        InitPower, InitPresets,    InitRebootInfo, InitTemperature,  InitRelay, InitZoomStepper};
    ASSERT_EQ(inits.size(), gFeatureModules.size());
    for (std::size_t i = 0; i < inits.size(); ++i) {
        EXPECT_EQ(gFeatureModules.at(i).init, inits.at(i)) << i;
        const bool polls = i == 7 || i == 10;
        EXPECT_EQ(gFeatureModules.at(i).poll != nullptr, polls) << i;
    }
    EXPECT_EQ(gFeatureModules.at(7).poll, PollPower);
    EXPECT_EQ(gFeatureModules.at(10).poll, PollTemperature);
}

TEST_F(EntryTest, TheWholeModuleOnACameraWithAnIdentity) {
    core().targets("device_information", {"device_information/1"});
    core().answer("zorva_api_device_information_get_static_information_send",
                  {"QN-4000", "1.4.2", "B7", "SN0042", nullptr, nullptr, nullptr, nullptr, std::int64_t{0}});
    for (int i = 0; i < 3; ++i) {
        ASSERT_EQ(init_quarnsnmp(), 0);
        EXPECT_EQ(get(oids::modelName).octets, "QN-4000");
        EXPECT_EQ(deinit_quarnsnmp(), 0);
        EXPECT_EQ(requests::registeredName(oids::registered::modelName), "") << "still registered";
    }
}
