// SPDX-License-Identifier: Apache-2.0
// Speeds of pan, tilt and zoom, from a manager's SET to the axis of the simulated camera, and the table of speeds in
// the guide. The axes accelerate at once, so the camera reports the speed of a move with its start.
#include <array>
#include <fstream>
#include <functional>
#include <sstream>

#include <gtest/gtest.h>

#include "camera_agent.h"
#include "eventually.h"
#include "object_oids.h"
#include "position_commands.h"

namespace {

using namespace harness;
using namespace position_commands;
using nlohmann::json;

constexpr const char *kTarget = "positioning/1";
constexpr double kPrecision = 0.0501; ///< of the guide, in degrees or zoom factors per second

/** An axis: its object, its unit, and a target far from the position at which each measurement starts. */
struct Axis {
    const char *name;
    const char *oid;
    double unit;  ///< degrees per second, or steps of the zoom factor, in units of the camera
    int start;    ///< in units of the camera
    int far;      ///< of an absolute move
    int distance; ///< of a delta
};

constexpr Axis kPan = {"pan", oids::positionPan, 1000.0, 0, 17000, 17000};
constexpr Axis kTilt = {"tilt", oids::positionTilt, 1000.0, -80000, 36000 - 100, 7000};
constexpr Axis kZoom = {"zoom", oids::positionZoomLens, 10.0, 10, 65535, 30000};

class MoveSpeeds : public CameraAgent {
protected:
    MoveSpeeds() : CameraAgent("dome"), events_(camera_) {
        for (const Axis &axis : {kPan, kTilt, kZoom}) {
            setField(camera_, kTarget, std::string(axis.name) + ".acceleration", 0);
            rest(axis);
        }
    }

    /** Ends the move of an axis, at the position where each measurement starts. */
    void rest(const Axis &axis) const {
        setField(camera_, kTarget, std::string(axis.name) + ".position", axis.start);
    }

    /** The velocity with which the last move of an axis has started, in units of the camera; 0 without a move. */
    double startVelocity(const Axis &axis) const {
        const std::string field = std::string(axis.name) + ".velocity";
        double latest = 0.0;
        double velocity = 0.0;
        for (const json &event : events_.all()) {
            if (event.at("event") == "changed") {
                latest = event.at("fields").value(field, latest);
            } else if (event.at("event") == "move_started" && event.at("axis") == axis.name) {
                velocity = latest;
            }
        }
        return velocity;
    }

    /** Starts a move from rest with a request. @return the velocity in degrees per second, or zoom factors per second
     */
    double velocityAfter(const Axis &axis, const std::function<void()> &request) {
        const auto starts = [&] { return events_.matching({{"event", "move_started"}, {"axis", axis.name}}).size(); };
        const std::size_t before = starts();
        request();
        EXPECT_TRUE(eventually([&] { return starts() > before; })) << axis.name << " does not move";
        const double velocity = startVelocity(axis) / axis.unit;
        rest(axis);
        return velocity;
    }

    double velocityAfter(const Axis &axis, const std::string &command) {
        return velocityAfter(axis, [&] { set(axis.oid, command); });
    }

    CameraEvents events_;
};

/** Values of the octet in the head of the guide's table. */
constexpr std::array<int, 3> kOctets = {1, 64, 127};

/** A row of the table: the kind of move, the axis, and a speed for each value of the octet. */
struct GuideRow {
    bool continuous;
    Axis axis;
    std::vector<double> speeds;
};

GuideRow parsedRow(const std::string &line) {
    std::istringstream cells(line.substr(2));
    std::string move;
    std::string name;
    std::getline(cells, move, '|');
    std::getline(cells, name, '|');
    GuideRow row = {move == "continuous ", name == " pan " ? kPan : name == " tilt " ? kTilt : kZoom, {}};
    for (std::string cell; std::getline(cells, cell, '|');) {
        row.speeds.push_back(std::stod(cell));
    }
    return row;
}

/** Reads the table in the guide. */
std::vector<GuideRow> guideRows() {
    std::ifstream guide(POSITIONING_GUIDE);
    std::string line;
    while (std::getline(guide, line) && line != "| move | axis | speed 1 | speed 64 | speed 127 |") {
    }
    std::getline(guide, line); // below the head
    std::vector<GuideRow> rows;
    while (std::getline(guide, line) && line.rfind("| ", 0) == 0) {
        rows.push_back(parsedRow(line));
    }
    return rows;
}

} // namespace

TEST_F(MoveSpeeds, AreThoseOfTheGuide) {
    // The limits of a first move to a position, as below, are not in the table.
    velocityAfter(kPan, absolute(1, kPan.far));
    const std::vector<GuideRow> rows = guideRows();
    ASSERT_EQ(rows.size(), 6U);
    for (const GuideRow &row : rows) {
        const Axis &axis = row.axis;
        ASSERT_EQ(row.speeds.size(), kOctets.size());
        for (std::size_t i = 0; i < kOctets.size(); ++i) {
            const int octet = kOctets.at(i);
            const std::vector<std::string> commands =
                row.continuous ? std::vector<std::string>{continuous(octet)}
                               : std::vector<std::string>{absolute(octet, axis.far), delta(octet, axis.distance)};
            for (const std::string &command : commands) {
                EXPECT_NEAR(velocityAfter(axis, command), row.speeds.at(i), kPrecision)
                    << axis.name << ", mode " << int(command.front()) << ", speed " << octet;
            }
        }
    }
}

TEST_F(MoveSpeeds, AreLimitedByAContinuousMoveAndInTheNextMoveToAPosition) {
    struct Step {
        Axis axis;
        std::string command;
        double velocity;
    };
    const std::string farPan = absolute(127, kPan.far);
    const std::string farTilt = absolute(127, kTilt.far);
    for (const Step &step : std::vector<Step>{{kPan, farPan, 160},
                                              {kPan, farPan, 280},
                                              {kTilt, farTilt, 120},
                                              {kPan, continuous(-128), -80},
                                              {kTilt, farTilt, 80},
                                              {kTilt, farTilt, 120},
                                              {kTilt, continuous(127), 40},
                                              {kPan, delta(127, kPan.distance), 160},
                                              {kPan, farPan, 280}}) {
        EXPECT_NEAR(velocityAfter(step.axis, step.command), step.velocity, kPrecision)
            << step.axis.name << ", mode " << int(step.command.front());
    }
    const auto recall = [this] { setInteger(oids::presetGotoPosition, 1); };
    setField(camera_, kTarget, "pan.position", 170000);
    setInteger(oids::presetStorePosition, 1);
    rest(kPan);
    EXPECT_NEAR(velocityAfter(kPan, recall), 280, kPrecision);
    velocityAfter(kTilt, continuous(1));
    EXPECT_NEAR(velocityAfter(kPan, recall), 80, kPrecision) << "the limits of a continuous move last";
}

TEST_F(MoveSpeeds, HaveASignAndAZeroWithAMeaningOfTheirOwn) {
    velocityAfter(kPan, absolute(1, kPan.far));
    EXPECT_NEAR(velocityAfter(kPan, absolute(-64, 9000)), 141.1, kPrecision) << "the position gives the direction";
    EXPECT_NEAR(velocityAfter(kPan, absolute(64, 27000)), -141.1, kPrecision) << "the shorter way";
    EXPECT_NEAR(velocityAfter(kPan, delta(-64, 9000)), -141.1, kPrecision);
    EXPECT_DOUBLE_EQ(velocityAfter(kPan, absolute(0, kPan.far)), 0.05) << "the slowest speed of the camera";
}
