// SPDX-License-Identifier: Apache-2.0
// Requests and reports of the commands, with a scripted camera.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "commands/move.h"
#include "commands/set.h"
#include "commands/show.h"
#include "object_oids.h"
#include "scripted_camera.h"

using namespace ptzctl;
using scripted::Camera;
using scripted::failure;
using scripted::kGenErr;
using scripted::kRefused;
using scripted::report;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsSupersetOf;
using testing::Not;

namespace {

constexpr snmp::Cause kUsage = snmp::Cause::Usage;

Action moving(const char *axis, double position, int speed) {
    const ptz::Axis &moved = ptz::axisNamed(axis);
    return
        [&moved, position, speed](Context &context) { move(context, moved, ptz::commandTo(moved, position, speed)); };
}

Action recalling(int number) {
    return [number](Context &context) { goToPreset(context, number); };
}

Action writing(const std::string &name, const std::string &value) {
    return [=](Context &context) { writeAndShow(context, {ptz::parseAssignment(ptz::instanceNamed(name), value)}); };
}

Action stopping(const std::string &which) {
    return [list = axesNamed(which)](Context &context) { stop(context, list); };
}

Action switching(int relay, bool on) {
    return [=](Context &context) { switchRelay(context, relay, on); };
}

Action automatic(unsigned int feature, bool on) {
    return [=](Context &context) { setAutomatic(context, feature, on); };
}

/** Makes the first relay and the automatic focus follow their commands. */
void followCommands(Camera &camera) {
    camera.spoil = [&camera](snmp::Operation operation, snmp::Response &response) {
        const std::string &oid = response.varbinds.front().oid;
        if (operation == snmp::Operation::Set && oid == oids::outputControl) {
            camera.put("outputStatus", "\x01");
        } else if (operation == snmp::Operation::Set && oid == oids::systemLensFeatureControl) {
            camera.put("systemLensFeatureStatus", "\x40");
        }
    };
}

/** Gives a camera values of all kinds. */
void furnish(Camera &camera) {
    camera.put("modelName", "QN-4000 Dome");
    camera.put("serialNumber", "QN\0334711");
    camera.put("fwVersion", "2.4.1-20260312");
    camera.put("hwVersion", "B3");
    camera.put("positionPan", std::string("\x02\x40\x78\x69", 4));
    camera.put("positionTilt", std::string("\x28\x23\x00\x00", 4));
    camera.put("systemLensFeatureStatus", "\xC0");
    camera.put("presetStorePosition", "\x07");
    camera.put("rangeMaximumPreset", 255);
    camera.put("temperature", 4294967295);
    camera.put("alarmStatesTable.3.2", 1);
    camera.remove("positionZoomLens");
    camera.failGet("voltage", kGenErr);
}

} // namespace

TEST(Commands, StatusIsAnOverview) {
    Camera camera;
    furnish(camera);
    EXPECT_EQ(report(camera, showStatus).text,
              "Camera       QN-4000 Dome, serial QN.4711, firmware 2.4.1-20260312, hardware B3\n"
              "Pan          to 270.00° at speed 64\n"
              "Tilt         no command yet; it was at 90.00°\n"
              "Focus        stop\n"
              "Iris         stop\n"
              "Automatic    focus and iris\n"
              "Presets      last recalled none, last stored preset 7, 255 in all\n"
              "Temperature  -1 °C\n"
              "Power        state 0\n"
              "Voltage      state genErr: the camera failed to do it; its log has the reason\n"
              "Inputs       1 off, 2 on\n"
              "Relays       1 off\n");
}

TEST(Commands, VerboseStatusHasTheRawValues) {
    Camera camera;
    furnish(camera);
    Settings settings;
    settings.verbose = true;
    const std::string text = report(camera, showStatus, settings).text;
    EXPECT_THAT(text, HasSubstr("to 270.00° at speed 64 [02 40 78 69]\n"));
    EXPECT_THAT(text, HasSubstr("-1 °C [4294967295]\n"));
    EXPECT_THAT(text, HasSubstr("Camera       QN-4000 Dome, serial QN.4711 [51 4E 1B 34 37 31 31],"));
}

TEST(Commands, StatusInJsonHasTheNamesOfTheObjects) {
    Camera camera;
    furnish(camera);
    const nlohmann::ordered_json data = report(camera, showStatus).data;
    EXPECT_EQ(data.at("positionPan").at("degrees"), 270.0);
    EXPECT_EQ(data.at("modelName"), "QN-4000 Dome");
    EXPECT_EQ(data.at("alarmStatesTable.3.2"), 1);
    EXPECT_TRUE(data.at("voltage").contains("problem"));
    EXPECT_FALSE(data.contains("positionZoomLens"));
}

TEST(Commands, InputsFallBackToTheBits) {
    Camera camera;
    for (const char *column : {"alarmStatesTable.1", "alarmStatesTable.2", "alarmStatesTable.3"}) {
        camera.remove(column);
    }
    camera.put("inputStatus", "\x05");
    EXPECT_EQ(report(camera, showInputs).text, "Inputs  1 on, 2 off, 3 on, 4 off\n");
    camera.remove("inputStatus");
    EXPECT_EQ(failure(camera, showInputs, kRefused), "the camera has no objects for alarm inputs");
}

TEST(Commands, LimitsAreAngles) {
    Camera camera;
    camera.put("rangePanRightLimit", 35999);
    camera.put("rangePanHomePosition", 65535);
    camera.put("rangeTrueNorthOffset", 65535);
    camera.put("rangeTiltUpLimit", -30536);
    camera.put("rangeTiltDownLimit", 27000);
    camera.put("rangeMinimumPanStepAngle", 1);
    const std::string text = report(camera, showLimits).text;
    EXPECT_THAT(text, HasSubstr("left 0.00°, right 359.99°, home none, steps of 0.01°\n"));
    EXPECT_THAT(text, HasSubstr("up -10.00°, down -90.00°"));
    EXPECT_THAT(text, HasSubstr("North    offset unknown\n"));
}

TEST(Commands, GetShowsReadableObjectsAndFails) {
    Camera camera;
    camera.remove("power");
    Report result;
    const Settings settings;
    Context context{camera, settings, result};
    EXPECT_THROW(showObjects(context, {ptz::instanceNamed("timeoutPan"), ptz::instanceNamed("power")}),
                 std::runtime_error);
    EXPECT_EQ(result.text, "timeoutPan  none\npower       the camera does not have it\n");
}

TEST(Commands, AWriteShowsBeforeSentAndAfter) {
    Camera camera;
    const Report written = report(camera, moving("pan", 90, 64));
    EXPECT_EQ(written.text, "             before  sent                   after\n"
                            "positionPan  stop    to 90.00° at speed 64  accepted\n");
    const nlohmann::ordered_json &data = written.data.at("written").at("positionPan");
    EXPECT_EQ(data.at("before").at("mode"), "stop");
    EXPECT_EQ(data.at("sent").at("octets"), "02 40 28 23");
    EXPECT_EQ(data.at("after").at("octets"), "02 40 28 23");
    EXPECT_EQ(data.at("verified"), false) << "the camera only repeats the command";
    EXPECT_THAT(camera.log, ElementsAre("1x get positionPan", "set positionPan=02 40 28 23", "get positionPan"));
}

TEST(Commands, AWriteOfASettingIsVerified) {
    Camera camera;
    const Report written = report(camera, writing("rangeTrueNorthOffset", "65535"));
    EXPECT_THAT(written.text, HasSubstr("rangeTrueNorthOffset  0.00°   unknown  unknown\n"));
    EXPECT_EQ(written.data.at("written").at("rangeTrueNorthOffset").at("verified"), true);
}

TEST(Commands, ACommandCanGoOutWithoutAReadBefore) {
    Camera camera;
    Settings settings;
    settings.readsBefore = false;
    const Report written = report(camera, moving("pan", 90, 64), settings);
    EXPECT_EQ(written.text, "             sent                   after\n"
                            "positionPan  to 90.00° at speed 64  accepted\n");
    EXPECT_FALSE(written.data.at("written").at("positionPan").contains("before"));
    report(camera, recalling(200), settings);
    failure(camera, switching(1, true), kRefused, settings);
    EXPECT_THAT(camera.log, ElementsAre("set positionPan=02 40 28 23", "get positionPan", "set presetGotoPosition=200",
                                        "get presetGotoPosition", "set outputControl=01 80", "get outputControl",
                                        "get outputStatus"));
}

TEST(Commands, ACommandGoesOutWithoutAnAnswerToAnyRead) {
    const std::string silence = "the camera accepted the command; then no answer";
    for (const auto &[action, sent] :
         {std::pair{moving("pan", 90, 64), "set positionPan=02 40 28 23"},
          std::pair{moving("focus", 0, 64), "set positionFocusLens=02 40 00 00"},
          std::pair{recalling(200), "set presetGotoPosition=200"},
          std::pair{switching(7, true), "set outputControl=07 80"},
          std::pair{automatic(ptz::kAutomaticFocus, true), "set systemLensFeatureControl=40 80"},
          std::pair{stopping("all"), "4x set positionPan=00 00 00 00 "
                                     "positionTilt=00 00 00 00 positionZoomLens=00 00 00 00"},
          std::pair{Action([](Context &context) { setTimeout(context, axesNamed("pan"), 5); }), "set timeoutPan=5"}}) {
        Camera camera;
        camera.answersReads = false;
        EXPECT_EQ(failure(camera, action, snmp::Cause::NoAnswer), silence) << sent;
        EXPECT_THAT(camera.log, Contains(sent));
    }
}

TEST(Commands, ACommandThatReadsBackDifferentlyFails) {
    Camera camera;
    camera.spoil = [&camera](snmp::Operation operation, snmp::Response &) {
        if (operation == snmp::Operation::Set) {
            camera.put("positionPan", std::string("\x02\x40\x28\x24", 4));
            camera.put("presetStorePosition", "\x04");
        }
    };
    EXPECT_EQ(failure(camera, moving("pan", 90, 64), kRefused),
              "the camera accepted the command but did not carry it out: positionPan is to 92.56° at speed 64");
    EXPECT_EQ(failure(
                  camera, [](Context &context) { storePreset(context, 3); }, kRefused),
              "the camera accepted the command but did not carry it out: presetStorePosition is preset 4");
    report(camera, writing("positionPan", "02 40 28 24 00")); // the camera ignores the fifth octet
}

TEST(Commands, AWriteFollowsTheByteOrder) {
    Camera camera;
    Settings settings;
    settings.order = ptz::ByteOrder::HighFirst;
    report(camera, moving("pan", 180, 64), settings);
    EXPECT_THAT(camera.log, Contains("set positionPan=02 40 46 50"));
}

TEST(Commands, AMoveOfAnAutomaticDriveWarns) {
    Camera camera;
    const Action opening = moving("iris", 1, 1);
    EXPECT_THAT(report(camera, opening).text, Not(HasSubstr("automatic")));
    camera.put("systemLensFeatureStatus", "\x80");
    EXPECT_THAT(report(camera, opening).text, HasSubstr("ptzctl auto iris off"));
}

TEST(Commands, StopSendsThreeAxesInOneRequest) {
    Camera camera;
    report(camera, stopping("all"));
    EXPECT_THAT(camera.log,
                ElementsAre("4x set positionPan=00 00 00 00 positionTilt=00 00 00 00 positionZoomLens=00 00 00 00",
                            "get positionPan positionTilt positionZoomLens"));
    camera.log.clear();
    report(camera, stopping("iris"));
    EXPECT_THAT(camera.log, ElementsAre("4x set positionIrisLens=00 00 00 00", "get positionIrisLens"));
    camera.log.clear();
    report(camera, [](Context &context) { move(context, ptz::axisNamed("pan"), {}); });
    EXPECT_THAT(camera.log, ElementsAre("4x set positionPan=00 00 00 00", "get positionPan"));
}

TEST(Commands, StopStopsWhatItCan) {
    for (const long index : {0L, 2L}) {
        Camera camera;
        camera.failSet("positionTilt", kGenErr);
        camera.spoil = [index](snmp::Operation, snmp::Response &response) {
            response.errorIndex = response.error != 0 ? index : 0;
        };
        EXPECT_EQ(failure(camera, stopping("all"), kRefused), "the camera refused positionTilt = 00 00 00 00: genErr");
        EXPECT_THAT(camera.log,
                    IsSupersetOf({"4x set positionPan=00 00 00 00", "4x set positionZoomLens=00 00 00 00"}));
    }
}

TEST(Commands, StopOmitsMissingAxes) {
    Camera camera;
    camera.remove("positionZoomLens");
    EXPECT_THAT(report(camera, stopping("all")).text, HasSubstr("The camera does not have positionZoomLens.\n"));
    EXPECT_THAT(camera.log, IsSupersetOf({"4x set positionPan=00 00 00 00", "4x set positionTilt=00 00 00 00"}));
    camera.failGet("positionPan", kGenErr);
    report(camera, stopping("pan"));
    EXPECT_EQ(camera.log.at(camera.log.size() - 2), "4x set positionPan=00 00 00 00") << "the axis did not stop";
    EXPECT_EQ(failure(camera, stopping("zoom"), kRefused), "the camera has none of these axes");
}

TEST(Commands, AnAutomaticFeatureIsSwitchedAndVerified) {
    Camera camera;
    followCommands(camera);
    EXPECT_THAT(report(camera, automatic(ptz::kAutomaticFocus, true)).text, HasSubstr("Automatic now: focus\n"));
    EXPECT_THAT(camera.log, Contains("set systemLensFeatureControl=40 80"));
    EXPECT_EQ(failure(camera, automatic(ptz::kAutomaticIris, true), kRefused),
              "the camera accepted the command but did not carry it out");
    EXPECT_THAT(camera.log, Contains("set systemLensFeatureControl=80 80"));
    report(camera, automatic(ptz::kAutomaticIris, false));
    EXPECT_THAT(camera.log, Contains("set systemLensFeatureControl=80 00"));
}

TEST(Commands, ARelayIsSwitchedAndVerified) {
    Camera camera;
    followCommands(camera);
    camera.put("relayStatesTable.2.2", 1);
    EXPECT_THAT(report(camera, switching(1, true)).text, HasSubstr("Relays now: 1 on, 2 off\n"));
    EXPECT_THAT(camera.log, Contains("set outputControl=01 80"));
    EXPECT_EQ(failure(camera, switching(2, true), kRefused),
              "the camera accepted the command but did not switch the relay");
    EXPECT_EQ(failure(camera, switching(3, true), kUsage), "the camera has no relay 3");
}

TEST(Commands, APresetIsWithinTheNumberOfTheCamera) {
    Camera camera;
    camera.put("rangeMaximumPreset", 16);
    EXPECT_THAT(report(camera, [](Context &context) { storePreset(context, 16); }).text, HasSubstr("preset 16"));
    EXPECT_THAT(camera.log, Contains("set presetStorePosition=16"));
    EXPECT_EQ(failure(camera, recalling(17), kUsage), "the camera has presets 1 to 16");
    EXPECT_THAT(camera.log, Not(Contains(HasSubstr("set presetGoto"))));
    camera.put("rangeMaximumPreset", 0);
    report(camera, recalling(18));
    EXPECT_THAT(camera.log, Contains("set presetGotoPosition=18"));
    camera.remove("rangeMaximumPreset");
    report(camera, recalling(17));
    EXPECT_THAT(camera.log, Contains("set presetGotoPosition=17"));
}

TEST(Commands, TimeoutsAndReboot) {
    Camera camera;
    report(camera, [](Context &context) { setTimeout(context, axesNamed("all"), 5000); });
    EXPECT_THAT(camera.log, Contains("set timeoutPan=5000 timeoutTilt=5000 timeoutZoom=5000"));
    EXPECT_THAT(report(camera, showTimeouts).text, HasSubstr("Pan    5000 ms\n"));
}

TEST(Commands, TheResponseTellsWhetherTheCameraRestarts) {
    Camera camera;
    EXPECT_EQ(report(camera, reboot).text, "              before  sent  after\n"
                                           "rebootDevice  0       1     1\n");
    EXPECT_EQ(camera.log.back(), "set rebootDevice=1") << "a camera that restarts does not answer";
    camera.spoil = [](snmp::Operation operation, snmp::Response &response) {
        if (operation == snmp::Operation::Set) {
            response.varbinds.front().number = 0;
        }
    };
    EXPECT_EQ(failure(camera, reboot, kRefused),
              "the camera accepted the command but did not carry it out: rebootDevice is 0");
}
