// SPDX-License-Identifier: Apache-2.0
// Which services run, with restarts and the control program both at work.
#include <gmock/gmock.h>

#include "event_recorder.h"
#include "fake_service_control.h"
#include "service_supervisor.h"
#include "test_cameras.h"

using namespace camera;
using nlohmann::json;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

class Keeper : public testing::Test {
protected:
    Keeper() {
        EXPECT_FALSE(camera_->set("device_management/1", "rebootSeconds", kRestart));
    }

    void startReboot() {
        ASSERT_EQ(wire::kSuccess, camera_->call("device_management", {"reboot_send", "device_management/1", 2}).status);
        camera_->advance();
    }

    void endReboot() {
        now_ += kRestart;
        camera_->advance();
    }

    /** The events about services, as in "service_down relay". */
    std::vector<std::string> switched() const {
        std::vector<std::string> events;
        for (const json &event : recorder_.seen()) {
            const std::string kind = event["event"];
            if (kind.rfind("service_", 0) == 0) {
                events.push_back(kind + " " + event["service"].get<std::string>());
            }
        }
        return events;
    }

    static constexpr int kRestart = 10;

    double now_ = 0.0;
    std::unique_ptr<CameraModel> camera_ = test::shippedCamera("minimal", [this] { return now_; });
    test::EventRecorder recorder_{camera_->events()};
    test::FakeServiceControl services_;
    std::vector<std::string> warnings_;
    ServiceSupervisor supervisor_{*camera_, services_, [this](const std::string &line) { warnings_.push_back(line); }};
};

TEST_F(Keeper, TakesAllServicesDownWhileTheCameraRestarts) {
    startReboot();
    EXPECT_THAT(services_.down, ElementsAre("device_information", "device_management"));
    endReboot();
    EXPECT_THAT(services_.down, IsEmpty());
    EXPECT_THAT(switched(), ElementsAre("service_down device_information", "service_down device_management",
                                        "service_up device_information", "service_up device_management"));
    EXPECT_THAT(warnings_, IsEmpty());
}

TEST_F(Keeper, LeavesDownWhatWasTakenDownByHand) {
    supervisor_.takeDown("device_information");
    startReboot();
    endReboot();
    EXPECT_THAT(services_.down, ElementsAre("device_information"));
    EXPECT_THAT(switched(), ElementsAre("service_down device_information", "service_down device_management",
                                        "service_up device_management"));
    EXPECT_EQ(std::nullopt, supervisor_.bringUp("device_information"));
    startReboot();
    endReboot();
    EXPECT_THAT(services_.down, IsEmpty());
}

TEST_F(Keeper, RemembersWhatIsTakenDownDuringARestart) {
    startReboot();
    supervisor_.takeDown("device_information");
    endReboot();
    EXPECT_THAT(services_.down, ElementsAre("device_information"));
}

TEST_F(Keeper, BringsNothingUpDuringARestart) {
    supervisor_.takeDown("device_information");
    startReboot();
    EXPECT_EQ("the camera restarts", supervisor_.bringUp("device_information"));
    EXPECT_FALSE(supervisor_.isUp("device_information"));
    endReboot();
    EXPECT_FALSE(supervisor_.isUp("device_information")) << "a refused command has no effect later";
}

TEST_F(Keeper, ComplainsOfAServiceThatDoesNotComeBack) {
    startReboot();
    services_.broken = "no space";
    endReboot();
    EXPECT_THAT(warnings_, ElementsAre("cannot bring up device_information: no space",
                                       "cannot bring up device_management: no space"));
    EXPECT_THAT(
        recorder_.seen(),
        testing::Contains(json{{"event", "service_not_up"}, {"service", "device_management"}, {"error", "no space"}}));
    services_.broken.reset();
    EXPECT_EQ(std::nullopt, supervisor_.bringUp("device_management"));
    EXPECT_TRUE(supervisor_.isUp("device_management"));
}

TEST_F(Keeper, CountsAServiceThatDoesNotComeUpByHandAsDown) {
    supervisor_.takeDown("device_information");
    services_.broken = "no space";
    EXPECT_EQ("no space", supervisor_.bringUp("device_information"));
    services_.broken.reset();
    startReboot();
    endReboot();
    EXPECT_FALSE(supervisor_.isUp("device_information"));
}

TEST_F(Keeper, TellsOfNothingThatWasSoBefore) {
    EXPECT_EQ(std::nullopt, supervisor_.bringUp("device_information"));
    supervisor_.takeDown("device_information");
    supervisor_.takeDown("device_information");
    EXPECT_THAT(switched(), ElementsAre("service_down device_information"));
}

} // namespace
