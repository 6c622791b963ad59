// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Movement in a scene: signals, vehicles and pedestrians.
 */
#ifndef QUARNSNMP_PANEL_TRAFFIC_H
#define QUARNSNMP_PANEL_TRAFFIC_H

#include <deque>

#include "route.h"
#include "scene.h"

namespace panel {

enum class Aspect : std::uint8_t { green, yellow, red };

/** Signals that repeat a cycle of steps for ever. */
class SignalCycle {
public:
    explicit SignalCycle(std::vector<SignalStep> steps);

    /** Returns the light of a group; green without a cycle. @param seconds  time since any fixed moment */
    Aspect at(const std::string &group, double seconds) const;

    /** Returns a number that differs between any two times with different lights in sequence. */
    int stageAt(double seconds) const;

private:
    struct Stage {
        std::size_t step = 0;
        Aspect aspect = Aspect::red; ///< of the step's groups
    };
    Stage stageOf(double seconds) const;

    std::vector<SignalStep> steps_;
    double length_ = 0.0; ///< of the cycle in seconds
};

/** Place of a vehicle. */
struct VehiclePose {
    Vec2 at; ///< middle of the vehicle
    double bearing = 0.0;
    VehicleKind kind = VehicleKind::car;
    Color color;
    bool braking = false;
    bool turningLeft = false;
    bool turningRight = false;
};

/** Place of a pedestrian. */
struct PedestrianPose {
    Vec2 at;
    double bearing = 0.0;
    Color color;
    double step = 0.0; ///< phase of the gait in radians
    bool walking = false;
};

/** Returns the length of a vehicle in metres. */
double lengthOf(VehicleKind kind);

/** Vehicles and pedestrians, simulated in small steps. After a pause they start anew, and have been there for a while.
 */
class Traffic {
public:
    explicit Traffic(const Scene &scene);

    /** Moves everything to a time. */
    void advanceTo(double seconds);

    std::vector<VehiclePose> vehicles() const;
    std::vector<PedestrianPose> pedestrians() const;

    /** Returns points of all ways, at most some thousand. */
    std::vector<Vec2> places() const;

    const SignalCycle &signals() const {
        return signals_;
    }

private:
    struct Vehicle {
        double place = 0.0; ///< of its front on the route
        double speed = 0.0;
        double acceleration = 0.0;
        std::size_t route = 0;
        VehicleKind kind = VehicleKind::car;
        Color color;
    };
    struct Stream {
        std::vector<Route> routes;
        std::vector<int> turns; ///< of each route: -1 left, 0 through, 1 right
        double stop = 0.0;      ///< place of the stop line
        std::string group;
        double speed = 0.0;
        double every = 0.0;
        std::uint32_t number = 0;     ///< of the next vehicle
        double next = 0.0;            ///< time of its arrival
        std::deque<Vehicle> vehicles; ///< the foremost first
    };
    struct Pedestrian {
        double place = 0.0;
        double aside = 0.0;
        double speed = 0.0;
        Color color;
        bool walking = false;
    };
    struct Path {
        Route route;
        std::string group;
        double every = 0.0;
        std::uint32_t number = 0;
        double next = 0.0;
        std::deque<Pedestrian> pedestrians;
    };

    void restart(double seconds);
    void step(double seconds);
    void arrive(Stream &stream, std::uint32_t seed);
    void drive(Stream &stream);
    double accelerationOf(const Stream &stream, std::size_t index, Aspect light) const;
    void walk(Path &path, std::uint32_t seed);

    SignalCycle signals_;
    std::vector<Stream> streams_;
    std::vector<Path> paths_;
    double now_ = 0.0;       ///< time of the last step
    double remainder_ = 0.0; ///< since then
    bool started_ = false;
};

} // namespace panel

#endif
