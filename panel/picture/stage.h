// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * A scene prepared for drawing.
 */
#ifndef QUARNSNMP_PANEL_STAGE_H
#define QUARNSNMP_PANEL_STAGE_H

#include "ground.h"
#include "sky.h"
#include "vehicles.h"

namespace panel {

/**
 * Scene with everything that does not change between pictures.
 *
 * What nothing moves behind is the background. It is drawn first and can be kept from one picture to the next, while
 * the camera rests. Movers, and the things that can hide them, are drawn anew.
 */
class Stage {
public:
    explicit Stage(const Scene &scene);

    /** Moves the traffic to the time of a moment, and finds what of it is in a picture. Must come first. */
    void advance(Moment &moment, Brush &brush);

    /** Returns a number that changes with the lights of the signals. */
    int signalStage(const Moment &moment) const {
        return traffic_.signals().stageAt(moment.seconds);
    }

    /** Returns parts of the picture outside which nothing moves. They can overlap. */
    std::vector<PixelBox> movingParts() const;

    /** Returns parts outside which the picture is that of the previous moment, of a camera at rest. They can overlap.
     */
    const std::vector<PixelBox> &changedParts() const {
        return changedParts_;
    }

    /** Draws what does not depend on the time. */
    void drawBackground(Brush &brush, const Moment &moment) const;

    /** Draws everything else over it. @param movers  false for a scene without traffic */
    void drawForeground(Brush &brush, const Moment &moment, bool movers) const;

private:
    /** Something that moves, and the number of things in the foreground that are drawn before it. */
    struct Mover {
        std::size_t after;
        double distance;
        const VehiclePose *vehicle;
        const PedestrianPose *pedestrian;
        PixelBox box; ///< of the mover and its shadow
    };

    /** All that the picture of a mover depends on. */
    struct Look {
        Vec2 at;
        double bearing;
        double step;
        unsigned lights; ///< of a vehicle; kWalker for a pedestrian
        PixelBox box;
    };

    void divide(std::vector<Thing> things);
    void findMovers(Brush &brush);
    static Look lookOf(const Mover &mover, double seconds);
    void findChanges(const Projection &projection, double seconds);
    void addMover(Brush &brush, const Footprint &footprint, double height, Mover mover);
    std::size_t placeOf(const Footprint &footprint) const;

    Traffic traffic_;
    std::vector<Thing> background_; ///< the farthest first
    std::vector<Thing> foreground_; ///< likewise
    Sky sky_;
    std::optional<Ground> ground_;
    std::vector<VehiclePose> vehicles_;
    std::vector<PedestrianPose> pedestrians_;
    std::vector<Mover> movers_; ///< those in the picture, in the order of their drawing
    std::vector<Look> looks_;   ///< of the movers when they were drawn last
    std::vector<PixelBox> changedParts_;
};

} // namespace panel

#endif
