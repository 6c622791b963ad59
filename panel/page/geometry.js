// SPDX-License-Identifier: Apache-2.0
// The picture's geometry: a pinhole camera at a pan and a tilt, with a horizontal and a vertical field of view.
// Angles are in degrees; pan is clockwise, tilt is positive upwards. Places in the picture are from 0 to 1, from the
// upper left corner.

const radians = (degrees) => (degrees * Math.PI) / 180;
const degrees = (angle) => (angle * 180) / Math.PI;

/** Brings a bearing into 0 to 360, without 360. */
export function bearing(value) {
    return ((value % 360) + 360) % 360;
}

/** Returns the pan and the tilt of a place in the picture. */
export function directionAt(view, x, y) {
    const pan = radians(view.pan);
    const tilt = radians(view.tilt);
    const right = Math.tan(radians(view.horizontal) / 2) * (2 * x - 1);
    const up = Math.tan(radians(view.vertical) / 2) * (1 - 2 * y);
    const forward = Math.cos(tilt) - up * Math.sin(tilt); // the horizontal part of the direction
    const height = Math.sin(tilt) + up * Math.cos(tilt);
    const east = forward * Math.sin(pan) + right * Math.cos(pan);
    const north = forward * Math.cos(pan) - right * Math.sin(pan);
    return {pan: bearing(degrees(Math.atan2(east, north))), tilt: degrees(Math.atan2(height, Math.hypot(east, north)))};
}

/** Returns the place of a direction in the picture, or null behind the camera. */
export function placeOf(view, pan, tilt) {
    const turn = radians(pan - view.pan);
    const own = radians(view.tilt);
    const other = radians(tilt);
    const depth = Math.sin(own) * Math.sin(other) + Math.cos(own) * Math.cos(other) * Math.cos(turn);
    if (depth <= 0) {
        return null;
    }
    const right = (Math.cos(other) * Math.sin(turn)) / depth;
    const up = (Math.cos(own) * Math.sin(other) - Math.sin(own) * Math.cos(other) * Math.cos(turn)) / depth;
    return {
        x: (right / Math.tan(radians(view.horizontal) / 2) + 1) / 2,
        y: (1 - up / Math.tan(radians(view.vertical) / 2)) / 2,
    };
}

/** Velocities of full speed, in degrees per second, as the module limits them. */
export const kFullVelocity = Object.freeze({pan: 80, tilt: 40});

/**
 * Returns the speed of a drag, from -127 to 127. The picture passes by at a rate that grows with the square of the
 * distance and does not depend on the zoom: one field of view per second at the full distance.
 * @param distance  from -1 to 1, as a part of the full distance; within `dead` nothing moves
 */
export function dragSpeed(distance, field, fullVelocity, dead = 0.04) {
    const reach = (Math.min(Math.abs(distance), 1) - dead) / (1 - dead);
    if (reach <= 0) {
        return 0;
    }
    const speed = Math.round(((reach * reach * field) / fullVelocity) * 127);
    return Math.sign(distance) * Math.min(Math.max(speed, 1), 127);
}

/** Returns the horizontal distance of two bearings, from -180 to 180. */
export function turnBetween(from, to) {
    const difference = bearing(to - from);
    return difference > 180 ? difference - 360 : difference;
}

/** Returns the point of a plan at a bearing, with north up. */
export function planPoint(bearingDegrees, radius) {
    const angle = radians(bearingDegrees);
    return {x: radius * Math.sin(angle), y: -radius * Math.cos(angle)};
}

/** Returns the SVG path of a ring's sector from one bearing clockwise to another. */
export function sectorPath(from, to, inner, outer) {
    const width = to - from >= 360 ? 359.99 : bearing(to - from);
    const large = width > 180 ? 1 : 0;
    const point = (at, radius) => {
        const {x, y} = planPoint(at, radius);
        return `${x.toFixed(2)} ${y.toFixed(2)}`;
    };
    const end = from + width;
    return (
        `M ${point(from, inner)} L ${point(from, outer)} A ${outer} ${outer} 0 ${large} 1 ${point(end, outer)} ` +
        `L ${point(end, inner)} A ${inner} ${inner} 0 ${large} 0 ${point(from, inner)} Z`
    );
}
