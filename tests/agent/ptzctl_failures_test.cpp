// SPDX-License-Identifier: Apache-2.0
// The command-line client with a busy agent, a camera that is gone, and sensors that fail.
#include <csignal>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "eventually.h"
#include "netsnmp_convert.h"
#include "object_oids.h"
#include "ptzctl_client.h"

namespace {

using namespace harness;
using namespace ptzctl_client;
using nlohmann::json;
using testing::EndsWith;
using testing::HasSubstr;
using testing::StartsWith;

constexpr const char *kReadTemperature = "get_temperature_send";

int ignoreAnswer(int /*operation*/, netsnmp_session * /*session*/, int /*request*/, netsnmp_pdu * /*pdu*/,
                 void * /*data*/) {
    return 1;
}

/** Commands to the iris by another client, which sends all of them and waits for none. */
class QueuedCommands {
public:
    QueuedCommands(std::string peer, int count) : community_("private") {
        netsnmp_session wanted;
        snmp_sess_init(&wanted);
        wanted.peername = peer.data();
        wanted.version = SNMP_VERSION_2c;
        wanted.community = reinterpret_cast<u_char *>(community_.data());
        wanted.community_len = community_.size();
        session_.reset(snmp_sess_open(&wanted));
        for (int i = 0; i < count; ++i) {
            snmp::PduPointer request(snmp_pdu_create(SNMP_MSG_SET));
            snmp::append(*request, snmp::octetString(oids::positionIrisLens, std::string(4, '\0')));
            EXPECT_NE(snmp_sess_async_send(session_.get(), request.get(), ignoreAnswer, nullptr), 0);
            static_cast<void>(request.release()); // owned by the library now
        }
    }

private:
    std::string community_;
    snmp::SessionPointer session_;
};

/** A camera whose iris hangs: the agent waits two seconds for each command to it. */
class PtzctlBusyAgent : public CameraClient {
protected:
    PtzctlBusyAgent() {
        control("delay", "iris", "*", "60000", "--always");
    }

    /** Makes the agent busy for two seconds per command. */
    QueuedCommands commandIris(int count) const {
        return {agent_.peer(), count};
    }

    void startPanning() {
        setInteger(oids::timeoutPan, 0);
        set(oids::positionPan, {'\x03', '\x10', '\0', '\0'});
        EXPECT_TRUE(eventually([this] { return axis("pan").at("velocity") > 0; }));
    }

    testing::AssertionResult stopsPanning() const {
        const bool stopped = eventually([this] { return axis("pan").at("velocity") == 0; });
        return stopped ? testing::AssertionSuccess() : testing::AssertionFailure() << axis("pan");
    }
};

class PtzctlLostCamera : public CameraClient {};

class PtzctlFailingSensor : public CameraClient {};

} // namespace

TEST_F(PtzctlBusyAgent, AStopIsRepeatedUntilItIsAnswered) {
    startPanning();
    const QueuedCommands queue = commandIris(4);
    EXPECT_THAT(done({"stop"}), StartsWith("                  sent  after\npositionPan       stop  accepted\n"));
    EXPECT_TRUE(stopsPanning());
}

TEST_F(PtzctlBusyAgent, AStopWithoutAnAnswerHasBeenSent) {
    startPanning();
    const QueuedCommands queue = commandIris(2);
    EXPECT_THAT(complains(kNoAnswer, {"stop", "-t", "0.1"}), HasSubstr("no answer; the command was sent 4 times\n"));
    EXPECT_TRUE(stopsPanning());
}

TEST_F(PtzctlBusyAgent, CommandsGoOutWithoutAnAnswerToAReadBefore) {
    const QueuedCommands queue = commandIris(2);
    for (const std::vector<std::string> &command :
         {std::vector<std::string>{"pan", "to", "90"}, {"relay", "1", "on"}, {"preset", "store", "3"}}) {
        std::vector<std::string> arguments = {"-t", "0.1"};
        arguments.insert(arguments.end(), command.begin(), command.end());
        EXPECT_THAT(complains(kNoAnswer, arguments), HasSubstr("no answer; the command was sent\n"));
    }
    EXPECT_TRUE(arrives("pan", 90000));
    EXPECT_EQ(field("relay/1", "state"), 1);
    EXPECT_EQ(field("presets_tours/1", "presets").at(0).at("number"), 3);
}

TEST_F(PtzctlLostCamera, OnlyTheAgentsAcceptanceIsReported) {
    camera_.kill();
    EXPECT_THAT(done({"stop"}), EndsWith("positionZoomLens  stop  accepted\n"));
    EXPECT_THAT(done({"pan", "to", "90"}), EndsWith("to 90.00° at speed 64  accepted\n"));
    EXPECT_THAT(done({"preset", "store", "3"}), EndsWith("preset 3  accepted\n"));
    const json written = json::parse(done({"pan", "to", "45", "--json"})).at("written").at("positionPan");
    EXPECT_EQ(written.at("verified"), false);
}

TEST_F(PtzctlLostCamera, ARestartThatDoesNotTakePlaceFails) {
    const std::string failed = "the camera accepted the command but did not carry it out: rebootDevice is 0\n";
    ASSERT_EQ(kill(camera_.pid(), SIGSTOP), 0);
    EXPECT_THAT(complains(kRefused, {"reboot", "--yes"}), HasSubstr(failed));
    ASSERT_EQ(kill(camera_.pid(), SIGCONT), 0);
    camera_.kill();
    EXPECT_THAT(complains(kRefused, {"reboot", "--yes"}), HasSubstr(failed));
    EXPECT_THAT(complains(kRefused, {"set", "rebootDevice", "1"}), HasSubstr(failed));
}

TEST_F(PtzctlFailingSensor, TheOthersAreShown) {
    control("fail", "temperature", kReadTemperature, "1", "--always");
    const std::string status = done({"status"});
    EXPECT_THAT(status, StartsWith("Camera       QN-4000 Dome"));
    EXPECT_THAT(status, HasSubstr("Temperature  genErr: the camera failed to do it; its log has the reason\n"));
    EXPECT_THAT(status, HasSubstr("Power        state 0\n"));
    const CommandResult values = ends(kRefused, {"get", "power", "temperature", "modelName"});
    EXPECT_THAT(values.output, HasSubstr("modelName    QN-4000 Dome\n"));
    EXPECT_THAT(values.errors, EndsWith("cannot be read: temperature\n"));
}

TEST_F(PtzctlFailingSensor, AHungSensorHidesNoOther) {
    control("delay", "temperature", kReadTemperature, "60000", "--always");
    const CommandResult values = ends(kRefused, {"get", "temperature", "modelName"});
    EXPECT_THAT(values.output, HasSubstr("modelName    QN-4000 Dome\n"));
    EXPECT_THAT(values.errors, EndsWith("cannot be read: temperature\n"));
}

TEST_F(PtzctlFailingSensor, AFailingInputHidesNoOther) {
    setField(camera_, "alarm/3", "state", 1);
    control("fail", "alarm", "get_state_send", "1", "--times", "2"); // a walk to the first row, and a read of it
    EXPECT_THAT(done({"inputs"}), AllOf(StartsWith("Inputs  1 genErr"), EndsWith(", 2 off, 3 on, 4 off\n")));
}
