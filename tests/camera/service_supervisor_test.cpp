// SPDX-License-Identifier: Apache-2.0
// Services during restarts and control commands.
#include "fake_service_control.h"
#include "service_supervisor.h"
#include "steered_camera.h"

using namespace camera;
using nlohmann::json;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

class Supervisor : public test::SteeredCamera {
protected:
    Supervisor() : SteeredCamera(readTextFile(QUARNSNMP_CAMERAS "/minimal.json")) {
        setField("device_management", "rebootSeconds", kRestart);
    }

    void startReboot() {
        reboot();
        passAwake(0.0);
    }

    void endReboot() {
        passAwake(kRestart);
    }

    /** Returns the events of services, such as "service_down relay". */
    std::vector<std::string> switched() const {
        std::vector<std::string> events;
        for (const json &event : events_.seen()) {
            const std::string kind = event["event"];
            if (kind.rfind("service_", 0) == 0) {
                events.push_back(kind + " " + event["service"].get<std::string>());
            }
        }
        return events;
    }

    static constexpr int kRestart = 10;

    test::FakeServiceControl services_;
    std::vector<std::string> warnings_;
    ServiceSupervisor supervisor_{*camera_, services_, [this](const std::string &line) { warnings_.push_back(line); }};
};

TEST_F(Supervisor, TakesAllServicesDownWhileTheCameraRestarts) {
    startReboot();
    EXPECT_THAT(services_.down, ElementsAre("device_information", "device_management"));
    endReboot();
    EXPECT_THAT(services_.down, IsEmpty());
    EXPECT_THAT(switched(), ElementsAre("service_down device_information", "service_down device_management",
                                        "service_up device_information", "service_up device_management"));
    EXPECT_THAT(warnings_, IsEmpty());
}

TEST_F(Supervisor, LeavesDownWhatWasTakenDownByHand) {
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

TEST_F(Supervisor, RemembersWhatIsTakenDownDuringARestart) {
    startReboot();
    supervisor_.takeDown("device_information");
    endReboot();
    EXPECT_THAT(services_.down, ElementsAre("device_information"));
}

TEST_F(Supervisor, BringsNothingUpDuringARestart) {
    supervisor_.takeDown("device_information");
    startReboot();
    EXPECT_EQ("the camera restarts", supervisor_.bringUp("device_information"));
    EXPECT_FALSE(supervisor_.isUp("device_information"));
    endReboot();
    EXPECT_FALSE(supervisor_.isUp("device_information")) << "a refused command has no effect later";
}

TEST_F(Supervisor, ComplainsOfAServiceThatDoesNotComeBack) {
    startReboot();
    services_.broken = "no space";
    endReboot();
    EXPECT_THAT(warnings_, ElementsAre("cannot bring up device_information: no space",
                                       "cannot bring up device_management: no space"));
    EXPECT_THAT(
        events_.seen(),
        testing::Contains(json{{"event", "service_not_up"}, {"service", "device_management"}, {"error", "no space"}}));
    services_.broken.reset();
    EXPECT_EQ(std::nullopt, supervisor_.bringUp("device_management"));
    EXPECT_TRUE(supervisor_.isUp("device_management"));
}

TEST_F(Supervisor, CountsAServiceThatDoesNotComeUpByHandAsDown) {
    supervisor_.takeDown("device_information");
    services_.broken = "no space";
    EXPECT_EQ("no space", supervisor_.bringUp("device_information"));
    services_.broken.reset();
    startReboot();
    endReboot();
    EXPECT_FALSE(supervisor_.isUp("device_information"));
}

TEST_F(Supervisor, TellsOfNothingThatWasSoBefore) {
    EXPECT_EQ(std::nullopt, supervisor_.bringUp("device_information"));
    supervisor_.takeDown("device_information");
    supervisor_.takeDown("device_information");
    EXPECT_THAT(switched(), ElementsAre("service_down device_information"));
}

} // namespace
