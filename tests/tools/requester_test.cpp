// SPDX-License-Identifier: Apache-2.0
// Reading and writing a camera that answers well, badly, or something else.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "requester.h"
#include "scripted_camera.h"

using namespace ptzctl;
using scripted::Camera;
using scripted::id;
using scripted::kGenErr;
using scripted::kRefused;
using testing::ElementsAre;
using testing::HasSubstr;

namespace {

constexpr int kBadAnswer = 5;
constexpr long kTooBig = 1;
constexpr long kNotWritable = 17;

const Action kReadTwo = [](Context &context) { readAll(context.camera, {id("power"), id("voltage")}); };
const Action kReadRows = [](Context &context) { readColumn(context.camera, "1.3.6.1.4.1.99999.1.3.2.1.3"); };
const Action kWrite = [](Context &context) { writeAll(context.camera, {integer(id("timeoutPan"), 5)}); };

} // namespace

TEST(Requester, ReadsManyObjectsInFewRequests) {
    Camera camera;
    const std::vector<Reading> readings = readAll(camera, std::vector<std::string>(33, id("power")));
    EXPECT_EQ(readings.size(), 33U);
    EXPECT_EQ(camera.log.size(), 3U);
}

TEST(Requester, OneObjectThatCannotBeReadKeepsNoOtherFromIt) {
    Camera camera;
    camera.failGet("inputStatus", kGenErr);
    camera.remove("power");
    camera.put("voltage", 3);
    const std::vector<Reading> readings = readAll(camera, {id("inputStatus"), id("power"), id("voltage")});
    EXPECT_THAT(readings[0].problem, HasSubstr("genErr"));
    EXPECT_FALSE(readings[0].missing);
    EXPECT_TRUE(readings[1].missing);
    EXPECT_EQ(readings[2].problem, "");
    EXPECT_EQ(readings[2].value.number, 3);
    EXPECT_THAT(camera.log, ElementsAre("get inputStatus power voltage", "get power voltage"));
}

TEST(Requester, AsksForLessWhenAnAnswerIsTooBig) {
    Camera camera;
    camera.failGet("voltage", kTooBig);
    const std::vector<Reading> readings = readAll(camera, {id("power"), id("voltage"), id("temperature")});
    EXPECT_TRUE(readings[0].ok() && readings[1].ok() && readings[2].ok());
    EXPECT_THAT(camera.log, ElementsAre("get power voltage temperature", "get power", "get voltage temperature",
                                        "get voltage", "get temperature"));
}

TEST(Requester, ChecksTypesAndLengths) {
    Camera camera;
    camera.put("positionPan", std::string("\x02\x40\x78", 3));
    camera.put("power", "on");
    const std::vector<Reading> readings = readAll(camera, {id("positionPan"), id("power")});
    EXPECT_EQ(readings[0].problem, "the camera answered 3 octets (02 40 78) where 4 were expected");
    EXPECT_EQ(readings[1].problem, "the camera answered OCTET STRING where INTEGER was expected");
    EXPECT_THAT(scripted::failure(
                    camera, [](Context &context) { readOne(context.camera, id("power")); }, kRefused),
                HasSubstr("power: the camera answered OCTET STRING"));
}

TEST(Requester, AnAnswerThatIsNoneOfTheRequestIsNotUsed) {
    Camera camera;
    camera.spoil = [](Request, Reply &reply) { reply.variables.pop_back(); };
    EXPECT_EQ(scripted::failure(camera, kReadTwo, kBadAnswer), "the camera answered 1 values to a request for 2");
    EXPECT_EQ(scripted::failure(camera, kWrite, kBadAnswer), "the camera answered 0 values to a request for 1");
    EXPECT_EQ(scripted::failure(camera, kReadRows, kBadAnswer), "the camera answered 0 values to a request for 1");
    camera.spoil = [](Request, Reply &reply) { reply.variables.back().identifier = id("temperature"); };
    EXPECT_EQ(scripted::failure(camera, kReadTwo, kBadAnswer),
              "the camera answered temperature to a request for voltage");
    EXPECT_EQ(scripted::failure(camera, kWrite, kBadAnswer),
              "the camera answered temperature to a request for timeoutPan");
    camera.spoil = [](Request, Reply &reply) { reply.variables.back().type = Type::Null; };
    EXPECT_EQ(readAll(camera, {id("power")}).front().problem, "the camera answered NULL");
}

TEST(Requester, AnErrorAboutNothingEndsTheCommand) {
    Camera camera;
    for (const long index : {0L, 3L, -1L}) {
        camera.spoil = [index](Request, Reply &reply) {
            reply.error = kGenErr;
            reply.errorIndex = index;
        };
        EXPECT_EQ(scripted::failure(camera, kReadTwo, kRefused), "the camera answered genErr") << index;
    }
}

TEST(Requester, AnErrorAboutNothingIsAboutTheOnlyObject) {
    Camera camera;
    camera.spoil = [](Request, Reply &reply) { reply.error = kGenErr; };
    EXPECT_EQ(scripted::failure(camera, kWrite, kRefused), "the camera refused timeoutPan = 5: genErr");
    EXPECT_THAT(readAll(camera, {id("power")}).front().problem, HasSubstr("genErr"));
}

TEST(Requester, ReadsTheRowsOfAColumn) {
    Camera camera;
    camera.put("relayStatesTable.3.2", 1);
    const std::vector<Reading> rows = readColumn(camera, "1.3.6.1.4.1.99999.1.3.2.1.3");
    ASSERT_EQ(rows.size(), 2U);
    EXPECT_EQ(rows[1].value.number, 1);
    EXPECT_TRUE(readColumn(camera, "1.3.6.1.4.1.99999.9").empty());
}

TEST(Requester, AWalkThatGoesRoundIsEnded) {
    Camera camera;
    camera.spoil = [](Request, Reply &reply) { reply.variables = {integer("1.3.6.1.4.1.99999.1.3.2.1.3.1", 0)}; };
    EXPECT_THAT(scripted::failure(camera, kReadRows, kBadAnswer), HasSubstr("as what follows"));
    int row = 0;
    camera.spoil = [&row](Request, Reply &reply) {
        reply.variables = {integer("1.3.6.1.4.1.99999.1.3.2.1.3." + std::to_string(++row), 0)};
    };
    EXPECT_EQ(readColumn(camera, "1.3.6.1.4.1.99999.1.3.2.1.3").size(), 64U);
}

TEST(Requester, ARefusedWriteNamesTheObject) {
    Camera camera;
    camera.failSet("timeoutPan", kNotWritable);
    EXPECT_EQ(scripted::failure(camera, kWrite, kRefused), "the camera refused timeoutPan = 5: notWritable");
}

TEST(Requester, EveryErrorHasANameAndAdvice) {
    for (long error = 1; error <= 18; ++error) {
        EXPECT_EQ(refusalOf(error).name.find("error status"), std::string::npos) << error;
        EXPECT_NE(refusalOf(error).advice, "") << error;
    }
    EXPECT_EQ(refusalOf(19).name, "error status 19");
}
