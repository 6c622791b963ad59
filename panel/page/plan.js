// SPDX-License-Identifier: Apache-2.0
// The plan: bearing and field of view from above, the tilt from the side, presets and limits.
import {limitsOf, presetsOf} from './camera_state.js';
import {h, s, setAttribute, setText} from './dom.js';
import {bearing, planPoint, sectorPath} from './geometry.js';

const kOuter = 84;
const kReach = 76;
const kPresetRing = 58;
const kElevationX = 150; // of the tilt's arc
const kElevationRadius = 68;

function ring() {
    const ticks = [];
    for (let at = 0; at < 360; at += 10) {
        const major = at % 30 === 0;
        const from = planPoint(at, kOuter);
        const to = planPoint(at, kOuter - (major ? 6 : 3));
        ticks.push(s('line', {x1: from.x, y1: from.y, x2: to.x, y2: to.y, class: major ? 'tick major' : 'tick'}));
        if (major) {
            const {x, y} = planPoint(at, kOuter + 9);
            ticks.push(
                s(
                    'text',
                    {x, y, class: at % 90 === 0 ? 'mark cardinal' : 'mark'},
                    {0: 'N', 90: 'E', 180: 'S', 270: 'W'}[at] ?? at,
                ),
            );
        }
    }
    return s('g', {}, s('circle', {r: kOuter, class: 'dial'}), ticks);
}

const elevationPoint = (tilt, radius) => {
    const angle = (tilt * Math.PI) / 180;
    return {x: kElevationX + radius * Math.cos(angle), y: -radius * Math.sin(angle)};
};

function elevationSector(from, to, radius) {
    const start = elevationPoint(from, radius);
    const end = elevationPoint(to, radius);
    return (
        `M ${kElevationX} 0 L ${start.x.toFixed(2)} ${start.y.toFixed(2)} A ${radius} ${radius} 0 ` +
        `${to - from > 180 ? 1 : 0} 0 ${end.x.toFixed(2)} ${end.y.toFixed(2)} Z`
    );
}

export function createPlan(panel) {
    const limits = s('path', {class: 'limits'});
    const wedge = s('path', {class: 'wedge'});
    const axis = s('line', {class: 'sight', x1: 0, y1: 0});
    const target = s('line', {class: 'target', x1: 0, y1: 0});
    const presets = s('g', {class: 'plan-presets'});
    const reach = s('path', {class: 'tilt-range'});
    const tiltWedge = s('path', {class: 'wedge'});
    const tiltAxis = s('line', {class: 'sight', x1: kElevationX, y1: 0});
    const upper = s('text', {class: 'mark'});
    const lower = s('text', {class: 'mark'});
    const title = s('title', {});
    const drawing = s(
        'svg',
        {viewBox: '-104 -104 344 208', class: 'plan', role: 'img'},
        title,
        ring(),
        limits,
        wedge,
        target,
        axis,
        presets,
        s('circle', {r: 4, class: 'hub'}),
        reach,
        tiltWedge,
        s('line', {x1: kElevationX, y1: 0, x2: kElevationX + kElevationRadius + 8, y2: 0, class: 'horizon'}),
        tiltAxis,
        s('circle', {cx: kElevationX, cy: 0, r: 4, class: 'hub'}),
        upper,
        lower,
        s('text', {x: kElevationX - 8, y: 0, class: 'mark side'}, 'Tilt'),
    );
    const note = h('p', {class: 'note'});
    const element = h(
        'section',
        {class: 'card plan-card', 'aria-label': 'Plan'},
        h('header', {class: 'card-head'}, h('h2', {}, 'Plan'), note),
        drawing,
    );
    let shownPresets = '';

    drawing.addEventListener('click', (event) => {
        const matrix = drawing.getScreenCTM();
        if (!matrix || panel.view?.pan === undefined || panel.view?.pan === null) {
            return;
        }
        const at = new DOMPoint(event.clientX, event.clientY).matrixTransform(matrix.inverse());
        const distance = Math.hypot(at.x, at.y);
        if (distance > 8 && distance < kOuter + 16) {
            const pan = Math.min(Number(bearing((Math.atan2(at.x, -at.y) * 180) / Math.PI).toFixed(1)), 359.9);
            panel.act({action: 'to', axes: {pan}, speed: panel.speed()});
        }
    });

    function line(node, from, point) {
        setAttribute(node, 'x2', (from + point.x).toFixed(2));
        setAttribute(node, 'y2', point.y.toFixed(2));
    }

    function updatePresets(state) {
        const stored = presetsOf(state).slice(0, 40);
        const key = JSON.stringify(stored);
        if (key === shownPresets) {
            return;
        }
        shownPresets = key;
        presets.replaceChildren(
            ...stored.map((preset) => {
                const {x, y} = planPoint(preset.pan, kPresetRing);
                return s(
                    'g',
                    {},
                    s(
                        'title',
                        {},
                        `${preset.number} ${preset.name}: ${preset.pan.toFixed(1)}°, ${preset.tilt.toFixed(1)}°`,
                    ),
                    s('circle', {cx: x, cy: y, r: 8.5}),
                    s('text', {x, y}, preset.number),
                );
            }),
        );
    }

    function update() {
        const {view, state} = panel;
        const moves = view !== null && view.pan !== null && view.pan !== undefined;
        element.hidden = !moves;
        if (!moves) {
            return;
        }
        const field = Math.min(view.hfov ?? 0, 180);
        wedge.setAttribute(
            'd',
            sectorPath(view.pan - Math.max(field, 1.5) / 2, view.pan + Math.max(field, 1.5) / 2, 0, kReach),
        );
        line(axis, 0, planPoint(view.pan, kReach));
        const goal = state?.services?.positioning
            ? Object.values(state.services.positioning.targets)[0]?.pan?.target
            : null;
        target.toggleAttribute('hidden', goal === null || goal === undefined);
        if (goal !== null && goal !== undefined) {
            line(target, 0, planPoint(goal / 1000, kOuter));
        }
        const panLimits = limitsOf(state, 'pan');
        limits.setAttribute(
            'd',
            panLimits?.limited ? sectorPath(panLimits.high, panLimits.low + 360, kReach, kOuter) : '',
        );
        updatePresets(state);
        const tilt = limitsOf(state, 'tilt');
        if (tilt) {
            reach.setAttribute('d', elevationSector(tilt.low, tilt.high, kElevationRadius));
            for (const [node, value] of [
                [upper, tilt.high],
                [lower, tilt.low],
            ]) {
                const {x, y} = elevationPoint(value, kElevationRadius + 12);
                setAttribute(node, 'x', x.toFixed(1));
                setAttribute(node, 'y', y.toFixed(1));
                setText(node, `${value.toFixed(0)}°`);
            }
        }
        const half = Math.max(view.vfov ?? 0, 1.5) / 2;
        tiltWedge.setAttribute('d', elevationSector(view.tilt - half, view.tilt + half, kElevationRadius));
        line(tiltAxis, kElevationX, {
            x: elevationPoint(view.tilt, kElevationRadius).x - kElevationX,
            y: elevationPoint(view.tilt, kElevationRadius).y,
        });
        const current = panel.isCurrent();
        drawing.classList.toggle('stale', !current);
        setText(note, current ? `${view.pan.toFixed(1)}° · ${view.tilt.toFixed(1)}°` : 'not current');
        setText(
            title,
            `${current ? 'Bearing' : 'Not current. Last known bearing'} ${view.pan.toFixed(1)} degrees, tilt ` +
                `${view.tilt.toFixed(1)} degrees, field of view ${(view.hfov ?? 0).toFixed(1)} degrees`,
        );
    }
    return {element, update};
}
