// SPDX-License-Identifier: Apache-2.0
// Requests to a camera with correct, failing and malformed answers.
#include <algorithm>
#include <iterator>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "camera_requests.h"
#include "error_status.h"
#include "object_oids.h"
#include "scripted_camera.h"

using namespace ptz;
using ptzctl::Action;
using ptzctl::Context;
using scripted::Camera;
using scripted::kGenErr;
using scripted::kNotWritable;
using scripted::kRefused;
using snmp::Operation;
using snmp::Response;
using testing::ElementsAre;
using testing::HasSubstr;

namespace {

constexpr snmp::Cause kBadResponse = snmp::Cause::BadResponse;

/** Reads objects by their OIDs. */
std::vector<Reading> readThem(snmp::Requester &camera, const std::vector<std::string> &oids) {
    std::vector<Instance> instances;
    std::transform(oids.begin(), oids.end(), std::back_inserter(instances), instanceAt);
    return readAll(camera, instances);
}

const Action kReadTwo = [](Context &context) { readThem(context.camera, {oids::power, oids::voltage}); };
const Action kReadRows = [](Context &context) { readColumn(context.camera, oids::relayStatesState); };
const Action kWrite = [](Context &context) {
    writeAll(context.camera, {assignNumber(instanceAt(oids::timeoutPan), 5)}, {false, 1});
};

} // namespace

TEST(CameraRequests, ReadsManyObjectsInFewRequests) {
    Camera camera;
    const std::vector<Reading> readings = readThem(camera, std::vector<std::string>(33, oids::power));
    EXPECT_EQ(readings.size(), 33U);
    EXPECT_EQ(camera.log.size(), 3U);
}

TEST(CameraRequests, AnUnreadableObjectDoesNotAffectTheOthers) {
    Camera camera;
    camera.failGet("inputStatus", kGenErr);
    camera.remove("power");
    camera.put("voltage", 3);
    const std::vector<Reading> readings = readThem(camera, {oids::inputStatus, oids::power, oids::voltage});
    EXPECT_THAT(readings[0].problem, HasSubstr("genErr"));
    EXPECT_FALSE(readings[0].missing);
    EXPECT_TRUE(readings[1].missing);
    EXPECT_EQ(readings[2].problem, "");
    EXPECT_EQ(readings[2].value.number, 3);
    EXPECT_THAT(camera.log, ElementsAre("get inputStatus power voltage", "get power voltage"));
}

TEST(CameraRequests, AsksForLessWhenAnAnswerIsTooBig) {
    Camera camera;
    camera.failGet("voltage", snmp::kTooBig);
    const std::vector<Reading> readings = readThem(camera, {oids::power, oids::voltage, oids::temperature});
    EXPECT_TRUE(readings[0].ok() && readings[1].ok() && readings[2].ok());
    EXPECT_THAT(camera.log, ElementsAre("get power voltage temperature", "get power", "get voltage temperature",
                                        "get voltage", "get temperature"));
}

TEST(CameraRequests, ChecksTypesAndLengths) {
    Camera camera;
    camera.put("positionPan", std::string("\x02\x40\x78", 3));
    camera.put("power", "on");
    const std::vector<Reading> readings = readThem(camera, {oids::positionPan, oids::power});
    EXPECT_EQ(readings[0].problem, "the camera answered 3 octets (02 40 78) instead of 4");
    EXPECT_EQ(readings[1].problem, "the camera answered OCTET STRING instead of INTEGER");
    EXPECT_THAT(scripted::failure(
                    camera, [](Context &context) { require(context.camera, instanceAt(oids::power)); }, kRefused),
                HasSubstr("power: the camera answered OCTET STRING"));
}

TEST(CameraRequests, AResponseToAnotherRequestIsDiscarded) {
    Camera camera;
    camera.spoil = [](Operation, Response &response) { response.varbinds.pop_back(); };
    EXPECT_EQ(scripted::failure(camera, kReadTwo, kBadResponse), "the camera answered 1 values to a request for 2");
    EXPECT_EQ(scripted::failure(camera, kWrite, kBadResponse), "the camera answered 0 values to a request for 1");
    EXPECT_EQ(scripted::failure(camera, kReadRows, kBadResponse), "the camera answered 0 values to a request for 1");
    camera.spoil = [](Operation, Response &response) { response.varbinds.back().oid = oids::temperature; };
    EXPECT_EQ(scripted::failure(camera, kReadTwo, kBadResponse),
              "the camera answered temperature to a request for voltage");
    EXPECT_EQ(scripted::failure(camera, kWrite, kBadResponse),
              "the camera answered temperature to a request for timeoutPan");
    camera.spoil = [](Operation, Response &response) { response.varbinds.back().type = snmp::Type::Null; };
    EXPECT_EQ(readThem(camera, {oids::power}).front().problem, "the camera answered NULL");
}

TEST(CameraRequests, AnErrorWithoutAValidIndexHalvesTheRequest) {
    for (const long index : {0L, 9L, -1L}) {
        Camera camera;
        camera.failGet("voltage", kGenErr);
        camera.spoil = [index](Operation, Response &response) {
            response.errorIndex = response.error != 0 ? index : 0;
        };
        const std::vector<Reading> readings =
            readThem(camera, {oids::power, oids::temperature, oids::voltage, oids::modelName});
        EXPECT_TRUE(readings[0].ok() && readings[1].ok() && readings[3].ok()) << index;
        EXPECT_THAT(readings[2].problem, HasSubstr("genErr"));
        EXPECT_EQ(readings[2].instance.name, "voltage");
        EXPECT_THAT(camera.log, ElementsAre("get power temperature voltage modelName", "get power temperature",
                                            "get voltage modelName", "get voltage", "get modelName"));
    }
}

TEST(CameraRequests, ARefusalOfTheUserEndsTheCommand) {
    Camera camera;
    camera.spoil = [](Operation, Response &response) { response.error = snmp::kAuthorizationError; };
    EXPECT_EQ(scripted::failure(camera, kReadTwo, kRefused), "the camera answered authorizationError");
    EXPECT_EQ(scripted::failure(camera, kReadRows, kRefused), "the camera answered authorizationError");
    EXPECT_EQ(camera.log.size(), 2U);
}

TEST(CameraRequests, AnErrorWithoutAnIndexNamesNoneOfSeveralObjectsWritten) {
    Camera camera;
    camera.spoil = [](Operation, Response &response) { response.error = kGenErr; };
    const Action writeTwo = [](Context &context) {
        writeAll(context.camera,
                 {assignNumber(instanceAt(oids::timeoutPan), 5), assignNumber(instanceAt(oids::timeoutTilt), 5)}, {});
    };
    EXPECT_EQ(scripted::failure(camera, writeTwo, kRefused), "the camera answered genErr");
}

TEST(CameraRequests, AQuickReadThrowsNothing) {
    Camera camera;
    EXPECT_TRUE(readQuickly(camera, {instanceAt(oids::power)}).front().ok());
    camera.failGet("power", kGenErr);
    EXPECT_EQ(readQuickly(camera, {instanceAt(oids::power)}).front().problem, "genErr");
    camera.answersReads = false;
    EXPECT_EQ(readQuickly(camera, {instanceAt(oids::power)}).front().problem, "no answer");
    EXPECT_THAT(camera.log, ElementsAre("1x get power", "1x get power", "1x get power"));
}

TEST(CameraRequests, AnErrorWithoutAnIndexBelongsToTheOnlyObject) {
    Camera camera;
    camera.spoil = [](Operation, Response &response) { response.error = kGenErr; };
    EXPECT_EQ(scripted::failure(camera, kWrite, kRefused), "the camera refused timeoutPan = 5: genErr");
    EXPECT_THAT(readThem(camera, {oids::power}).front().problem, HasSubstr("genErr"));
}

TEST(CameraRequests, ReadsTheRowsOfAColumn) {
    Camera camera;
    camera.put("relayStatesTable.3.2", 1);
    const std::vector<Reading> rows = readColumn(camera, oids::relayStatesState);
    ASSERT_EQ(rows.size(), 2U);
    EXPECT_EQ(rows[1].value.number, 1);
    EXPECT_TRUE(readColumn(camera, ".1.3.6.1.4.1.99999.9").empty());
}

TEST(CameraRequests, AFailingRowDoesNotAffectTheOthers) {
    for (const char *failing : {"alarmStatesTable.3.1", "alarmStatesTable.3.2", "alarmStatesTable.3.3"}) {
        Camera camera;
        for (const char *row : {"alarmStatesTable.3.2", "alarmStatesTable.3.3"}) {
            camera.put(row, 1);
        }
        camera.failGet(failing, kGenErr);
        const std::vector<Reading> rows = readColumn(camera, oids::alarmStatesState);
        ASSERT_EQ(rows.size(), 3U) << failing;
        for (const Reading &row : rows) {
            EXPECT_EQ(row.ok(), row.instance.name != failing) << row.instance.name;
        }
    }
}

TEST(CameraRequests, AnUnreadableObjectBehindAColumnIsNoRow) {
    Camera camera;
    camera.failGet("relayStatesTable.1", kGenErr);
    EXPECT_EQ(readColumn(camera, oids::alarmStatesState).size(), 1U);
}

TEST(CameraRequests, AnEndlessWalkIsStopped) {
    Camera camera;
    camera.spoil = [](Operation, Response &response) {
        response.varbinds = {snmp::integer(oids::row(oids::relayStatesState, 1), 0)};
    };
    EXPECT_THAT(scripted::failure(camera, kReadRows, kBadResponse), HasSubstr("as the successor of"));
    unsigned int row = 0;
    camera.spoil = [&row](Operation, Response &response) {
        response.varbinds = {snmp::integer(oids::row(oids::relayStatesState, ++row), 0)};
    };
    EXPECT_EQ(scripted::failure(camera, kReadRows, kBadResponse),
              "the camera answered more than 64 rows of relayStatesTable.3");
}

TEST(CameraRequests, ARefusedWriteNamesTheObject) {
    Camera camera;
    camera.failSet("timeoutPan", kNotWritable);
    EXPECT_EQ(scripted::failure(camera, kWrite, kRefused), "the camera refused timeoutPan = 5: notWritable");
}

TEST(CameraRequests, EveryErrorHasANameAndAdvice) {
    for (long error = 1; error <= 18; ++error) {
        EXPECT_EQ(snmp::describeError(error).name.find("error status"), std::string::npos) << error;
        EXPECT_NE(snmp::describeError(error).advice, "") << error;
    }
    EXPECT_EQ(snmp::describeError(19).name, "error status 19");
}
