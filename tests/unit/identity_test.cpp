// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * The identity of the camera: the vendor's objects, and the module table with the camera as its only module.
 */
#include "handler_requests.h"
#include "snmp_utils.h"

namespace {

using Texts = std::vector<std::pair<const char *, std::string>>;

class IdentityTest : public ModuleTest {
protected:
    void SetUp() override {
        openCore();
        core().targets("device_information", {"device_information/1"});
        camera("QN-4000", "1.4.2-20200512", "B7", "SN0042");
    }

    static void camera(const scripted::Value &model, const scripted::Value &firmware,
                       const scripted::Value &hardware = nullptr, const scripted::Value &serial = nullptr) {
        core().answer("zorva_api_device_information_get_static_information_send",
                      {model, firmware, hardware, serial, "five", nullptr, "seven", "", std::int64_t{1}});
    }
    static void start() {
        UnregisterAll();
        ASSERT_TRUE(InitDeviceInfo(GetIpcCookie()));
        ASSERT_TRUE(InitModuleInfo(GetIpcCookie()));
        core().clearRecord();
    }
    static void expectTexts(const Texts &expected) {
        for (const auto &[instance, text] : expected) {
            EXPECT_THAT(get(instance), isOctets(text)) << instance;
        }
    }
};

} // namespace

TEST_F(IdentityTest, EachObjectAnswersWithoutAskingTheCameraAgain) {
    start();
    camera("other", "2.0-other");
    expectTexts({{oids::modelNumber, "QN-4000"},
                 {oids::modelName, "QN-4000"},
                 {oids::serialNumber, "SN0042"},
                 {oids::fwVersion, "1.4.2-20200512"},
                 {oids::swVersion, "1.4.2-20200512"},
                 {oids::hwVersion, "B7"},
                 {oids::moduleDeviceNode, "1.3.6.1.4.1.1206.4.2.7"},
                 {oids::moduleMake, "Quarn"},
                 {oids::moduleModel, "QN-4000"},
                 {oids::moduleVersion, "20200512 - v1.4.2"}});
    EXPECT_THAT(get(oids::maxModules), isInteger(1));
    EXPECT_THAT(get(oids::moduleNumber), isInteger(1));
    EXPECT_THAT(get(oids::moduleType), isInteger(2));
    EXPECT_THAT(core().calls(), IsEmpty());
    EXPECT_THAT(core().logs(), IsEmpty());
}

TEST_F(IdentityTest, ATextThatTheServiceLeavesOutIsEmpty) {
    for (const scripted::Value &none : {scripted::Value(""), scripted::Value(nullptr)}) {
        start();
        camera(none, none, none, none);
        start();
        expectTexts({{oids::modelNumber, ""},
                     {oids::modelName, ""},
                     {oids::serialNumber, ""},
                     {oids::fwVersion, ""},
                     {oids::swVersion, ""},
                     {oids::hwVersion, ""},
                     {oids::moduleMake, "Quarn"},
                     {oids::moduleModel, ""}});
        camera("another make", "x");
    }
    start();
    expectTexts({{oids::modelName, "another make"}, {oids::moduleMake, "Quarn"}, {oids::swVersion, "x"}});
}

TEST_F(IdentityTest, TheModuleVersionIsTheBuildAndThenTheRelease) {
    const std::pair<scripted::Value, const char *> cases[] = {
        {"1.4.2-20200512", "20200512 - v1.4.2"},
        {"2.0-123456789", "12345678 - v2.0"}, // a build has at most 8 characters
        {"2.0-1234567", "1234567 - v2.0"},
        {"2.0-", " - v2.0"},
        {"-20200512", "20200512 - v"},
        {"-", " - v"},
        {"2.0-rc-1", "rc-1 - v2.0"}, // the first hyphen separates them
        {"2.0--1", "-1 - v2.0"},
        {"2.0-1234567-9", "1234567- - v2.0"},
        {"2.0 - 1", " 1 - v2.0 "},
        {"1.4.2", " - v"}, // neither without a hyphen
        {"", " - v"},
        {nullptr, " - v"},
    };
    for (const auto &[firmware, version] : cases) {
        camera("QN-4000", firmware);
        start();
        expectTexts({{oids::moduleVersion, version}});
    }
}

TEST_F(IdentityTest, TheFeaturesReadTheCameraApart) {
    ASSERT_TRUE(InitDeviceInfo(GetIpcCookie()));
    camera("QN-5000", "2.0-1");
    ASSERT_TRUE(InitModuleInfo(GetIpcCookie()));
    expectTexts({{oids::moduleModel, "QN-5000"}, {oids::modelName, "QN-4000"}});
}
