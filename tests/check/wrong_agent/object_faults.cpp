// SPDX-License-Identifier: Apache-2.0
#include "fault_families.h"
#include "fault_parts.h"
#include "netsnmp_types.h"
#include "object_oids.h"
#include "oid_text.h"

namespace wrong {

using snmp::Type;
using snmp::Varbind;

namespace {

const std::string kLongText(300, 'x');
const char *const kEscape = "\x1B[2J";

} // namespace

std::vector<Fault> objectFaults() {
    std::vector<Fault> list;
    for (const auto &[set, name] :
         std::vector<std::pair<const char *, const char *>>{{"module", "moduleModel"},
                                                            {"preset", "presetStorePosition"},
                                                            {"pan", "rangeMinimumPanStepAngle"},
                                                            {"tilt", "rangeMinimumTiltStepAngle"},
                                                            {"zoom", "rangeZoomLimit"},
                                                            {"focus", "rangeFocusLimit"},
                                                            {"iris", "rangeIrisLimit"},
                                                            {"lens", "systemLensEquipped"},
                                                            {"output", "outputControl"},
                                                            {"identity", "hwVersion"}}) {
        list.push_back({std::string(set) + "-presence", std::string("lacks ") + name, absent(name)});
    }
    for (const auto &[set, name] : std::vector<std::pair<const char *, const char *>>{{"alarm", "alarmStatus"},
                                                                                      {"input", "inputStatus"},
                                                                                      {"temperature", "temperature"},
                                                                                      {"power", "power"},
                                                                                      {"voltage", "voltage"},
                                                                                      {"restart", "rebootDevice"}}) {
        list.push_back({std::string(set) + "-presence", std::string("cannot read ") + name, unreadable(name)});
    }
    struct Group {
        const char *group;
        const char *name;
        Varbind wrongType;
    };
    for (const auto &[group, name, wrongType] : std::vector<Group>{{"module", "moduleModel", number(1)},
                                                                   {"limit", "rangeZoomLimit", gauge(1)},
                                                                   {"timeout", "timeoutIris", gauge(1)},
                                                                   {"preset", "presetStorePosition", octets("12")},
                                                                   {"position", "positionIrisLens", number(0)},
                                                                   {"lens", "systemLensFeatureControl", number(0)},
                                                                   {"io", "alarmStatus", number(0)},
                                                                   {"identity", "hwVersion", number(0)},
                                                                   {"health", "power", gauge(0)}}) {
        list.push_back(
            {std::string(group) + "-instance", std::string("has another instance of ") + name, elsewhere(name)});
        list.push_back(
            {std::string(group) + "-type", std::string("answers another type for ") + name, answers(name, wrongType)});
    }
    const std::vector<std::pair<const char *, std::pair<const char *, Varbind>>> values = {
        {"module-length", {"moduleModel", octets(kLongText)}},
        {"position-length", {"positionIrisLens", octets(std::string(6, '\0'))}},
        {"lens-length", {"systemLensFeatureControl", octets(std::string(3, '\0'))}},
        {"io-length", {"alarmStatus", octets(std::string(2, '\0'))}},
        {"identity-length", {"hwVersion", octets(kLongText)}},
        {"module-range", {"moduleType", number(9)}},
        {"limit-range", {"rangeZoomLimit", number(70000)}},
        {"preset-range", {"presetStorePosition", number(300)}},
        {"health-range", {"power", number(300)}},
        {"module-text", {"moduleModel", octets(kEscape)}},
        {"identity-text", {"hwVersion", octets(kEscape)}},
        {"position-command", {"positionIrisLens", octets({9, 0, 1, 1})}},
    };
    for (const auto &[rule, value] : values) {
        list.push_back(
            {rule, std::string("answers another value for ") + value.first, answers(value.first, value.second)});
    }
    return list;
}

std::vector<Fault> consistencyFaults() {
    return {
        {"pan-limits", "has its left limit to the right of the right one",
         answersBoth("rangePanLeftLimit", number(20000), "rangePanRightLimit", number(10000))},
        {"tilt-limits", "has its upper limit below the lower one",
         answersBoth("rangeTiltUpLimit", number(27000), "rangeTiltDownLimit", number(9000))},
        {"pan-home", "has its home position beyond a limit",
         answersBoth("rangePanRightLimit", number(10000), "rangePanHomePosition", number(20000))},
        {"pan-step", "has a step that is larger than the range",
         answersBoth("rangePanRightLimit", number(10000), "rangeMinimumPanStepAngle", number(20000))},
        {"tilt-step", "has a step that is larger than the range", answers("rangeMinimumTiltStepAngle", number(20000))},
        {"lens-equipped", "uses a feature that it does not have",
         answersBoth("systemLensEquipped", octets("\x40"), "systemLensFeatureStatus", octets("\x80"))},
        {"input-bits", "has a bit without the state of its row", answers("inputStatus", octets("\x01"))},
        {"output-bits", "has a bit without the state of its row", answers("outputStatus", octets("\x02"))},
        {"input-table", "has a cell of another type", answers("alarmStatesKind.2", number(1))},
        {"relay-table", "has a cell out of range", answers("relayStatesState.2", number(300))},
        {"module-rows", "states one module more than it has", answers("maxModules", number(2))},
        {"module-node", "names a node without objects",
         answers("moduleDeviceNode", {"", Type::Oid, 0, ".1.3.6.1.4.1.77777"})},
    };
}

} // namespace wrong
