// SPDX-License-Identifier: Apache-2.0
#include "action_plan.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <map>

#include <fmt/format.h>

#include "axes.h"
#include "format_value.h"
#include "object_oids.h"
#include "octets_text.h"
#include "shell_word.h"
#include "values.h"

namespace panel {

namespace {

using camera::integerIn;
using camera::mismatch;
using nlohmann::json;

constexpr int kDefaultSpeed = 64;

/** Members of an action, with checks. */
class Body {
public:
    explicit Body(const json &body) : body_(body) {}

    /** Rejects members that the action does not have. */
    void allow(const std::vector<std::string> &keys) const {
        for (const auto &item : body_.items()) {
            if (item.key() != "action" && std::find(keys.begin(), keys.end(), item.key()) == keys.end()) {
                throw ActionError("unknown member " + camera::shown(item.key()) +
                                  "; expected one of: " + camera::listed(keys));
            }
        }
    }

    const json &member(const std::string &key) const {
        static const json missing;
        const auto found = body_.find(key);
        return found == body_.end() ? missing : *found;
    }

    bool has(const std::string &key) const {
        return body_.contains(key);
    }

    int integer(const std::string &key, int lowest, int highest) const {
        const auto number = integerIn(member(key), lowest, highest);
        if (!number) {
            throw ActionError(key + ": " + mismatch(camera::integerExpected(lowest, highest), member(key)));
        }
        return static_cast<int>(*number);
    }

    int speed(int otherwise) const {
        return has("speed") ? integer("speed", 1, ptz::kFastest) : otherwise;
    }

    bool flag(const std::string &key) const {
        if (!member(key).is_boolean()) {
            throw ActionError(key + ": " + mismatch("true or false", member(key)));
        }
        return member(key).get<bool>();
    }

    std::string text(const std::string &key) const {
        const auto text = camera::textIn(member(key), camera::kLongestText);
        if (!text) {
            throw ActionError(key + ": " + mismatch("a text", member(key)));
        }
        return *text;
    }

    double fraction(const std::string &key) const {
        const json &value = member(key);
        if (!value.is_number() || value.get<double>() < 0.0 || value.get<double>() > 1.0) {
            throw ActionError(key + ": " + mismatch("a number from 0 to 1", value));
        }
        return value.get<double>();
    }

private:
    const json &body_;
};

std::string plainNumber(double value) {
    std::string text = fmt::format("{:.2f}", value);
    text.erase(text.find_last_not_of('0') + 1);
    return text.back() == '.' ? text.substr(0, text.size() - 1) : text;
}

void addCommand(ActionPlan &plan, const ptz::Axis &axis, const ptz::PositionCommand &command) {
    plan.varbinds.push_back(snmp::octetString(axis.positionOid, ptz::encode(command, ptz::ByteOrder::LowFirst)));
}

/** Calls a function with each axis and its value, in the order of axes(). */
template <typename Function>
void forEachAxis(const Body &body, Function function) {
    const json &values = body.member("axes");
    if (!values.is_object() || values.empty()) {
        throw ActionError("axes: " + mismatch("an object with an axis and its value", values));
    }
    for (const auto &item : values.items()) {
        ptz::axisNamed(item.key());
    }
    for (const ptz::Axis &axis : ptz::axes()) {
        const auto found = values.find(axis.name);
        if (found == values.end()) {
            continue;
        }
        if (!found->is_number() || !std::isfinite(found->get<double>())) {
            throw ActionError(fmt::format("axes.{}: {}", axis.name, mismatch("a number", *found)));
        }
        function(axis, found->get<double>());
    }
}

void moveTo(ActionPlan &plan, const ptz::Axis &axis, double target, int speed) {
    addCommand(plan, axis, ptz::commandTo(axis, target, speed));
    plan.ptzctl.push_back(fmt::format("{} to {} --speed {}", axis.name, plainNumber(target), speed));
}

void planTo(const Body &body, ActionPlan &plan, const std::optional<ViewAngles> & /*angles*/) {
    body.allow({"axes", "speed"});
    const int speed = body.speed(kDefaultSpeed);
    forEachAxis(body, [&](const ptz::Axis &axis, double target) { moveTo(plan, axis, target, speed); });
}

void planBy(const Body &body, ActionPlan &plan, const std::optional<ViewAngles> & /*angles*/) {
    body.allow({"axes", "speed"});
    const int speed = body.speed(kDefaultSpeed);
    forEachAxis(body, [&](const ptz::Axis &axis, double step) {
        addCommand(plan, axis, ptz::commandBy(axis, step, speed));
        plan.ptzctl.push_back(fmt::format("{} by {} --speed {}", axis.name, plainNumber(step), speed));
    });
}

void planTowards(const Body &body, ActionPlan &plan, const std::optional<ViewAngles> & /*angles*/) {
    body.allow({"axes"});
    plan.key = "towards";
    forEachAxis(body, [&](const ptz::Axis &axis, double value) {
        plan.key.append(" ").append(axis.name);
        const auto speed = static_cast<int>(std::lround(std::clamp(value, -128.0, 128.0)));
        if (std::abs(speed) > ptz::kFastest) {
            throw ActionError(fmt::format("axes.{}: expected a speed from -127 to 127", axis.name));
        }
        if (speed == 0) {
            addCommand(plan, axis, {});
            plan.ptzctl.push_back(fmt::format("{} stop", axis.name));
            return;
        }
        const char *const direction = speed > 0 ? axis.directions.forward : axis.directions.backward;
        addCommand(plan, axis, ptz::commandTowards(axis, direction, std::abs(speed), ptz::ByteOrder::LowFirst));
        plan.ptzctl.push_back(fmt::format("{} {} --speed {}", axis.name, direction, std::abs(speed)));
    });
}

void planCentre(const Body &body, ActionPlan &plan, const std::optional<ViewAngles> &angles) {
    body.allow({"x", "y", "speed"});
    const double x = body.fraction("x");
    const double y = body.fraction("y");
    if (!angles) {
        throw ActionError("the camera does not turn, or its position is not known");
    }
    const Direction direction = directionAt(*angles, x, y);
    const int speed = body.speed(ptz::kFastest);
    moveTo(plan, ptz::axisNamed("pan"), direction.pan, speed);
    moveTo(plan, ptz::axisNamed("tilt"), direction.tilt, speed);
}

void planStop(const Body &body, ActionPlan &plan, const std::optional<ViewAngles> & /*angles*/) {
    body.allow({"axes"});
    plan.isStop = true;
    const json axes = body.has("axes") ? body.member("axes") : json({"pan", "tilt", "zoom"});
    if (!axes.is_array() || axes.empty() || axes.size() > ptz::kAxisCount) {
        throw ActionError("axes: " + mismatch("a list of axes", axes));
    }
    for (const json &name : axes) {
        if (!name.is_string()) {
            throw ActionError("axes: " + mismatch("the name of an axis", name));
        }
        const ptz::Axis &axis = ptz::axisNamed(name.get<std::string>());
        addCommand(plan, axis, {});
        plan.ptzctl.push_back(std::string("stop ") + axis.name);
    }
    if (!body.has("axes")) {
        plan.ptzctl = {"stop"};
    }
}

void planPreset(const Body &body, ActionPlan &plan, const std::optional<ViewAngles> & /*angles*/) {
    body.allow({"do", "number"});
    constexpr int kLastPreset = 255;
    const std::string what = body.text("do");
    if (what != "go" && what != "store") {
        throw ActionError("do: expected \"go\" or \"store\"");
    }
    const int number = body.integer("number", 1, kLastPreset);
    plan.varbinds.push_back(snmp::integer(what == "go" ? oids::presetGotoPosition : oids::presetStorePosition, number));
    plan.ptzctl.push_back(fmt::format("preset {} {}", what, number));
}

/** Makes a value of two octets: what to switch, and how. */
snmp::Varbind switched(const char *oid, unsigned int which, bool on) {
    return snmp::octetString(oid, {static_cast<char>(which), static_cast<char>(on ? ptz::kOn : 0U)});
}

void planAuto(const Body &body, ActionPlan &plan, const std::optional<ViewAngles> & /*angles*/) {
    body.allow({"feature", "on"});
    const std::string feature = body.text("feature");
    if (feature != "focus" && feature != "iris") {
        throw ActionError("feature: expected \"focus\" or \"iris\"");
    }
    const bool on = body.flag("on");
    plan.varbinds.push_back(switched(oids::systemLensFeatureControl, ptz::axisNamed(feature).automatic, on));
    plan.ptzctl.push_back(fmt::format("auto {} {}", feature, on ? "on" : "off"));
}

void planRelay(const Body &body, ActionPlan &plan, const std::optional<ViewAngles> & /*angles*/) {
    body.allow({"number", "on"});
    constexpr int kLastRelay = 127;
    const int number = body.integer("number", 1, kLastRelay);
    const bool on = body.flag("on");
    plan.varbinds.push_back(switched(oids::outputControl, static_cast<unsigned int>(number), on));
    plan.ptzctl.push_back(fmt::format("relay {} {}", number, on ? "on" : "off"));
}

void planSet(const Body &body, ActionPlan &plan, const std::optional<ViewAngles> & /*angles*/) {
    body.allow({"object", "value"});
    const ptz::Assignment assignment =
        ptz::parseAssignment(ptz::instanceNamed(body.text("object")), body.text("value"));
    plan.varbinds.push_back(assignment.value);
    const bool isNumber = assignment.value.type == snmp::Type::Integer;
    std::string value = isNumber ? std::to_string(assignment.value.number) : snmp::hexText(assignment.value.octets);
    value.erase(std::remove(value.begin(), value.end(), ' '), value.end());
    plan.ptzctl.push_back(fmt::format("set {} {}", assignment.instance.name, value));
}

void planGet(const Body &body, ActionPlan &plan, const std::optional<ViewAngles> & /*angles*/) {
    body.allow({"object"});
    const ptz::Instance instance = ptz::instanceNamed(body.text("object"));
    plan.operation = snmp::Operation::Get;
    plan.varbinds.push_back(snmp::nameOnly(instance.oid));
    plan.ptzctl.push_back("get " + instance.name);
}

void planReboot(const Body &body, ActionPlan &plan, const std::optional<ViewAngles> & /*angles*/) {
    body.allow({});
    plan.varbinds.push_back(snmp::integer(oids::rebootDevice, 1));
    plan.ptzctl.emplace_back("reboot --yes");
}

using Planner = void (*)(const Body &body, ActionPlan &plan, const std::optional<ViewAngles> &angles);

const std::map<std::string, Planner> &planners() {
    static const std::map<std::string, Planner> all = {
        {"to", planTo},     {"by", planBy},     {"towards", planTowards}, {"centre", planCentre},
        {"stop", planStop}, {"auto", planAuto}, {"preset", planPreset},   {"relay", planRelay},
        {"set", planSet},   {"get", planGet},   {"reboot", planReboot}};
    return all;
}

} // namespace

ActionPlan planAction(const json &body, const std::optional<ViewAngles> &angles) {
    if (!body.is_object()) {
        throw ActionError(mismatch("a JSON object", body));
    }
    ActionPlan plan;
    plan.action = Body(body).text("action");
    const auto found = planners().find(plan.action);
    if (found == planners().end()) {
        std::vector<std::string> names;
        for (const auto &[name, planner] : planners()) {
            names.push_back(name);
        }
        throw ActionError("unknown action " + camera::shown(plan.action) +
                          "; expected one of: " + camera::listed(names));
    }
    try {
        found->second(Body(body), plan, angles);
    } catch (const std::invalid_argument &error) {
        throw ActionError(error.what());
    }
    return plan;
}

std::string snmpCommandLine(const ActionPlan &plan, const std::string &agent, const std::string &community) {
    const bool isGet = plan.operation == snmp::Operation::Get;
    std::string line =
        fmt::format("{} -v2c -c {} -m '' {}", isGet ? "snmpget" : "snmpset", shellWord(community), agent);
    for (const snmp::Varbind &varbind : plan.varbinds) {
        line += " " + varbind.oid;
        if (isGet) {
            continue;
        }
        if (varbind.type == snmp::Type::Integer) {
            line += fmt::format(" i {}", varbind.number);
            continue;
        }
        line += " x ";
        for (const char octet : varbind.octets) {
            line += fmt::format("{:02X}", static_cast<unsigned char>(octet));
        }
    }
    return line;
}

} // namespace panel
