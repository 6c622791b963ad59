// SPDX-License-Identifier: Apache-2.0
// The live picture: a click centres, a drag moves, the wheel zooms, and keys do the same.
import {h, setText} from './dom.js';
import {directionAt, dragSpeed, kFullVelocity} from './geometry.js';
import {Frames} from './frames.js';
import {ageText} from './records.js';

const kClickSlop = 6; // pixels that a click may wander
const kZoomStep = 1.25;
const kWheelPauseMs = 180;
const kFastest = 127;
const kFastestFrames = 30;
const kOldFrameMs = 3000;

// Shift moves at full speed.
const kArrows = {ArrowLeft: ['pan', -1], ArrowRight: ['pan', 1], ArrowUp: ['tilt', 1], ArrowDown: ['tilt', -1]};
const kLensKeys = {
    '+': ['zoom', 1],
    '=': ['zoom', 1],
    PageUp: ['zoom', 1],
    '-': ['zoom', -1],
    PageDown: ['zoom', -1],
    f: ['focus', 1],
    n: ['focus', -1],
    o: ['iris', 1],
    c: ['iris', -1],
};

const bearingText = (pan, tilt) => `${pan.toFixed(1)}° / ${tilt.toFixed(1)}°`;

function reticle() {
    return h('span', {class: 'reticle', 'aria-hidden': 'true'});
}

export function createPicture(panel) {
    const canvas = h('canvas', {'aria-hidden': 'true'});
    const pointer = h('span', {class: 'pointer-note', hidden: true, 'aria-hidden': 'true'});
    const vector = h('span', {class: 'vector', hidden: true, 'aria-hidden': 'true'});
    const veil = h('p', {class: 'veil', hidden: true});
    const reading = h('p', {class: 'reading'});
    const hint = h('p', {class: 'hint', 'aria-hidden': 'true'}, 'Click: centre · Drag: move · Wheel: zoom');
    const frame = h(
        'div',
        {
            class: 'frame',
            id: 'picture',
            tabindex: 0,
            role: 'application',
            'aria-roledescription': 'camera picture',
            'aria-describedby': 'picture-help',
        },
        canvas,
        reticle(),
        vector,
        pointer,
        veil,
        hint,
    );
    const element = h(
        'section',
        {class: 'picture', 'aria-label': 'Live picture'},
        frame,
        reading,
        h(
            'p',
            {class: 'offscreen', id: 'picture-help'},
            'Arrow keys move the camera while they are pressed, plus and minus zoom, Escape stops.',
        ),
    );

    // A hidden page does not watch, and the server draws nothing for it.
    const frames = new Frames(canvas, panel.camera);
    const watch = () => frames.run(!document.hidden && panel.connection.up);
    document.addEventListener('visibilitychange', watch);
    panel.connection.addEventListener('link', watch);

    const place = (event) => {
        const box = frame.getBoundingClientRect();
        return {
            x: (event.clientX - box.left) / box.width,
            y: (event.clientY - box.top) / box.height,
            width: box.width,
            height: box.height,
        };
    };
    const field = () => ({pan: 0, tilt: 0, horizontal: panel.view?.hfov ?? 60, vertical: panel.view?.vfov ?? 36});
    const canPoint = () => panel.axes().includes('pan');

    // Where the pointer is. Its bearing changes when the camera moves.
    let pointed = null;

    function showPointer() {
        const at = pointed;
        const view = panel.view;
        pointer.hidden = !at || !canPoint() || !panel.isCurrent() || drag?.moved;
        if (pointer.hidden) {
            return;
        }
        const {pan, tilt} = directionAt(
            {pan: view.pan, tilt: view.tilt, horizontal: view.hfov, vertical: view.vfov},
            at.x,
            at.y,
        );
        setText(pointer, bearingText(pan, tilt));
        pointer.style.left = `${at.x * 100}%`;
        pointer.style.top = `${at.y * 100}%`;
        pointer.classList.toggle('flip', at.x > 0.8);
    }

    let drag = null;

    function showVector(at) {
        vector.hidden = !drag?.moved;
        if (!drag?.moved) {
            return;
        }
        const right = (at.x - drag.from.x) * at.width;
        const down = (at.y - drag.from.y) * at.height;
        vector.style.left = `${drag.from.x * 100}%`;
        vector.style.top = `${drag.from.y * 100}%`;
        vector.style.width = `${Math.hypot(right, down)}px`;
        vector.style.transform = `rotate(${Math.atan2(down, right)}rad)`;
    }

    frame.addEventListener('pointerdown', (event) => {
        if (event.button !== 0 || !event.isPrimary || !canPoint()) {
            return;
        }
        frame.focus({preventScroll: true});
        frame.setPointerCapture(event.pointerId);
        drag = {from: place(event), x: event.clientX, y: event.clientY, moved: false};
    });
    frame.addEventListener('pointermove', (event) => {
        const at = place(event);
        pointed = event.pointerType === 'touch' ? null : at;
        showPointer();
        if (!drag) {
            return;
        }
        drag.moved ||= Math.hypot(event.clientX - drag.x, event.clientY - drag.y) > kClickSlop;
        showVector(at);
        if (drag.moved) {
            const reach = at.height * 0.75;
            const {horizontal, vertical} = field();
            panel.moves.hold(frame, {
                pan: dragSpeed(((at.x - drag.from.x) * at.width) / reach, horizontal, kFullVelocity.pan),
                tilt: dragSpeed(((drag.from.y - at.y) * at.height) / reach, vertical, kFullVelocity.tilt),
            });
        }
    });
    const endDrag = () => {
        drag = null;
        vector.hidden = true;
        panel.moves.release(frame);
    };
    frame.addEventListener('pointerup', (event) => {
        const click = drag && !drag.moved;
        endDrag();
        if (click) {
            const {x, y} = place(event);
            panel.act({action: 'centre', x: Number(x.toFixed(4)), y: Number(y.toFixed(4)), speed: panel.speed()});
        }
    });
    for (const type of ['pointercancel', 'lostpointercapture']) {
        frame.addEventListener(type, endDrag);
    }
    frame.addEventListener('blur', () => {
        endDrag();
        panel.moves.endAll();
    });
    frame.addEventListener('pointerleave', () => {
        pointed = null;
        showPointer();
    });
    frame.addEventListener('contextmenu', (event) => drag && event.preventDefault());

    let notches = 0;
    let wheelTimer = 0;
    function zoomBy(steps) {
        notches += steps;
        wheelTimer ||= setTimeout(() => {
            const percent = panel.zoomPercentAfter(kZoomStep ** notches);
            notches = 0;
            wheelTimer = 0;
            if (percent !== null) {
                panel.act({action: 'to', axes: {zoom: percent}, speed: panel.speed()});
            }
        }, kWheelPauseMs);
    }
    frame.addEventListener(
        'wheel',
        (event) => {
            if (event.ctrlKey || event.deltaY === 0) {
                return;
            }
            event.preventDefault();
            const lines = event.deltaMode === WheelEvent.DOM_DELTA_PIXEL ? event.deltaY / 100 : Math.sign(event.deltaY);
            zoomBy(-Math.min(Math.max(lines, -3), 3));
        },
        {passive: false},
    );

    frame.addEventListener('keydown', (event) => {
        if (event.ctrlKey || event.altKey || event.metaKey) {
            return;
        }
        const [axis, sign] = kArrows[event.key] ?? kLensKeys[event.key] ?? [];
        if (axis && panel.axes().includes(axis)) {
            event.preventDefault();
            if (!event.repeat) {
                const speed = event.shiftKey && event.key in kArrows ? kFastest : panel.speed();
                panel.moves.hold(`key ${event.code}`, {[axis]: sign * speed});
            }
        }
    });
    frame.addEventListener('keyup', (event) => panel.moves.release(`key ${event.code}`));

    function veilText() {
        if (!panel.connection.up) {
            return (
                `No connection to the panel’s server since ${ageText(Date.now() - panel.connection.since)}. ` +
                'The picture is not current.'
            );
        }
        if (panel.status === 'gone') {
            return `No signal: ${panel.cameraMessage || 'the camera is gone'}.`;
        }
        if (panel.status === 'rebooting') {
            return 'No signal: the camera restarts.';
        }
        const age = panel.status === 'up' && !panel.isCurrent() ? panel.stateAge() : 0;
        if (age > 0) {
            return `The camera does not answer. Its state is ${ageText(age).replace(' ago', ' old')}.`;
        }
        return frames.ageMs > kOldFrameMs ? `The picture is ${ageText(frames.ageMs).replace(' ago', ' old')}.` : '';
    }

    function update() {
        const text = veilText();
        veil.hidden = text === '';
        setText(veil, text);
        frame.classList.toggle('lost', !panel.connection.up);
        frame.classList.toggle('fixed', !canPoint());
        hint.hidden = !canPoint();
        showPointer();
        const view = panel.view;
        const parts = panel.state && !canPoint() ? ['Fixed camera'] : [];
        if (view?.pan !== null && view?.pan !== undefined) {
            parts.push(`Bearing ${view.pan.toFixed(2)}°`, `tilt ${view.tilt.toFixed(2)}°`);
        }
        if (view?.zoom) {
            parts.push(`zoom ${view.zoom.toFixed(1)}×`, `field of view ${view.hfov.toFixed(1)}°`);
        }
        setText(
            reading,
            panel.isCurrent()
                ? parts.join(' · ')
                : `Position unknown. ${parts.length ? `Last known: ${parts.join(' · ')}` : ''}`,
        );
        frame.setAttribute(
            'aria-label',
            panel.isCurrent() ? `Live picture. ${parts.join(', ')}` : 'Picture, not current',
        );
    }

    panel.connection.addEventListener('hello', ({detail}) => {
        frames.framesPerSecond = Math.min(detail.fps ?? 15, kFastestFrames);
        if (detail.size) {
            frame.style.aspectRatio = `${detail.size[0]} / ${detail.size[1]}`;
        }
    });
    watch();
    return {element, update, frame};
}
