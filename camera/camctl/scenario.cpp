// SPDX-License-Identifier: Apache-2.0
#include "scenario.h"

#include <algorithm>
#include <iterator>

#include "json_text.h"
#include "object_reader.h"
#include "text_file.h"
#include "values.h"

namespace camera {

namespace {

using nlohmann::json;

/** Commands with an object of the same keys as on the control socket. */
constexpr const char *kFaultCommands[] = {"fail", "delay", "clear"};

/** Permitted commands of a step. */
const std::vector<std::string> &stepCommands() {
    static const std::vector<std::string> names = {"set", "down", "up", "fail", "delay", "clear"};
    return names;
}

void addSet(const ObjectReader &step, const json &targets, ScenarioStep &read) {
    const std::string expected = "an object of targets, each with an object of fields";
    if (!targets.is_object() || targets.empty()) {
        step.fail("set", mismatch(expected, targets));
    }
    for (const auto &target : targets.items()) {
        if (!target.value().is_object() || target.value().empty()) {
            step.fail("set." + target.key(), mismatch("an object of fields", target.value()));
        }
        for (const auto &field : target.value().items()) {
            read.commands.push_back(
                {{{"command", "set"}, {"target", target.key()}, {"field", field.key()}, {"value", field.value()}}, {}});
        }
    }
}

void addSwitch(const ObjectReader &step, const std::string &name, const json &service, ScenarioStep &read) {
    if (!service.is_string()) {
        step.fail(name, mismatch("the name of a service", service));
    }
    read.commands.push_back({{{"command", name}, {"service", service}}, {}});
}

void addFault(const ObjectReader &step, const std::string &name, const json &keys, ScenarioStep &read) {
    if (!keys.is_object()) {
        step.fail(name, mismatch("an object with the keys of the command", keys));
    }
    if (keys.contains("command")) {
        step.fail(joinPath(name, "command"), "unknown key; the command is " + name);
    }
    json command = keys;
    command["command"] = name;
    read.commands.push_back({std::move(command), {}});
}

double readTime(const ObjectReader &step, double earliest) {
    const std::string expected = "a number of seconds from 0 to " + std::to_string(kLatestStep);
    const json &at = step.required("at", expected);
    if (!at.is_number() || at.get<double>() < 0.0 || at.get<double>() > static_cast<double>(kLatestStep)) {
        step.fail("at", mismatch(expected, at));
    }
    if (at.get<double>() < earliest) {
        step.fail("at", mismatch("at least " + shown(earliest) + " (the time of the step before)", at));
    }
    return at.get<double>();
}

ScenarioStep readStep(const json &values, const std::string &path, double earliest) {
    std::vector<std::string> keys = stepCommands();
    keys.insert(keys.begin(), "at");
    const ObjectReader step(values, path, keys);
    ScenarioStep read;
    read.at = readTime(step, earliest);
    if (values.size() != 2) {
        step.fail("", "expected one command besides \"at\", one of: " + listed(stepCommands()));
    }
    const std::string name = values.begin().key() == "at" ? std::next(values.begin()).key() : values.begin().key();
    const json &value = values.at(name);
    if (name == "set") {
        addSet(step, value, read);
    } else if (std::find(std::begin(kFaultCommands), std::end(kFaultCommands), name) != std::end(kFaultCommands)) {
        addFault(step, name, value, read);
    } else {
        addSwitch(step, name, value, read);
    }
    return read;
}

Scenario readScenario(const json &values, const std::string &fileName) {
    const ObjectReader file(values, "", {"name", "description", "skipMissingServices", "steps"});
    Scenario scenario;
    scenario.file = fileName;
    scenario.name = file.requiredText("name");
    scenario.description = file.optionalText("description");
    const json skip = values.value("skipMissingServices", json(false));
    if (!skip.is_boolean()) {
        file.fail("skipMissingServices", mismatch("true or false", skip));
    }
    scenario.skipMissingServices = skip.get<bool>();
    const std::string expected = "a list of steps";
    const json &steps = file.required("steps", expected);
    if (!steps.is_array()) {
        file.fail("steps", mismatch(expected, steps));
    }
    for (std::size_t i = 0; i < steps.size(); ++i) {
        const double earliest = i == 0 ? 0.0 : scenario.steps.back().at;
        scenario.steps.push_back(readStep(steps[i], stepPath(i), earliest));
    }
    return scenario;
}

} // namespace

std::string stepPath(std::size_t index) {
    return "steps[" + std::to_string(index) + "]";
}

Scenario parseScenario(const std::string &text, const std::string &fileName) {
    try {
        return readScenario(parseJsonText(text), fileName);
    } catch (const JsonTextError &error) {
        throw FileError(fileName + ": " + error.what());
    }
}

Scenario readScenarioFile(const std::string &path) {
    return parseScenario(readTextFile(path), path);
}

} // namespace camera
