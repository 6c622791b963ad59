// SPDX-License-Identifier: Apache-2.0
// The operations of the model against the calls that the core library declares.
#include <filesystem>
#include <map>
#include <utility>

#include <gmock/gmock.h>

#include "event_recorder.h"
#include "test_cameras.h"
#include "text_file.h"

using namespace camera;
using nlohmann::json;

namespace {

/** Arguments and outputs of a declared call. */
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

/** Returns the source file with the definition of a service; the catalogue for a service without one. */
std::string definitionOf(const std::string &service) {
    for (const auto &entry : std::filesystem::directory_iterator(QUARNSNMP_SERVICE_DEFINITIONS)) {
        if (readTextFile(entry.path()).find("\"" + service + "\",") != std::string::npos) {
            return entry.path().string();
        }
    }
    return QUARNSNMP_SERVICE_DEFINITIONS "/catalogue.cpp";
}

TEST(EachServiceOfTheCoreLibrary, IsAServiceOfTheCamera) {
    for (const std::string &service : declaredServices()) {
        EXPECT_NE(nullptr, makeService(service))
            << "add the service " << service << " to " << QUARNSNMP_SERVICE_DEFINITIONS << "/catalogue.cpp";
    }
    EXPECT_THAT(knownServices(), testing::UnorderedElementsAreArray(declaredServices()));
}

TEST(EachCallOfTheCoreLibrary, IsAnOperationOfTheCamera) {
    Calls missing = declaredCalls();
    for (const std::string &service : knownServices()) {
        for (const OperationSummary &operation : makeService(service)->operations()) {
            SCOPED_TRACE(definitionOf(service) + ": " + operation.name);
            const auto declared = declaredCalls().find({service, operation.name});
            ASSERT_NE(declared, declaredCalls().end()) << "service_calls.def has no such call";
            EXPECT_EQ(declared->second.arguments, operation.arguments);
            EXPECT_EQ(1U, missing.erase({service, operation.name})) << "the operation is defined twice";
        }
    }
    for (const auto &[call, declared] : missing) {
        ADD_FAILURE() << "add the operation " << call.second << " of the service " << call.first << " to "
                      << definitionOf(call.first) << ", and an example of it to " << __FILE__;
    }
}

/** Call of an operation on a new camera. */
struct Example {
    std::string service;
    std::string operation;
    json arguments;
    json results;
    json changes; ///< changed fields, with dotted keys
    json given;   ///< fields to set before the call
};

/** Returns an example of each operation. */
std::vector<Example> examples() {
    const json rows = json::parse(R"([
        ["alarm", "get_state_send", [], [5], {}],
        ["device_information", "get_static_information_send", [], ["QN-1", "1.2-3", null, "0815", "five",
            null, "", "eight", 9], {}],
        ["device_management", "reboot_send", [2], [], {"reboots": 8}],
        ["exposure", "get_manual_mode_enable_send", [], [1], {}],
        ["exposure", "set_manual_mode_enable_send", [0], [], {"manualMode": false}],
        ["focus_stepper", "get_limits_send", [], [-10, 4000, 1, 900], {}],
        ["focus_stepper", "get_manual_mode_enable_send", [], [0], {}],
        ["focus_stepper", "get_position_send", [], [20, 21], {}],
        ["focus_stepper", "set_manual_mode_enable_send", [255], [], {"manualMode": true}],
        ["focus_stepper", "set_position_send", [-10, 900], [], {"target": -10, "velocity": -900, "moving":
            true, "speed": 900}, {"manualMode": true}],
        ["focus_stepper", "start_quick_auto_focus_send", [], [], {"quickAutoFocusRuns": 1, "focusing": true}],
        ["iris", "get_position_send", [], [4000000000, 5, 4294967295], {}],
        ["iris", "set_position_send", [4294967295], [], {"target": 4294967295, "velocity": 700, "moving": true}],
        ["iris", "set_velocity_send", [0, 1], [], {"velocity": 700, "moving": true}],
        ["lens_focus", "do_auto_focus_send", [], [], {"autoFocusRuns": 1, "focusing": true}, {"manualMode": false}],
        ["lens_focus", "get_manual_focus_position_send", [], [30, -50, 70], {}],
        ["lens_focus", "get_manual_mode_enable_send", [], [1], {}],
        ["lens_focus", "set_manual_focus_position_send", [-50], [], {"target": -50, "velocity": -600,
            "moving": true}],
        ["lens_focus", "set_manual_mode_enable_send", [0], [], {"manualMode": false}],
        ["lens_focus", "set_velocity_send", [1, 1], [], {"velocity": -600, "moving": true}],
        ["positioning", "clear_velocity_limits_send", [1, 0, 1], [], {"pan.softSpeed.enabled": false}],
        ["positioning", "get_digital_zoom_enable_send", [], [1], {}],
        ["positioning", "get_implementation_position_limits_send", [], [0, 359999, -90000, 20000, 10, 300], {}],
        ["positioning", "get_implementation_velocity_limits_send", [], [50, 280000, 40, 120000, 1, 150], {}],
        ["positioning", "get_max_optical_and_digital_zoom_send", [], [300, 120, 3600], {}],
        ["positioning", "get_position_send", [], [1000, -2000, 20], {}],
        ["positioning", "get_soft_position_limits_send", [], [0, 1, 2, 1, -3000, -4, 0, 5, 6], {}],
        ["positioning", "get_soft_velocity_limits_send", [], [1, 60, 90000, 0, 7, 8, 0, 9, 10], {}],
        ["positioning", "get_velocity_command_timeout_send", [], [1500], {}],
        ["positioning", "move_to_position_with_speed_percentage_send", [1, 180000, 0.5, 0, 77, 7.7, 255, 3600,
            1, -1], [], {"pan.velocity": 90000, "pan.target": 180000, "pan.moving": true, "pan.priority": -1,
            "zoom.velocity": 149, "zoom.target": 3600, "zoom.moving": true, "zoom.priority": -1}],
        ["positioning", "set_soft_velocity_limits_send", [0, -1, -2, 1, 100, 200, 0, 0, 0], [],
            {"tilt.softSpeed.enabled": true, "tilt.softSpeed.minimum": 100, "tilt.softSpeed.maximum": 200}],
        ["positioning", "set_velocity_command_timeout_send", [0], [], {"velocityCommandTimeout": 0}],
        ["positioning", "set_velocity_send", [1, -50, 1, 60, 0, 70, 1], [], {"pan.velocity": -60,
            "pan.moving": true, "pan.priority": 1, "tilt.velocity": 60, "tilt.moving": true, "tilt.priority":
            1, "velocityTimeout": 1500}],
        ["positioning", "set_velocity_with_timeout_send", [0, 0, 0, 0, 1, -150, 2, 250], [], {"zoom.velocity":
            -150, "zoom.moving": true, "zoom.priority": 2, "velocityTimeout": 250}],
        ["power", "get_power_state_send", [], [3], {}],
        ["power", "get_voltage_state_send", [], [4], {}],
        ["presets_tours", "get_max_presets_send", [], [20], {}],
        ["presets_tours", "get_preset_id_for_quarnapi_id_send", [3], ["gate"], {}],
        ["presets_tours", "move_to_preset_send", ["gate", 1.0, 1, 1], [], {}],
        ["presets_tours", "set_preset_with_current_position_send", ["gate", "Main gate", 4, 1], [],
            {"presets": [{"id": "gate", "name": "Main gate", "number": 4, "pan": 1000, "tilt": -2000, "zoom":
            20}]}],
        ["relay", "get_configuration_send", [], [1, 2, -3, 4, 5, 6, 7], {}],
        ["relay", "get_state_send", [], [6], {}],
        ["relay", "set_configuration_send", [0, 255, -7, 8, 9, 10, 11], [], {"configuration.c1": 0,
            "configuration.c2": 255, "configuration.c3": -7, "configuration.c4": 8, "configuration.c5": 9,
            "configuration.c6": 10, "configuration.c7": 11}],
        ["relay", "set_state_send", [1], [], {"state": 7}],
        ["temperature", "get_temperature_send", [], [-12500], {}],
        ["zoom_stepper", "get_limits_send", [], [1, 2, 3, 4], {}],
        ["zoom_stepper", "get_position_send", [], [2], {}],
        ["zoom_stepper", "set_position_send", [1, 4], [], {"target": 1, "velocity": -4, "moving": true, "speed": 4}]
    ])");
    std::vector<Example> all;
    for (const json &row : rows) {
        all.push_back({row[0], row[1], row[2], row[3], row[4], row.size() > 5 ? row[5] : json::object()});
    }
    return all;
}

/** Makes a camera with all services, different values in all fields if possible, and a clock that stands still. */
std::unique_ptr<CameraModel> fullCamera() {
    return test::makeCamera(R"({"name": "full", "services": {
        "alarm": {"targets": [{"state": 5}]},
        "device_information": {"targets": [{"model": "QN-1", "firmware": "1.2-3", "hardware": null, "serial": "0815",
            "text5": "five", "text7": "", "text8": "eight", "flag": 9}]},
        "device_management": {"targets": [{"reboots": 7, "rebootSeconds": 9}]},
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
    json request = json::array({example.operation, example.service + "/1"});
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
        SCOPED_TRACE(example.service + " " + example.operation);
        const auto camera = fullCamera();
        const Service &service = *camera->service(example.service);
        for (const auto &field : example.given.items()) {
            ASSERT_FALSE(camera->set(example.service + "/1", field.key(), field.value()));
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

/** The examples read these values. */
TEST(EachIndependentField, IsSetToAnotherValueAlone) {
    std::size_t set = 0;
    for (const std::string service : {"alarm", "device_information", "device_management", "exposure", "power",
                                      "presets_tours", "relay", "temperature"}) {
        const json wanted = fullCamera()->service(service)->values(0);
        const auto camera = test::makeCameraOf(service, json::object());
        json expected = camera->service(service)->values(0);
        test::EventRecorder recorder(camera->events());
        for (const auto &field : wanted.items()) {
            if (expected[field.key()] == field.value()) {
                continue;
            }
            SCOPED_TRACE(service + " " + field.key());
            ++set;
            recorder.clear();
            EXPECT_FALSE(camera->set(service + "/1", field.key(), field.value()));
            EXPECT_THAT(recorder.seen(), testing::ElementsAre(json{{"event", "changed"},
                                                                   {"target", service + "/1"},
                                                                   {"fields", {{field.key(), field.value()}}}}));
            expected[field.key()] = field.value();
            EXPECT_EQ(expected, camera->service(service)->values(0));
        }
    }
    EXPECT_LE(20U, set);
}

/** Expects that a call is refused and changes nothing. */
void expectInvalid(const Example &example, const json &request) {
    const auto camera = fullCamera();
    const json before = camera->service(example.service)->values(0);
    EXPECT_EQ(wire::kInvalidArgument, camera->call(example.service, request).status) << request;
    EXPECT_EQ(before, camera->service(example.service)->values(0));
}

TEST(EachOperation, RefusesOneArgumentMoreAndEachArgumentOfAnotherType) {
    for (const Example &example : examples()) {
        const json request = requestOf(example);
        json longer = request;
        longer.push_back(1);
        expectInvalid(example, longer);
        for (std::size_t i = 2; i < request.size(); ++i) {
            json wrong = request;
            wrong[i] = json::array({request[i]});
            expectInvalid(example, wrong);
        }
    }
}

} // namespace
