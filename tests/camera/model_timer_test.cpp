// SPDX-License-Identifier: Apache-2.0
// Timer of the camera model, with its own event loop and the real time.
#include <gmock/gmock.h>

#include "event_recorder.h"
#include "model_timer.h"
#include "test_cameras.h"

using namespace camera;

namespace {

class Timer : public testing::Test {
protected:
    /** Starts a move of the zoom of some milliseconds. */
    void zoomTo(int position) {
        ASSERT_EQ(wire::kSuccess,
                  camera_
                      ->call("positioning", {"move_to_position_with_speed_percentage_send", "positioning/1", 0, 0, 0.0,
                                             0, 0, 0.0, 1, position, 1.0, 1})
                      .status);
    }

    boost::asio::io_context io_{1};
    std::unique_ptr<CameraModel> camera_ = test::makeCameraOf(
        "positioning", {{"zoom", {{"maximum", 1000000}, {"maximumSpeed", 1000}}}, {"pan", {{"maximum", 9}}}});
    test::EventRecorder events_{camera_->events()};
    ModelTimer timer_{io_, *camera_};
};

TEST_F(Timer, DoesNotWaitWhileNothingWillHappen) {
    // The loop would not come to its end while a timer runs.
    EXPECT_EQ(0U, io_.run());
    camera_->state("positioning/1");
    EXPECT_EQ(0U, io_.run());
}

TEST_F(Timer, WakesTheCameraOnceWhenSomethingHappens) {
    zoomTo(20);
    const double due = camera_->nextTime();
    EXPECT_EQ(1U, io_.run());
    EXPECT_GE(camera_->events().seconds(), due);
    EXPECT_THAT(events_.moves(), testing::ElementsAre("move_started zoom", "move_stopped zoom"));
    io_.restart();
    EXPECT_EQ(0U, io_.run());
}

TEST_F(Timer, IsLeftAloneByWhatChangesNothing) {
    zoomTo(1000000);
    for (int i = 0; i < 10; ++i) {
        camera_->call("positioning", {"get_position_send", "positioning/1"});
        camera_->state("positioning/1");
    }
    // A timer that had been set anew would have had its first wait ended.
    EXPECT_EQ(0U, io_.poll());
}

TEST_F(Timer, IsSetForWhatHappensEarlier) {
    zoomTo(1000000);
    zoomTo(20);
    // The wait that was ended, and the one that mattered.
    EXPECT_EQ(2U, io_.run());
    EXPECT_THAT(events_.moves(), testing::Contains("move_stopped zoom"));
}

TEST_F(Timer, IsNotSetForAMoveThatIsEnded) {
    zoomTo(1000000);
    ASSERT_FALSE(camera_->set("positioning/1", "zoom.position", 5));
    EXPECT_EQ(1U, io_.run());
    EXPECT_EQ(kNever, camera_->nextTime());
}

TEST(ATimerThatIsGone, IsForgotten) {
    boost::asio::io_context io(1);
    const auto camera = test::makeCameraOf("positioning", {{"zoom", {{"maximum", 1000000}, {"maximumSpeed", 1000}}}});
    { const ModelTimer timer(io, *camera); }
    EXPECT_EQ(wire::kSuccess,
              camera->call("positioning", {"set_velocity_send", "positioning/1", 0, 0, 0, 0, 1, 10, 1}).status);
    EXPECT_EQ(0U, io.run());
}

} // namespace
