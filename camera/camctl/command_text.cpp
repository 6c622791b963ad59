// SPDX-License-Identifier: Apache-2.0
#include "command_text.h"

#include <map>

namespace camera {

namespace {

using nlohmann::json;

std::string textOf(const json &command, const char *key) {
    const json value = command.value(key, json());
    return value.is_string() ? value.get<std::string>() : printable(value);
}

std::string timesText(const json &command) {
    const json times = command.value("times", json(1));
    if (times == "always") {
        return "always";
    }
    return times == 1 ? "once" : printable(times) + " times";
}

std::string callText(const json &command) {
    return textOf(command, "service") + " " + textOf(command, "operation");
}

std::string setText(const json &command) {
    return textOf(command, "target") + " " + textOf(command, "field") + " is " +
           printable(command.value("value", json()));
}

std::string switchText(const json &command) {
    return textOf(command, "service") + " is " + textOf(command, "command");
}

std::string failText(const json &command) {
    return callText(command) + " fails with status " + textOf(command, "status") + ", " + timesText(command);
}

std::string delayText(const json &command) {
    return callText(command) + " answers " + textOf(command, "milliseconds") + " ms late, " + timesText(command);
}

std::string clearText(const json &command) {
    std::string text = "no failures and delays";
    if (command.contains("service")) {
        text += " for " + textOf(command, "service");
    }
    return command.contains("operation") ? text + " " + textOf(command, "operation") : text;
}

} // namespace

std::string printable(const json &value, int indent) {
    return value.dump(indent, ' ', false, json::error_handler_t::replace);
}

std::string doneText(const json &command) {
    static const std::map<std::string, std::string (*)(const json &)> texts = {
        {"set", setText},   {"down", switchText}, {"up", switchText},
        {"fail", failText}, {"delay", delayText}, {"clear", clearText}};
    return texts.at(textOf(command, "command"))(command);
}

std::optional<std::string> refusalIn(const json &answer) {
    if (answer.value("ok", json()) == true) {
        return std::nullopt;
    }
    return answer.contains("error") ? textOf(answer, "error") : "the camera refused the command without a reason";
}

} // namespace camera
