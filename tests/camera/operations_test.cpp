// SPDX-License-Identifier: Apache-2.0
// The operations of the model against the calls that the core library declares.
#include <map>
#include <utility>

#include <gmock/gmock.h>

#include "test_cameras.h"

using namespace camera;
using nlohmann::json;

namespace {

/** What a declared call takes and gives. */
struct Declared {
    std::vector<std::string> arguments;
    std::size_t outputs = 0;
};

template <typename Parameter>
void addParameter(Declared &declared) {
    if constexpr (std::is_same_v<Parameter, const char *>) {
        declared.arguments.emplace_back("text");
    } else if constexpr (std::is_pointer_v<Parameter>) {
        ++declared.outputs;
    } else {
        declared.arguments.emplace_back(argumentKind<Parameter>());
    }
}

template <typename... Parameters>
Declared declaredBy(void (* /*call*/)(void *, const char *, Parameters...)) {
    Declared declared;
    (addParameter<Parameters>(declared), ...);
    return declared;
}

using Calls = std::map<std::pair<std::string, std::string>, Declared>;

const Calls &declaredCalls() {
    static const Calls calls = {
#define ZORVA_CALL(service, operation, parameters, ...)                                                                \
    {{#service, #operation}, declaredBy(static_cast<void(*) parameters>(nullptr))},
#include "service_calls.def"
    };
    return calls;
}

const std::vector<std::string> &declaredServices() {
    static const std::vector<std::string> services = {
#define ZORVA_SERVICE(service) #service,
#include "service_calls.def"
    };
    return services;
}

TEST(Services, AreThoseOfTheCoreLibrary) {
    EXPECT_THAT(knownServices(), testing::UnorderedElementsAreArray(declaredServices()));
}

TEST(Operations, AreThoseOfTheCoreLibrary) {
    Calls::size_type operations = 0;
    for (const std::string &name : knownServices()) {
        for (const OperationSummary &operation : makeService(name)->operations()) {
            ++operations;
            const auto declared = declaredCalls().find({name, operation.name});
            ASSERT_NE(declared, declaredCalls().end()) << name << " " << operation.name;
            EXPECT_EQ(declared->second.arguments, operation.arguments) << name << " " << operation.name;
        }
    }
    EXPECT_EQ(declaredCalls().size(), operations);
}

/** One call of each operation, made on a new camera. */
struct Example {
    const char *service;
    const char *operation;
    json arguments;
    json results;
    json changes;                ///< the fields that differ afterwards, with dotted keys
    json given = json::object(); ///< fields that are set before the call
};

const std::vector<Example> &examples() {
    const json none = json::array();
    const json same = json::object();
    static const std::vector<Example> all = {
        {"alarm", "get_state_send", none, {5}, same},
        {"device_information",
         "get_static_information_send",
         none,
         {"QN-1", "1.2-3", nullptr, "0815", "five", nullptr, "", "eight", 9},
         same},
        {"device_management", "reboot_send", {2}, none, {{"reboots", 1}}},
        {"exposure", "get_manual_mode_enable_send", none, {1}, same},
        {"exposure", "set_manual_mode_enable_send", {0}, none, {{"manualMode", false}}},
        {"focus_stepper", "get_limits_send", none, {-10, 4000, 1, 900}, same},
        {"focus_stepper", "get_manual_mode_enable_send", none, {0}, same},
        {"focus_stepper", "get_position_send", none, {20, 21}, same},
        {"focus_stepper", "set_manual_mode_enable_send", {255}, none, {{"manualMode", true}}},
        {"focus_stepper",
         "set_position_send",
         {-10, 900},
         none,
         {{"target", -10}, {"velocity", -900}, {"moving", true}, {"speed", 900}},
         {{"manualMode", true}}},
        {"focus_stepper", "start_quick_auto_focus_send", none, none, {{"quickAutoFocusRuns", 1}, {"focusing", true}}},
        {"iris", "get_position_send", none, {4000000000U, 5, 4294967295U}, same},
        {"iris",
         "set_position_send",
         {4294967295U},
         none,
         {{"target", 4294967295U}, {"velocity", 700}, {"moving", true}}},
        {"iris", "set_velocity_send", {0, 1}, none, {{"velocity", 700}, {"moving", true}}},
        {"lens_focus",
         "do_auto_focus_send",
         none,
         none,
         {{"autoFocusRuns", 1}, {"focusing", true}},
         {{"manualMode", false}}},
        {"lens_focus", "get_manual_focus_position_send", none, {30, -50, 70}, same},
        {"lens_focus", "get_manual_mode_enable_send", none, {1}, same},
        {"lens_focus",
         "set_manual_focus_position_send",
         {-50},
         none,
         {{"target", -50}, {"velocity", -600}, {"moving", true}}},
        {"lens_focus", "set_manual_mode_enable_send", {0}, none, {{"manualMode", false}}},
        {"lens_focus", "set_velocity_send", {1, 1}, none, {{"velocity", -600}, {"moving", true}}},
        {"positioning", "clear_velocity_limits_send", {1, 0, 1}, none, {{"pan.softSpeed.enabled", false}}},
        {"positioning", "get_digital_zoom_enable_send", none, {1}, same},
        {"positioning", "get_implementation_position_limits_send", none, {0, 359999, -90000, 20000, 10, 300}, same},
        {"positioning", "get_implementation_velocity_limits_send", none, {50, 280000, 40, 120000, 1, 150}, same},
        {"positioning", "get_max_optical_and_digital_zoom_send", none, {300, 120, 3600}, same},
        {"positioning", "get_position_send", none, {1000, -2000, 20}, same},
        {"positioning", "get_soft_position_limits_send", none, {0, 1, 2, 1, -3000, -4, 0, 5, 6}, same},
        {"positioning", "get_soft_velocity_limits_send", none, {1, 60, 90000, 0, 7, 8, 0, 9, 10}, same},
        {"positioning", "get_velocity_command_timeout_send", none, {1500}, same},
        {"positioning",
         "move_to_position_with_speed_percentage_send",
         {1, 180000, 0.5, 0, 77, 7.7, 255, 3600, 1, -1},
         none,
         {{"pan.velocity", 90000},
          {"pan.target", 180000},
          {"pan.moving", true},
          {"pan.priority", -1},
          {"zoom.velocity", 149},
          {"zoom.target", 3600},
          {"zoom.moving", true},
          {"zoom.priority", -1}}},
        {"positioning",
         "set_soft_velocity_limits_send",
         {0, -1, -2, 1, 100, 200, 0, 0, 0},
         none,
         {{"tilt.softSpeed.enabled", true}, {"tilt.softSpeed.minimum", 100}, {"tilt.softSpeed.maximum", 200}}},
        {"positioning", "set_velocity_command_timeout_send", {0}, none, {{"velocityCommandTimeout", 0}}},
        {"positioning",
         "set_velocity_send",
         {1, -50, 1, 60, 0, 70, 1},
         none,
         {{"pan.velocity", -60},
          {"pan.moving", true},
          {"pan.priority", 1},
          {"tilt.velocity", 60},
          {"tilt.moving", true},
          {"tilt.priority", 1},
          {"velocityTimeout", 1500}}},
        {"positioning",
         "set_velocity_with_timeout_send",
         {0, 0, 0, 0, 1, -150, 2, 250},
         none,
         {{"zoom.velocity", -150}, {"zoom.moving", true}, {"zoom.priority", 2}, {"velocityTimeout", 250}}},
        {"power", "get_power_state_send", none, {3}, same},
        {"power", "get_voltage_state_send", none, {4}, same},
        {"presets_tours", "get_max_presets_send", none, {20}, same},
        {"presets_tours", "get_preset_id_for_quarnapi_id_send", {3}, {"gate"}, same},
        {"presets_tours", "move_to_preset_send", {"gate", 1.0, 1, 1}, none, same},
        {"presets_tours",
         "set_preset_with_current_position_send",
         {"gate", "Main gate", 4, 1},
         none,
         {{"presets", json::array({{{"id", "gate"},
                                    {"name", "Main gate"},
                                    {"number", 4},
                                    {"pan", 1000},
                                    {"tilt", -2000},
                                    {"zoom", 20}}})}}},
        {"relay", "get_configuration_send", none, {1, 2, -3, 4, 5, 6, 7}, same},
        {"relay", "get_state_send", none, {6}, same},
        {"relay",
         "set_configuration_send",
         {0, 255, -7, 8, 9, 10, 11},
         none,
         {{"configuration.c1", 0},
          {"configuration.c2", 255},
          {"configuration.c3", -7},
          {"configuration.c4", 8},
          {"configuration.c5", 9},
          {"configuration.c6", 10},
          {"configuration.c7", 11}}},
        {"relay", "set_state_send", {1}, none, {{"state", 7}}},
        {"temperature", "get_temperature_send", none, {-12500}, same},
        {"zoom_stepper", "get_limits_send", none, {1, 2, 3, 4}, same},
        {"zoom_stepper", "get_position_send", none, {2}, same},
        {"zoom_stepper",
         "set_position_send",
         {1, 4},
         none,
         {{"target", 1}, {"velocity", -4}, {"moving", true}, {"speed", 4}}},
    };
    return all;
}

/** A camera with all services, a different value in each field where that is possible, and a clock that stands. */
std::unique_ptr<CameraModel> fullCamera() {
    return test::makeCamera(R"({"name": "full", "services": {
        "alarm": {"targets": [{"state": 5}]},
        "device_information": {"targets": [{"model": "QN-1", "firmware": "1.2-3", "hardware": null, "serial": "0815",
            "text5": "five", "text7": "", "text8": "eight", "flag": 9}]},
        "device_management": {"targets": [{}]},
        "exposure": {"targets": [{"manualMode": true}]},
        "focus_stepper": {"targets": [{"position": 20, "secondPosition": 21, "minimum": -10, "maximum": 4000,
            "minimumSpeed": 1, "maximumSpeed": 900, "sharpPosition": 20, "searchTime": 8}]},
        "iris": {"targets": [{"position": 4000000000, "minimum": 5, "maximum": 4294967295, "speed": 700,
            "automaticPosition": 4000000000}]},
        "lens_focus": {"targets": [{"position": 30, "minimum": -50, "maximum": 70, "speed": 600, "manualMode": true,
            "sharpPosition": 30, "searchTime": 9}]},
        "positioning": {"targets": [{
            "pan": {"position": 1000, "minimum": 0, "maximum": 359999, "endless": true,
                "minimumSpeed": 50, "maximumSpeed": 280000, "softPosition": {"minimum": 1, "maximum": 2},
                "softSpeed": {"enabled": true, "minimum": 60, "maximum": 90000}},
            "tilt": {"position": -2000, "minimum": -90000, "maximum": 20000, "minimumSpeed": 40,
                "maximumSpeed": 120000, "softPosition": {"enabled": true, "minimum": -3000, "maximum": -4},
                "softSpeed": {"minimum": 7, "maximum": 8}},
            "zoom": {"position": 20, "minimum": 10, "maximum": 300, "minimumSpeed": 1, "maximumSpeed": 150,
                "softPosition": {"minimum": 5, "maximum": 6}, "softSpeed": {"minimum": 9, "maximum": 10}},
            "digitalZoom": {"enabled": true, "maximum": 120, "combinedMaximum": 3600},
            "velocityCommandTimeout": 1500}]},
        "power": {"targets": [{"powerState": 3, "voltageState": 4}]},
        "presets_tours": {"targets": [{"maximumPresets": 20, "presets": [
            {"id": "gate", "name": "Gate", "number": 3, "pan": 90000, "tilt": -45000, "zoom": 100}]}]},
        "relay": {"targets": [{"state": 6, "configuration": {"c1": 1, "c2": 2, "c3": -3, "c4": 4, "c5": 5, "c6": 6,
            "c7": 7}}]},
        "temperature": {"targets": [{"temperature": -12500}]},
        "zoom_stepper": {"targets": [{"position": 2, "minimum": 1, "maximum": 2, "minimumSpeed": 3,
            "maximumSpeed": 4}]}
    }})",
                            [] { return 0.0; });
}

json requestOf(const Example &example) {
    json request = json::array({example.operation, std::string(example.service) + "/1"});
    request.insert(request.end(), example.arguments.begin(), example.arguments.end());
    return request;
}

TEST(EachOperation, HasAnExample) {
    Calls missing = declaredCalls();
    for (const Example &example : examples()) {
        missing.erase({example.service, example.operation});
    }
    for (const auto &entry : missing) {
        ADD_FAILURE() << entry.first.first << " " << entry.first.second;
    }
}

TEST(EachOperation, AnswersAndChangesTheModel) {
    for (const Example &example : examples()) {
        SCOPED_TRACE(std::string(example.service) + " " + example.operation);
        const auto camera = fullCamera();
        const Service &service = *camera->service(example.service);
        for (const auto &field : example.given.items()) {
            ASSERT_FALSE(camera->set(std::string(example.service) + "/1", field.key(), field.value()));
        }
        json expected = service.values(0);
        for (const auto &change : example.changes.items()) {
            ASSERT_TRUE(expected.contains(change.key())) << change.key();
            expected[change.key()] = change.value();
        }
        const Answer answer = camera->call(example.service, requestOf(example));
        EXPECT_EQ(wire::kSuccess, answer.status);
        EXPECT_EQ(example.results, answer.results);
        EXPECT_EQ(expected, service.values(0));
        EXPECT_EQ(declaredCalls().at({example.service, example.operation}).outputs, answer.results.size());
        const std::optional<Problem> problem = service.check(0);
        EXPECT_FALSE(problem) << toString(*problem);
    }
}

TEST(EachOperation, WithOneArgumentMoreIsRefused) {
    for (const Example &example : examples()) {
        const auto camera = fullCamera();
        const json before = camera->service(example.service)->values(0);
        json request = requestOf(example);
        request.push_back(1);
        EXPECT_EQ(wire::kInvalidArgument, camera->call(example.service, request).status) << example.operation;
        EXPECT_EQ(before, camera->service(example.service)->values(0));
    }
}

TEST(EachArgument, OfAWrongKindIsRefused) {
    for (const Example &example : examples()) {
        const json request = requestOf(example);
        for (std::size_t i = 2; i < request.size(); ++i) {
            json wrong = request;
            wrong[i] = json::array({request[i]});
            const auto camera = fullCamera();
            const json before = camera->service(example.service)->values(0);
            EXPECT_EQ(wire::kInvalidArgument, camera->call(example.service, wrong).status)
                << example.operation << " argument " << i;
            EXPECT_EQ(before, camera->service(example.service)->values(0));
        }
    }
}

} // namespace
