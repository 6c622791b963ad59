// SPDX-License-Identifier: Apache-2.0
#include <cstring>

#include "handler_requests.h"
#include "snmp_utils.h"

namespace {

const char *const kRead = "zorva_api_device_information_get_static_information_send";

const char *const kMaxModules = "1.3.6.1.4.1.1206.4.2.6.1.2.0";
const char *const kModuleNumber = "1.3.6.1.4.1.1206.4.2.6.1.3.1.1.0";
const char *const kModuleDeviceNode = "1.3.6.1.4.1.1206.4.2.6.1.3.1.2.0";
const char *const kModuleMake = "1.3.6.1.4.1.1206.4.2.6.1.3.1.3.0";
const char *const kModuleModel = "1.3.6.1.4.1.1206.4.2.6.1.3.1.4.0";
const char *const kModuleVersion = "1.3.6.1.4.1.1206.4.2.6.1.3.1.5.0";
const char *const kModuleType = "1.3.6.1.4.1.1206.4.2.6.1.3.1.6.0";
const char *const kModuleObjects[] = {kMaxModules,  kModuleNumber,  kModuleDeviceNode, kModuleMake,
                                      kModuleModel, kModuleVersion, kModuleType};

class ModuleInfoTest : public ModuleTest {
protected:
    void SetUp() override {
        openCore();
        core().targets("device_information", {"device_information/1"});
        camera("QN-4000", "1.4.2-20200512");
    }

    static void camera(const scripted::Value &model, const scripted::Value &firmware) {
        core().answer(kRead, {model, firmware, "B7", "SN0042", "five", nullptr, "seven", "", std::int64_t{1}});
    }
    static void start() {
        ASSERT_TRUE(InitModuleInfo(GetIpcCookie()));
        core().clearRecord();
    }
    static void expectInteger(const char *instance, long expected) {
        const Answer answer = get(instance);
        EXPECT_THAT(answer, isAccepted()) << instance;
        EXPECT_EQ(answer.type, ASN_INTEGER) << instance;
        EXPECT_EQ(answer.integer, expected) << instance;
    }
    static void expectText(const char *instance, const std::string &expected) {
        const Answer answer = get(instance);
        EXPECT_THAT(answer, isAccepted()) << instance;
        EXPECT_EQ(answer.type, ASN_OCTET_STR) << instance;
        EXPECT_EQ(answer.octets, expected) << instance;
    }
};

} // namespace

TEST_F(ModuleInfoTest, TheCameraIsTheOnlyModule) {
    start();
    expectInteger(kMaxModules, 1);
    expectInteger(kModuleNumber, 1);
    expectInteger(kModuleType, 2);
}

TEST_F(ModuleInfoTest, TheTextsTellWhatTheModuleIs) {
    start();
    expectText(kModuleDeviceNode, "1.3.6.1.4.1.1206.4.2.7");
    expectText(kModuleMake, "Quarn");
    expectText(kModuleModel, "QN-4000");
    expectText(kModuleVersion, "20200512 - v1.4.2");
}

TEST_F(ModuleInfoTest, TheDeviceIsNotAskedAgain) {
    start();
    camera("other", "2.0-other");
    for (const char *instance : kModuleObjects) {
        EXPECT_THAT(get(instance), isAccepted());
    }
    EXPECT_THAT(core().calls(), IsEmpty());
    EXPECT_THAT(core().logs(), IsEmpty());
    expectText(kModuleModel, "QN-4000");
}

TEST_F(ModuleInfoTest, TheVersionIsTheBuildAndThenTheRelease) {
    struct Case {
        scripted::Value firmware;
        const char *version;
    };
    const Case cases[] = {
        {"1.4.2-20200512", "20200512 - v1.4.2"},
        {"2.0-123456789", "12345678 - v2.0"}, // a build is at most 8 characters
        {"2.0-1234567", "1234567 - v2.0"},
        {"2.0-", " - v2.0"},
        {"-20200512", "20200512 - v"},
        {"-", " - v"},
        {"2.0-rc-1", "rc-1 - v2.0"}, // the first hyphen parts them
        {"2.0--1", "-1 - v2.0"},
        {"2.0-1234567-9", "1234567- - v2.0"},
        {"2.0 - 1", " 1 - v2.0 "},
        {"1.4.2", " - v"}, // what has no hyphen is neither
        {"", " - v"},
        {nullptr, " - v"},
    };
    for (const Case &each : cases) {
        camera("QN-4000", each.firmware);
        start();
        expectText(kModuleVersion, each.version);
        UnregisterAll();
    }
}

TEST_F(ModuleInfoTest, TheMakeDoesNotDependOnTheCamera) {
    for (const scripted::Value &model :
         {scripted::Value("another make"), scripted::Value(""), scripted::Value(nullptr)}) {
        camera(model, "");
        start();
        expectText(kModuleMake, "Quarn");
        UnregisterAll();
    }
}

TEST_F(ModuleInfoTest, AModelWithoutANameIsEmpty) {
    for (const scripted::Value &none : {scripted::Value(""), scripted::Value(nullptr)}) {
        camera("QN-4000", "");
        start();
        UnregisterAll();
        camera(none, "");
        start();
        expectText(kModuleModel, "");
        UnregisterAll();
    }
}

TEST_F(ModuleInfoTest, AFailedReadClosesTheServiceAndRegistersNothing) {
    core().fail(kRead, kRefused);
    EXPECT_FALSE(InitModuleInfo(GetIpcCookie()));
    EXPECT_THAT(core().logs(), ElementsAre(logs::error("InitModuleInfo: failed dev info:get_static_information")));
    EXPECT_THAT(
        core().calls(),
        ElementsAre("getTargetIds(\"device_information\")",
                    "zorva_api_device_information_initiator_init(ipc, log, &, 0, null)",
                    std::string(kRead) + "(device_information, \"device_information/1\", &, &, &, &, &, &, &, &, &)",
                    "zorva_api_device_information_initiator_deinit(device_information)"));
    for (const char *instance : kModuleObjects) {
        EXPECT_EQ(get(instance).type, SNMP_NOSUCHOBJECT) << instance;
    }
}

TEST_F(ModuleInfoTest, StandsBesideTheDeviceInformation) {
    ASSERT_TRUE(InitDeviceInfo(GetIpcCookie()));
    camera("QN-5000", "2.0-1");
    start();
    expectText(kModuleModel, "QN-5000");
    expectText("1.3.6.1.4.1.99999.1.1.2.0.0", "QN-4000");
}

TEST_F(ModuleInfoTest, TheColumnsHaveNoRows) {
    start();
    for (const char *instance : kModuleObjects) {
        const std::string row = std::string(instance, std::strlen(instance) - 1) + "1";
        EXPECT_EQ(get(row).type, SNMP_NOSUCHINSTANCE) << row;
    }
}
