// SPDX-License-Identifier: Apache-2.0
#include "module_test.h"

namespace {

const char *const kReadInformation = "zorva_api_device_information_get_static_information_send";

class DeviceInfoTest : public ModuleTest {
protected:
    void SetUp() override {
        openCore();
        core().targets("device_information", {"device_information/1", "device_information/2"});
    }

    static void camera(const scripted::Value &model, const scripted::Value &firmware, const scripted::Value &hardware,
                       const scripted::Value &serial) {
        core().answer(kReadInformation,
                      {model, firmware, hardware, serial, "five", nullptr, "seven", "", std::int64_t{1}});
    }
};

const char *const kIdentity[] = {"1.3.6.1.4.1.99999.1.1.1.0.0", "1.3.6.1.4.1.99999.1.1.2.0.0",
                                 "1.3.6.1.4.1.99999.1.1.3.0.0", "1.3.6.1.4.1.99999.1.1.4.0.0",
                                 "1.3.6.1.4.1.99999.1.1.5.0.0", "1.3.6.1.4.1.99999.1.1.6.0.0"};

/** The identifier that the instance 0 was appended to. */
std::string stored(std::string_view instance) {
    return std::string(instance.substr(0, instance.size() - 2));
}

void expectNothingRegistered() {
    for (const char *instance : kIdentity) {
        EXPECT_EQ(requests::registeredName(stored(instance)), "") << instance;
    }
}

} // namespace

TEST_F(DeviceInfoTest, ReadsTheFirstTargetOnceAndClosesTheService) {
    camera("QN-4000", "1.4.2-20200512", "B7", "SN0042");
    EXPECT_TRUE(InitDeviceInfo(GetIpcCookie()));
    get("1.3.6.1.4.1.99999.1.1.1.0.0");
    DeinitDeviceInfo();
    EXPECT_THAT(core().calls(),
                ElementsAre("getTargetIds(\"device_information\")",
                            "zorva_api_device_information_initiator_init(ipc, log, &, 0, null)",
                            std::string(kReadInformation) +
                                "(device_information, \"device_information/1\", &, &, &, &, &, &, &, &, &)",
                            "zorva_api_device_information_initiator_deinit(device_information)"));
}

TEST_F(DeviceInfoTest, AnswersEachObject) {
    camera("QN-4000", "1.4.2-20200512", "B7", "SN0042");
    ASSERT_TRUE(InitDeviceInfo(GetIpcCookie()));
    const char *const expected[] = {"QN-4000", "QN-4000", "SN0042", "1.4.2-20200512", "1.4.2-20200512", "B7"};
    for (std::size_t i = 0; i < std::size(kIdentity); ++i) {
        const Answer answer = get(kIdentity[i]);
        EXPECT_EQ(answer.returned, SNMP_ERR_NOERROR) << kIdentity[i];
        EXPECT_EQ(answer.type, ASN_OCTET_STR) << kIdentity[i];
        EXPECT_EQ(answer.octets, expected[i]) << kIdentity[i];
    }
}

TEST_F(DeviceInfoTest, RegistersSixObjectsInOrder) {
    camera("QN-4000", "1.4.2-20200512", "B7", "SN0042");
    ASSERT_TRUE(InitDeviceInfo(GetIpcCookie()));
    EXPECT_THAT(core().logs(), ElementsAre(LogLine{7, "registerScalar: Registration for modelNumber OID OK"},
                                           LogLine{7, "registerScalar: Registration for modelName OID OK"},
                                           LogLine{7, "registerScalar: Registration for serialNumber OID OK"},
                                           LogLine{7, "registerScalar: Registration for fwVersion OID OK"},
                                           LogLine{7, "registerScalar: Registration for swVersion OID OK"},
                                           LogLine{7, "registerScalar: Registration for hwVersion OID OK"}));
    const char *const names[] = {"modelNumber", "modelName", "serialNumber", "fwVersion", "swVersion", "hwVersion"};
    for (std::size_t i = 0; i < std::size(kIdentity); ++i) {
        EXPECT_EQ(requests::registeredName(stored(kIdentity[i])), names[i]);
    }
}

TEST_F(DeviceInfoTest, AnEmptyModelNameAnswersEmptyForNameAndNumber) {
    camera("", "1.4.2", "B7", "SN0042");
    ASSERT_TRUE(InitDeviceInfo(GetIpcCookie()));
    for (const char *instance : {kIdentity[0], kIdentity[1]}) {
        const Answer answer = get(instance);
        EXPECT_EQ(answer.type, ASN_OCTET_STR);
        EXPECT_EQ(answer.octets, "");
    }
}

TEST_F(DeviceInfoTest, ATextThatTheServiceLeavesOutIsEmpty) {
    camera(nullptr, nullptr, nullptr, nullptr);
    ASSERT_TRUE(InitDeviceInfo(GetIpcCookie()));
    for (const char *instance : kIdentity) {
        const Answer answer = get(instance);
        EXPECT_EQ(answer.type, ASN_OCTET_STR);
        EXPECT_EQ(answer.octets, "");
    }
}

TEST_F(DeviceInfoTest, TheSoftwareVersionIsTheFirmwareVersion) {
    for (const char *firmware : {"1.4.2-20200512", "", "x"}) {
        camera("QN-4000", firmware, "B7", "SN0042");
        ASSERT_TRUE(InitDeviceInfo(GetIpcCookie()));
        EXPECT_EQ(get("1.3.6.1.4.1.99999.1.1.4.0.0").octets, firmware);
        EXPECT_EQ(get("1.3.6.1.4.1.99999.1.1.5.0.0").octets, firmware);
    }
}

TEST_F(DeviceInfoTest, TheStoredIdentifierIsNotAnInstance) {
    camera("QN-4000", "1.4.2", "B7", "SN0042");
    ASSERT_TRUE(InitDeviceInfo(GetIpcCookie()));
    EXPECT_EQ(get("1.3.6.1.4.1.99999.1.1.1.0.0").octets, "QN-4000");
    EXPECT_NE(get("1.3.6.1.4.1.99999.1.1.1.0").type, ASN_OCTET_STR);
}

TEST_F(DeviceInfoTest, NoTargetRegistersNothing) {
    core().reset();
    openCore();
    EXPECT_FALSE(InitDeviceInfo(GetIpcCookie()));
    EXPECT_THAT(core().calls(), ElementsAre("getTargetIds(\"device_information\")"));
    EXPECT_THAT(core().logs(), ElementsAre(LogLine{3, "no zorva API dev info"}));
    expectNothingRegistered();
}

TEST_F(DeviceInfoTest, AnEmptyTargetListIsNoTarget) {
    core().targets("device_information", {});
    EXPECT_FALSE(InitDeviceInfo(GetIpcCookie()));
    EXPECT_THAT(core().logs(), ElementsAre(LogLine{3, "no zorva API dev info"}));
    expectNothingRegistered();
}

TEST_F(DeviceInfoTest, AServiceThatDoesNotOpenRegistersNothing) {
    core().fail("zorva_api_device_information_initiator_init", 5);
    EXPECT_FALSE(InitDeviceInfo(GetIpcCookie()));
    EXPECT_THAT(core().calls(), ElementsAre("getTargetIds(\"device_information\")",
                                            "zorva_api_device_information_initiator_init(ipc, log, &, 0, null)"));
    EXPECT_THAT(core().logs(), ElementsAre(LogLine{3, "InitDeviceInfo: failed dev info initiator init"}));
    expectNothingRegistered();
}

TEST_F(DeviceInfoTest, AFailedReadClosesTheServiceAndRegistersNothing) {
    core().fail(kReadInformation, 5);
    EXPECT_FALSE(InitDeviceInfo(GetIpcCookie()));
    EXPECT_THAT(core().logs(), ElementsAre(LogLine{3, "InitDeviceInfo: failed dev info:get_static_information"}));
    EXPECT_EQ(core().calls().back(), "zorva_api_device_information_initiator_deinit(device_information)");
    expectNothingRegistered();
}

TEST_F(DeviceInfoTest, DeinitMakesNoCall) {
    DeinitDeviceInfo();
    EXPECT_THAT(core().calls(), IsEmpty());
}
