// SPDX-License-Identifier: Apache-2.0
#include <regex>

#include <gmock/gmock.h>

#include "test_cameras.h"

using namespace camera;
using nlohmann::json;

namespace {

/** Field of any service. */
struct AnyField {
    std::string service;
    FieldSummary field;
};

std::vector<AnyField> allFields() {
    std::vector<AnyField> fields;
    for (const std::string &service : knownServices()) {
        for (const FieldSummary &field : makeService(service)->fields()) {
            fields.push_back({service, field});
        }
    }
    return fields;
}

/** Returns the fields that can be set, or those that cannot. */
std::vector<AnyField> allFieldsThatAre(bool settable) {
    std::vector<AnyField> fields = allFields();
    fields.erase(std::remove_if(fields.begin(), fields.end(),
                                [&](const AnyField &any) { return any.field.settable != settable; }),
                 fields.end());
    return fields;
}

TEST(EveryField, IsSetToWhatItIs) {
    for (const AnyField &any : allFieldsThatAre(true)) {
        const auto camera = test::makeCameraOf(any.service, json::object());
        const std::string target = any.service + "/1";
        const json before = camera->state(target);
        const auto problem = camera->set(target, any.field.key, any.field.initial);
        EXPECT_FALSE(problem) << target << " " << any.field.key << ": " << problem->text;
        EXPECT_EQ(before, camera->state(target));
    }
}

TEST(EveryField, RefusesAValueOfAnotherKind) {
    const json wrong = {{"no", "field"}, {"has", "this"}};
    for (const AnyField &any : allFieldsThatAre(true)) {
        const auto camera = test::makeCameraOf(any.service, json::object());
        const std::string target = any.service + "/1";
        const auto problem = camera->set(target, any.field.key, wrong);
        ASSERT_TRUE(problem) << target << " " << any.field.key;
        EXPECT_EQ(target + " " + any.field.key + ": expected " + any.field.expected +
                      R"(, found {"has":"this","no":"field"})",
                  toString(*problem));
    }
}

TEST(EveryReadOnlyField, RefusesEvenWhatItIs) {
    const std::vector<AnyField> fields = allFieldsThatAre(false);
    ASSERT_FALSE(fields.empty());
    for (const AnyField &any : fields) {
        const auto camera = test::makeCameraOf(any.service, json::object());
        const std::string target = any.service + "/1";
        const auto problem = camera->set(target, any.field.key, any.field.initial);
        ASSERT_TRUE(problem) << target << " " << any.field.key;
        EXPECT_EQ(target + " " + any.field.key + ": read-only: it follows from commands", toString(*problem));
    }
}

TEST(EveryReadOnlyField, IsRefusedInCameraFiles) {
    for (const AnyField &any : allFieldsThatAre(false)) {
        const json values = nested({{any.field.key, any.field.initial}});
        try {
            test::makeCameraOf(any.service, values);
            ADD_FAILURE() << any.service << " " << any.field.key;
        } catch (const FileError &error) {
            EXPECT_EQ("test.json: services." + any.service + ".targets[0]." + any.field.key +
                          ": read-only: it follows from commands",
                      std::string(error.what()));
        }
    }
}

/** Returns the path of a dotted key in nested JSON. */
json::json_pointer pointerTo(std::string key) {
    std::replace(key.begin(), key.end(), '.', '/');
    return json::json_pointer("/" + key);
}

TEST(EveryIntegerField, RefusesWhatIsJustBeyondItsRange) {
    const std::regex range("an integer from (-?[0-9]+) to ([0-9]+)");
    std::size_t checked = 0;
    for (const AnyField &any : allFields()) {
        std::smatch ends;
        if (!std::regex_match(any.field.expected, ends, range)) {
            continue;
        }
        ++checked;
        const auto camera = test::makeCameraOf(any.service, json::object());
        const std::string target = any.service + "/1";
        for (const long long beyond : {std::stoll(ends[1]) - 1, std::stoll(ends[2]) + 1}) {
            const auto problem = camera->set(target, any.field.key, beyond);
            ASSERT_TRUE(problem) << target << " " << any.field.key << " " << beyond;
            EXPECT_EQ(mismatch(any.field.expected, beyond), problem->text);
            EXPECT_EQ(any.field.initial, camera->state(target).at(pointerTo(any.field.key)));
        }
    }
    EXPECT_GT(checked, 40U);
}

TEST(SettingAField, ChangesThatFieldOnly) {
    const auto dome = test::shippedCamera("dome");
    json expected = dome->state("positioning/1");
    ASSERT_FALSE(dome->set("positioning/1", "tilt.softPosition.maximum", 10000));
    expected["tilt"]["softPosition"]["maximum"] = 10000;
    EXPECT_EQ(expected, dome->state("positioning/1"));
}

TEST(SettingAField, LeavesOtherTargetsAlone) {
    const auto dome = test::shippedCamera("dome");
    ASSERT_FALSE(dome->set("alarm/2", "state", 1));
    EXPECT_EQ(0, dome->state("alarm/1")["state"]);
    EXPECT_EQ(1, dome->state("alarm/2")["state"]);
}

TEST(SettingAField, ChangesNothingWhenOtherFieldsForbidIt) {
    const auto dome = test::shippedCamera("dome");
    const json before = dome->state("positioning/1");
    const auto problem = dome->set("positioning/1", "pan.position", 360000);
    ASSERT_TRUE(problem);
    EXPECT_EQ("positioning/1 pan.position: expected an integer from 0 to 359999 (pan.minimum to pan.maximum), found "
              "360000",
              toString(*problem));
    EXPECT_EQ(before, dome->state("positioning/1"));
}

TEST(SettingAGroup, SetsItsFieldsTogether) {
    const auto dome = test::shippedCamera("dome");
    // Neither the maximum nor the position could be set alone.
    ASSERT_FALSE(dome->set("iris/1", "maximum", 128));
    ASSERT_TRUE(dome->set("iris/1", "maximum", 127));
    ASSERT_FALSE(dome->set("positioning/1", "zoom", {{"maximum", 400}, {"position", 400}}));
    EXPECT_EQ(400, dome->state("positioning/1")["zoom"]["position"]);
    EXPECT_EQ(400, dome->state("positioning/1")["zoom"]["maximum"]);
}

TEST(SettingAGroup, ChangesNothingWhenOneOfItsValuesIsWrong) {
    const auto dome = test::shippedCamera("dome");
    const json before = dome->state("positioning/1");
    const auto problem = dome->set("positioning/1", "pan", {{"position", 7}, {"maximumSpeed", "fast"}});
    ASSERT_TRUE(problem);
    EXPECT_EQ("positioning/1 pan.maximumSpeed: expected an integer from 0 to 2147483647, found \"fast\"",
              toString(*problem));
    const auto readOnly = dome->set("positioning/1", "pan", {{"position", 5}, {"target", 7}});
    ASSERT_TRUE(readOnly);
    EXPECT_EQ("positioning/1 pan.target: read-only: it follows from commands", toString(*readOnly));
    EXPECT_EQ(before, dome->state("positioning/1"));
}

TEST(SettingAField, ThatIsNotThereListsThoseThatAre) {
    const auto dome = test::shippedCamera("dome");
    EXPECT_EQ("alarm/1 stat: unknown key; expected one of: state", toString(*dome->set("alarm/1", "stat", 1)));
    EXPECT_EQ("alarm/1: unknown key; expected one of: state", toString(*dome->set("alarm/1", "", 1)));
    EXPECT_EQ("relay/1 configuration.c8: unknown key; expected one of: c1, c2, c3, c4, c5, c6, c7",
              toString(*dome->set("relay/1", "configuration.c8", 1)));
    EXPECT_EQ("relay/1 state.bit.zero: unknown key; expected one of: state, configuration",
              toString(*dome->set("relay/1", "state.bit.zero", 1)));
}

TEST(SettingAField, OfATargetThatIsNotThereListsThoseThatAre) {
    const auto minimal = test::shippedCamera("minimal");
    EXPECT_EQ("alarm/1: unknown target; expected one of: device_information/1, device_management/1",
              toString(*minimal->set("alarm/1", "state", 1)));
}

TEST(TextFields, TakeNull) {
    const auto minimal = test::shippedCamera("minimal");
    ASSERT_FALSE(minimal->set("device_information/1", "serial", nullptr));
    EXPECT_TRUE(minimal->state("device_information/1")["serial"].is_null());
}

TEST(TextFields, TakeAtMostTheirLength) {
    const auto minimal = test::shippedCamera("minimal");
    EXPECT_FALSE(minimal->set("device_information/1", "serial", std::string(255, 'x')));
    EXPECT_TRUE(minimal->set("device_information/1", "serial", std::string(256, 'x')));
}

} // namespace
