// SPDX-License-Identifier: Apache-2.0
// Alarm inputs and relay outputs through the whole chain.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "camera_agent.h"
#include "object_oids.h"
#include "settings.h"

namespace {

using namespace harness;
using nlohmann::json;
using testing::ElementsAre;
using testing::IsEmpty;

const std::string kMissingColumn = std::string(oids::registered::relayStatesTable) + ".1.7.1";

std::string alarmState(std::uint32_t row) {
    return oids::row(oids::alarmStatesState, row);
}
std::string relayState(std::uint32_t row) {
    return oids::row(oids::relayStatesState, row);
}

class Inputs : public CameraAgent {
protected:
    Inputs() : CameraAgent("dome") {}
};

class Outputs : public CameraAgent {
protected:
    Outputs() : CameraAgent("dome") {}

    int relay(int number) const {
        return targetState(camera_, "relay/" + std::to_string(number)).at("state");
    }
};

/** Six inputs and three relays, more than the bitmaps show. */
struct WideCamera {
    static json services() {
        return {{"alarm", {{"targets", json(6, {{"state", 1}})}}},
                {"relay", {{"targets", json(3, {{"state", 1}, {"configuration", {{"c1", 1}}}})}}}};
    }
    CameraFile file = CameraFile(services());
};

class WideInputsAndOutputs : private WideCamera, public CameraAgent {
protected:
    WideInputsAndOutputs() : CameraAgent(file.path) {}
};

/** MIB files that give the agent names for OIDs. */
struct NamedOids {
    NamedOids() {
        directory.write("test-mib.txt", R"(TEST-MIB DEFINITIONS ::= BEGIN
            testInputs OBJECT IDENTIFIER ::= { iso 3 6 1 4 1 99999 1 3 1 1 }
            testInputState OBJECT IDENTIFIER ::= { testInputs 3 }
            testOutputs OBJECT IDENTIFIER ::= { iso 3 6 1 4 1 99999 1 3 2 1 }
            testOutputState OBJECT IDENTIFIER ::= { testOutputs 3 }
            END)");
        agent.environment = {{"MIBDIRS", directory.path()}, {"MIBS", "ALL"}};
    }
    TemporaryDirectory directory;
    AgentOptions agent;
};

class NamedInputsAndOutputs : private NamedOids, public CameraAgent {
protected:
    NamedInputsAndOutputs() : CameraAgent("dome", agent) {}
};

} // namespace

TEST_F(Inputs, TheBitmapAndTheTableFollowTheInputs) {
    EXPECT_EQ(get(oids::inputStatus), "0x00");
    setField(camera_, "alarm/2", "state", 1);
    setField(camera_, "alarm/4", "state", 3);
    EXPECT_EQ(get(oids::inputStatus), "0x0a");
    EXPECT_EQ(get(alarmState(2)), "1");
    EXPECT_EQ(get(alarmState(4)), "3") << "all of it, of which the bitmap has the lowest bit";
    setField(camera_, "alarm/4", "state", -2);
    EXPECT_EQ(get(alarmState(4)), "-2");
    EXPECT_EQ(get(oids::inputStatus), "0x02");
    EXPECT_EQ(get(oids::alarmStatus), "0x00");
    EXPECT_EQ(get(oids::row(oids::alarmStatesKind, 2)), "\"GPIO\"");
    EXPECT_EQ(get(oids::row(oids::alarmStatesNumber, 1)), "0");
}

TEST_F(Inputs, AnInputThatFailsFailsTheRequestAndKeepsWhatWasRead) {
    control("set", "alarm/1", "state", "1");
    control("set", "alarm/2", "state", "1");
    control("set", "alarm/4", "state", "1");
    // Two reads pass before the third fails.
    control("down", "alarm");
    EXPECT_EQ(manager_.get(oids::inputStatus).error, ErrorStatus::GenErr);
    EXPECT_EQ(manager_.get(alarmState(3)).error, ErrorStatus::GenErr);
    EXPECT_EQ(get(oids::row(oids::alarmStatesNumber, 3)), "2") << "held by the module";
    control("up", "alarm");
    EXPECT_EQ(get(oids::inputStatus), "0x0b");
}

TEST_F(Inputs, RowsThatAreNotThereAreNeverRead) {
    for (const std::uint32_t row : {0U, 5U, 6U, 2147483647U, 2147483648U, 4294967295U}) {
        const Result result = manager_.get(alarmState(row));
        EXPECT_TRUE(result.error == ErrorStatus::GenErr || result.single().type == Type::NoSuchInstance)
            << row << ": " << result;
    }
    EXPECT_EQ(get(alarmState(4)), "0");
}

TEST_F(WideInputsAndOutputs, TheBitmapsShowTheFirstOfThemAndTheTablesAll) {
    EXPECT_EQ(get(oids::inputStatus), "0x0f");
    EXPECT_EQ(get(oids::outputStatus), "0x03");
    EXPECT_EQ(get(alarmState(6)), "1");
    EXPECT_EQ(get(relayState(3)), "1");
    EXPECT_EQ(manager_.walk(oids::registered::alarmStatesTable).size(), 3U * 6U);
    EXPECT_EQ(manager_.walk(oids::registered::relayStatesTable).size(), 3U * 3U);
    set(oids::outputControl, std::string("\x03\x00", 2));
    EXPECT_EQ(get(relayState(3)), "0");
    EXPECT_EQ(get(oids::outputStatus), "0x03");
}

TEST_F(Outputs, AControlCommandSwitchesTheRelayThatItNames) {
    set(oids::outputControl, "\x02\x80");
    EXPECT_EQ(relay(2), 1);
    EXPECT_EQ(get(oids::outputStatus), "0x02");
    EXPECT_EQ(get(oids::outputControl), "0x0280");
    set(oids::outputControl, "\x02\x7F");
    EXPECT_EQ(relay(2), 0) << "only bit 7 counts";
    EXPECT_EQ(get(oids::outputControl), "0x027f");
    EXPECT_EQ(relay(1), 0);
}

TEST_F(Outputs, ARelayIsSetUpBeforeItIsFirstSwitched) {
    const CameraEvents events(camera_);
    set(oids::outputControl, "\x01\x80");
    set(oids::outputControl, std::string("\x01\x00", 2));
    ASSERT_TRUE(events.waitFor({{"operation", "set_state_send"}, {"arguments", {0}}}));
    EXPECT_THAT(operations(events), ElementsAre("set_configuration_send", "set_state_send", "set_state_send"));
    EXPECT_EQ(events.matching({{"operation", "set_configuration_send"}}).at(0).at("arguments"),
              json({1, 0, 1, 0, 1, 1, 1}));
}

TEST_F(Outputs, ARelayThatIsNotThereIsAcceptedAndDoesNothing) {
    const CameraEvents events(camera_);
    for (const char number : {'\x00', '\x03', '\x05', '\xFF'}) {
        set(oids::outputControl, {number, '\x80'});
        EXPECT_EQ(manager_.get(oids::outputControl).single().octets, (std::string{number, '\x80'}));
    }
    set(oids::outputControl, "");
    EXPECT_EQ(get(oids::outputControl), "0x0000");
    set(oids::outputControl, "\x01");
    ASSERT_TRUE(events.waitFor({{"operation", "set_state_send"}, {"arguments", {0}}, {"target", "relay/1"}}));
    EXPECT_EQ(get(oids::outputControl), "0x0100") << "the missing octet is 0";
    EXPECT_THAT(operations(events), ElementsAre("set_configuration_send", "set_state_send"));
}

TEST_F(Outputs, TheTableSwitchesARow) {
    setInteger(relayState(2), 1);
    EXPECT_EQ(relay(2), 1);
    EXPECT_EQ(get(relayState(2)), "1");
    EXPECT_EQ(get(oids::outputControl), "0x0000") << "the control object holds its own command";
    setInteger(relayState(2), 256);
    EXPECT_EQ(relay(2), 0) << "only the low octet reaches the relay";
}

TEST_F(Outputs, SeveralRowsInOneRequestSwitchTheLastOfThem) {
    const CameraEvents events(camera_);
    const Result result = manager_.set({integer(relayState(2), 0), integer(relayState(1), 1)});
    ASSERT_TRUE(result.ok()) << result;
    setField(camera_, "alarm/1", "state", 1);
    ASSERT_TRUE(events.waitFor({{"event", "changed"}, {"target", "alarm/1"}}));
    std::vector<std::string> targets;
    for (const json &event : events.matching({{"operation", "set_state_send"}})) {
        targets.push_back(event.at("target"));
        EXPECT_EQ(event.at("arguments"), events.matching({{"operation", "set_state_send"}}).at(0).at("arguments"));
    }
    ASSERT_EQ(targets.size(), 2U);
    EXPECT_EQ(targets[0], targets[1]) << "one slot for the whole request";
}

TEST_F(Outputs, RowsThatAreNotThereAreNeverRead) {
    const CameraEvents events(camera_);
    for (const std::uint32_t row : {0U, 3U, 2147483648U, 4294967295U}) {
        const Result read = manager_.get(relayState(row));
        EXPECT_TRUE(read.error == ErrorStatus::GenErr || read.single().type == Type::NoSuchInstance)
            << row << ": " << read;
        EXPECT_FALSE(manager_.set(relayState(row), Type::Integer, 1).ok()) << row;
    }
    EXPECT_THAT(finishedOperations(events), IsEmpty());
}

TEST_F(Outputs, AColumnThatIsNotThereIsNoneAndTheOthersAreAnswered) {
    const Result result = manager_.get(relayState(1), kMissingColumn, relayState(2));
    ASSERT_EQ(result.varbinds.size(), 3U) << result;
    EXPECT_EQ(recordedValue(result.varbinds[0]), "0");
    EXPECT_EQ(result.varbinds[1].type, Type::NoSuchObject);
    EXPECT_EQ(recordedValue(result.varbinds[2]), "0");
}

TEST_F(Outputs, ANameThatIsNoCellIsRefusedTogetherWithCells) {
    const std::string table = oids::registered::relayStatesTable;
    for (const std::string &name : {table + ".1", table + ".1.3", table + ".2.3.1", kMissingColumn}) {
        const Result result = manager_.set({integer(relayState(1), 1), integer(name, 1)});
        EXPECT_EQ(result.error, ErrorStatus::NoCreation) << name;
        EXPECT_EQ(result.errorIndex, 2) << name;
        EXPECT_FALSE(manager_.set({integer(name, 1), integer(relayState(1), 1)}).ok()) << name;
    }
    EXPECT_EQ(relay(1), 0);
    setInteger(relayState(1), 1);
    EXPECT_EQ(relay(1), 1);
}

TEST_F(Outputs, ARelayThatFailsIsToldToTheManager) {
    control("fail", "relay", "set_state_send", "1");
    EXPECT_EQ(manager_.set({octetString(oids::outputControl, "\x01\x80")}).error, ErrorStatus::GenErr);
    EXPECT_EQ(logged("handle_outputControl: MODE_COMMIT fail"), 1U);
    control("fail", "relay", "get_configuration_send", "1");
    EXPECT_EQ(manager_.set(relayState(1), Type::Integer, 1).error, ErrorStatus::GenErr);
    EXPECT_EQ(logged("handle_relayStates: MODE_COMMIT fail"), 1U);
    control("fail", "relay", "get_state_send", "1");
    EXPECT_EQ(manager_.set(relayState(1), Type::Integer, 1).error, ErrorStatus::GenErr);
    EXPECT_EQ(logged("handle_relayStates: MODE_SET_RESERVE2 fail"), 1U);
    control("fail", "relay", "get_state_send", "1");
    EXPECT_EQ(manager_.get(oids::outputStatus).error, ErrorStatus::GenErr);
    EXPECT_EQ(logged("handle_outputStatus: MODE_SET_RESERVE2 fail"), 1U);
    EXPECT_EQ(relay(1), 0);
    setInteger(relayState(1), 1);
    EXPECT_EQ(relay(1), 1);
}

TEST_F(NamedInputsAndOutputs, TheRowIsRightWhenTheAgentKnowsNames) {
    setField(camera_, "alarm/3", "state", 7);
    EXPECT_EQ(get(alarmState(3)), "7");
    setInteger(relayState(2), 1);
    EXPECT_EQ(targetState(camera_, "relay/2").at("state"), 1);
    EXPECT_EQ(targetState(camera_, "relay/1").at("state"), 0);
    EXPECT_EQ(agent_.log().count("TEST-MIB"), 0U) << "a complaint about the file";
}
