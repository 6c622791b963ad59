// SPDX-License-Identifier: Apache-2.0
// Actions of the page as requests, and octets taken apart.
#include <gmock/gmock.h>

#include "action_plan.h"
#include "object_oids.h"
#include "octet_parts.h"
#include "page_events.h"
#include "shell_word.h"

namespace panel {
namespace {

using nlohmann::json;

struct ActionRow {
    const char *name;
    const char *body;
    const char *line;   ///< of snmpset or snmpget, without program, options and agent; with '#' for the NTCIP objects
    const char *ptzctl; ///< arguments, joined with "; "
};

class ActionTest : public testing::TestWithParam<ActionRow> {};

std::string shortened(const std::string &line) {
    std::string text = line.substr(line.find("agent") + 6);
    const std::string prefix = std::string(oids::kCctvSubtree) + ".";
    for (std::size_t place = text.find(prefix); place != std::string::npos; place = text.find(prefix)) {
        text.replace(place, prefix.size(), "#");
    }
    return text;
}

TEST_P(ActionTest, IsARequestAndACommandLine) {
    ViewAngles angles;
    angles.pan = 90;
    const ActionPlan plan = planAction(json::parse(GetParam().body), angles);
    EXPECT_EQ(shortened(snmpCommandLine(plan, "agent", "private")), GetParam().line);
    std::string lines;
    for (const std::string &line : plan.ptzctl) {
        lines += (lines.empty() ? "" : "; ") + line;
    }
    EXPECT_EQ(lines, GetParam().ptzctl);
}

INSTANTIATE_TEST_SUITE_P(
    Of, ActionTest,
    testing::Values(
        ActionRow{"To", R"({"action":"to","axes":{"pan":90}})", "#4.1.0 x 02402823", "pan to 90 --speed 64"},
        ActionRow{"ToSeveral", R"({"action":"to","axes":{"zoom":50,"tilt":-10.5},"speed":127})",
                  "#4.2.0 x 027F8688 #4.3.0 x 027F0080", "tilt to -10.5 --speed 127; zoom to 50 --speed 127"},
        ActionRow{"By", R"({"action":"by","axes":{"pan":-5}})", "#4.1.0 x 01C0F401", "pan by -5 --speed 64"},
        ActionRow{"Towards", R"({"action":"towards","axes":{"pan":40,"tilt":-20}})",
                  "#4.1.0 x 03280000 #4.2.0 x 03EC0000", "pan right --speed 40; tilt down --speed 20"},
        ActionRow{"TowardsAndStop", R"({"action":"towards","axes":{"zoom":0,"pan":-127}})",
                  "#4.1.0 x 03810000 #4.3.0 x 00000000", "pan left --speed 127; zoom stop"},
        ActionRow{"Centre", R"({"action":"centre","x":0.5,"y":0.5})", "#4.1.0 x 027F2823 #4.2.0 x 027F0000",
                  "pan to 90 --speed 127; tilt to 0 --speed 127"},
        ActionRow{"Stop", R"({"action":"stop"})", "#4.1.0 x 00000000 #4.2.0 x 00000000 #4.3.0 x 00000000", "stop"},
        ActionRow{"StopFocus", R"({"action":"stop","axes":["focus"]})", "#4.4.0 x 00000000", "stop focus"},
        ActionRow{"GoToPreset", R"({"action":"preset","do":"go","number":3})", "#3.1.0 i 3", "preset go 3"},
        ActionRow{"StorePreset", R"({"action":"preset","do":"store","number":255})", "#3.2.0 i 255",
                  "preset store 255"},
        ActionRow{"AutomaticFocus", R"({"action":"auto","feature":"focus","on":true})", "#5.4.0 x 4080",
                  "auto focus on"},
        ActionRow{"ManualIris", R"({"action":"auto","feature":"iris","on":false})", "#5.4.0 x 8000", "auto iris off"},
        ActionRow{"Relay", R"({"action":"relay","number":1,"on":true})", "#8.2.0 x 0180", "relay 1 on"},
        ActionRow{"SetNumber", R"({"action":"set","object":"timeoutPan","value":"5000"})", "#2.1.0 i 5000",
                  "set timeoutPan 5000"},
        ActionRow{"SetOctets", R"({"action":"set","object":"positionPan","value":"00 00 00 00"})", "#4.1.0 x 00000000",
                  "set positionPan 00000000"},
        ActionRow{"Get", R"({"action":"get","object":"positionPan"})", "#4.1.0", "get positionPan"},
        ActionRow{"Reboot", R"({"action":"reboot"})", ".1.3.6.1.4.1.99999.1.1.100.0.0 i 1", "reboot --yes"}),
    [](const auto &row) { return row.param.name; });

struct RefusalRow {
    const char *body;
    const char *reason;
};

TEST(ActionRefusalTest, HasAReason) {
    for (const RefusalRow &row : {
             RefusalRow{R"([])", "expected a JSON object"},
             {R"({})", "action: expected a text"},
             {R"({"action":"jump"})", "unknown action \"jump\""},
             {R"({"action":"to"})", "axes: expected an object"},
             {R"({"action":"to","axes":{}})", "axes: expected an object"},
             {R"({"action":"to","axes":{"roll":1}})", "there is no axis 'roll'"},
             {R"({"action":"to","axes":{"pan":"1"}})", "axes.pan: expected a number"},
             {R"({"action":"to","axes":{"tilt":91}})", "90"},
             {R"({"action":"to","axes":{"pan":1e300}})", "360"},
             {R"({"action":"to","axes":{"pan":1},"speed":0})", "speed: expected an integer from 1 to 127"},
             {R"({"action":"to","axes":{"pan":1},"sped":1})", "unknown member \"sped\""},
             {R"({"action":"by","axes":{"pan":0}})", ""},
             {R"({"action":"towards","axes":{"pan":128}})", "-127 to 127"},
             {R"({"action":"centre","x":2,"y":0})", "x: expected a number from 0 to 1"},
             {R"({"action":"stop","axes":[]})", "axes: expected a list"},
             {R"({"action":"stop","axes":[1]})", "axes: expected the name"},
             {R"({"action":"preset","do":"go","number":0})", "number: expected an integer from 1 to 255"},
             {R"({"action":"preset","do":"take","number":1})", "do: expected"},
             {R"({"action":"auto","feature":"zoom","on":true})", "feature: expected"},
             {R"({"action":"auto","feature":"iris","on":1})", "on: expected true or false"},
             {R"({"action":"set","object":"modelName","value":"00"})", "modelName is read-only"},
             {R"({"action":"set","object":"nothing","value":"1"})", "there is no object"},
             {R"({"action":"set","object":"timeoutPan","value":"x"})", ""},
         }) {
        try {
            planAction(json::parse(row.body), ViewAngles());
            ADD_FAILURE() << row.body;
        } catch (const ActionError &error) {
            EXPECT_THAT(error.what(), testing::HasSubstr(row.reason)) << row.body;
        }
    }
    EXPECT_THROW(planAction(json::parse(R"({"action":"centre","x":0,"y":0})"), std::nullopt), ActionError);
}

TEST(ActionTest, ALaterMoveReplacesOneOfTheSameAxesOnly) {
    const auto key = [](const char *body) { return planAction(json::parse(body), std::nullopt).key; };
    const std::string both = key(R"({"action":"towards","axes":{"tilt":1,"pan":2}})");
    EXPECT_EQ(key(R"({"action":"towards","axes":{"pan":3,"tilt":4}})"), both);
    EXPECT_NE(key(R"({"action":"towards","axes":{"pan":3}})"), both);
    EXPECT_EQ(key(R"({"action":"by","axes":{"pan":3}})"), "");
}

TEST(ViewAnglesTest, PointsOfThePictureAreDirections) {
    ViewAngles view;
    view.horizontal = 60;
    view.vertical = angleOfSide(60, 0.5);
    EXPECT_NEAR(directionAt(view, 1.0, 0.5).pan, 30.0, 1e-9);
    EXPECT_NEAR(directionAt(view, 0.0, 0.5).pan, 330.0, 1e-9);
    EXPECT_NEAR(directionAt(view, 0.5, 0.0).tilt, view.vertical / 2, 1e-9);
    EXPECT_NEAR(magnifiedAngle(60, 2), 2 * std::atan(std::tan(30 * std::acos(-1.0) / 180) / 2) * 180 / std::acos(-1.0),
                1e-9);
    view.tilt = -90; // straight down: the upper edge is ahead, the right edge to the right
    EXPECT_NEAR(directionAt(view, 1.0, 0.5).pan, 90.0, 1e-6);
    EXPECT_NEAR(directionAt(view, 0.5, 0.0).tilt, -90 + view.vertical / 2, 1e-6);
    view.lowestTilt = -80;
    EXPECT_EQ(directionAt(view, 0.5, 0.5).tilt, -80);
}

struct PartsRow {
    const char *object;
    std::string octets;
    const char *parts; ///< "octets field meaning" of each, joined with " | "
};

TEST(OctetPartsTest, HaveMeanings) {
    for (const PartsRow &row : {
             PartsRow{oids::positionPan,
                      {2, 64, 0x28, 0x23},
                      "02 mode absolute | 40 speed 64 of 127 | 28 23 position 0x2328 = 9000, low octet first: 90.00°"},
             {oids::positionPan,
              {3, static_cast<char>(0xC0), 0, 0},
              "03 mode continuous | C0 speed 64 of 127, left | 00 00 position not used in this mode"},
             {oids::positionPan,
              {0, 0, 0, 0},
              "00 mode stop | 00 speed 0: a stop has no speed | 00 00 position not used in this mode"},
             {oids::positionPan, {9, 0, 0, 0}, "09 00 00 00 command there is no mode 9"},
             {oids::positionPan, {1}, "01 command a command has 4 octets, not 1"},
             {oids::outputControl, {1, static_cast<char>(0x80)}, "01 relay number 1 | 80 switch bit 7: on"},
             {oids::systemLensFeatureControl,
              {static_cast<char>(0xC0), 0},
              "C0 features bit 6: focus, bit 7: iris | 00 switch manual"},
             {oids::inputStatus, {5}, "05 bits bit 0: number 1, bit 2: number 3"},
             {oids::presetGotoPosition, {7}, "07 preset 7"},
             {oids::modelName, "QN", ""},
             {oids::positionPan, "", ""},
         }) {
        std::string parts;
        for (const auto &part : partsOf(ptz::instanceAt(row.object), snmp::octetString(row.object, row.octets))) {
            parts += (parts.empty() ? "" : " | ") + part["octets"].get<std::string>() + " " +
                     part["field"].get<std::string>() + " " + part["meaning"].get<std::string>();
        }
        EXPECT_EQ(parts, row.parts);
    }
}

TEST(CommandLineTest, IsThatOfTheControlProgram) {
    const auto line = [](const char *command) { return controlArguments(json::parse(command)); };
    EXPECT_EQ(line(R"({"command":"set","target":"alarm/1","field":"state","value":1})"), "set alarm/1 state 1");
    EXPECT_EQ(line(R"({"command":"set","target":"a/1","field":"model","value":"O'B"})"), R"(set a/1 model '"O'\''B"')");
    EXPECT_EQ(line(R"({"command":"down","service":"alarm"})"), "down alarm");
    EXPECT_EQ(line(R"({"command":"fail","service":"relay","operation":"*","status":1,"times":3})"),
              "fail relay '*' 1 --times 3");
    EXPECT_EQ(line(R"({"command":"delay","service":"relay","operation":"*","milliseconds":5,"times":"always"})"),
              "delay relay '*' 5 --always");
    EXPECT_EQ(line(R"({"command":"clear"})"), "clear");
    EXPECT_EQ(shellWord(""), "''");
}

} // namespace
} // namespace panel
