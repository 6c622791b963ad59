// SPDX-License-Identifier: Apache-2.0
// Tests of the page's modules that need no camera. They run in the browser; the result is a list of failures.
import {axesOf, limitsOf, presetsOf} from './camera_state.js';
import {h, visible} from './dom.js';
import {bearing, directionAt, dragSpeed, placeOf, sectorPath, turnBetween} from './geometry.js';
import {HeldMoves} from './moves.js';
import {ageText, BoundedList, durationText, jsonLines, wordFilter} from './records.js';

const tests = {};
const failures = [];
let current = '';

function check(what, actual, expected) {
    if (JSON.stringify(actual) !== JSON.stringify(expected)) {
        failures.push(`${current}: ${what}: ${JSON.stringify(actual)} instead of ${JSON.stringify(expected)}`);
    }
}

function near(what, actual, expected, tolerance = 1e-6) {
    if (!(Math.abs(actual - expected) <= tolerance)) {
        failures.push(`${current}: ${what}: ${actual} instead of ${expected}`);
    }
}

const kView = {pan: 350, tilt: -20, horizontal: 60, vertical: 36};

tests.theCentreOfThePictureIsWhereTheCameraLooks = () => {
    const {pan, tilt} = directionAt(kView, 0.5, 0.5);
    near('pan', pan, 350);
    near('tilt', tilt, -20);
};

tests.theEdgesOfALevelPictureAreHalfAFieldAway = () => {
    const level = {...kView, pan: 10, tilt: 0};
    near('left', directionAt(level, 0, 0.5).pan, 340);
    near('right', directionAt(level, 1, 0.5).pan, 40);
    near('top', directionAt(level, 0.5, 0).tilt, 18);
    near('bottom', directionAt(level, 0.5, 1).tilt, -18);
};

tests.aDirectionAndItsPlaceAreInverse = () => {
    for (const tilt of [-85, -40, 0, 19]) {
        for (const [x, y] of [
            [0.1, 0.2],
            [0.5, 0.9],
            [0.99, 0.4],
            [0.3, 0.01],
        ]) {
            const view = {...kView, tilt};
            const direction = directionAt(view, x, y);
            const place = placeOf(view, direction.pan, direction.tilt);
            near(`x at tilt ${tilt}`, place.x, x);
            near(`y at tilt ${tilt}`, place.y, y);
        }
    }
    check('behind the camera', placeOf({...kView, tilt: 0}, 170, 0), null);
};

tests.bearingsStayInTheCircle = () => {
    check('negative', bearing(-10), 350);
    check('full turn', bearing(360), 0);
    check('across north', turnBetween(350, 10), 20);
    check('back across north', turnBetween(10, 350), -20);
};

tests.theSpeedOfADragGrowsWithTheDistance = () => {
    check('dead zone', dragSpeed(0.03, 60, 80), 0);
    const speeds = [0.05, 0.2, 0.5, 0.8, 1].map((distance) => dragSpeed(distance, 60, 80));
    check(
        'monotone',
        speeds,
        [...speeds].sort((one, other) => one - other),
    );
    check('slowest', speeds[0], 1);
    check('one field of view per second', speeds.at(-1), 95);
    check('left', dragSpeed(-1, 60, 80), -95);
    check('beyond the end', dragSpeed(7, 60, 80), 95);
    check('never above the fastest', dragSpeed(1, 120, 40), 127);
    check('slow at high zoom', dragSpeed(1, 2.1, 80), 3);
};

tests.aSectorOfAFullTurnIsDrawn = () => {
    check('finite', sectorPath(0, 360, 0, 10).includes('NaN'), false);
    check('large arc', sectorPath(0, 270, 0, 10).includes('A 10 10 0 1 1'), true);
    check('small arc across north', sectorPath(350, 10, 0, 10).includes('A 10 10 0 0 1'), true);
};

tests.theFilterWantsAllWordsAndNoneWithAMinus = () => {
    const text = '11:02:03.004 127.0.0.1:4711 SET positionPan 02 40 28 23 to 90.00°';
    check('empty', wordFilter('')(text), true);
    check('all words', wordFilter('set POSITIONPAN')(text), true);
    check('one is missing', wordFilter('set positionTilt')(text), false);
    check('unwanted', wordFilter('set -positionpan')(text), false);
    check('unwanted elsewhere', wordFilter('set -GET')(text), true);
    check('a lone minus', wordFilter('-')(text), true);
};

tests.aBoundedListDropsTheOldest = () => {
    const list = new BoundedList(100);
    for (let i = 0; i < 1000; ++i) {
        list.add(i);
    }
    check('newest', list.entries.at(-1), 999);
    check('bounded', list.entries.length <= 110, true);
    check('all accounted for', list.entries.length + list.dropped, 1000);
};

tests.recordsAreJsonLines = () => {
    check('lines', jsonLines([{a: 1}, {b: '\n'}]), '{"a":1}\n{"b":"\\n"}\n');
    check('none', jsonLines([]), '');
};

tests.timesAreReadable = () => {
    check('age', [0, 5000, 600000, 3 * 3600000].map(ageText), ['now', '5 s ago', '10 min ago', '3 h ago']);
    check('duration', [0.812, 12.4, 1234].map(durationText), ['0.81 ms', '12 ms', '1.23 s']);
};

tests.unseenCharactersAreShown = () => {
    for (const [text, shown] of [
        ['\x1b[2J\0', '\\u001b[2J\\u0000'],
        ['a\u202eb\ufeff', 'a\\u202eb\\ufeff'],
        ['line\n\ttab', 'line\n\ttab'],
        ['5\u00a0° – ü 😀', '5\u00a0° – ü 😀'],
    ]) {
        check('visible', visible(text), shown);
        check('text', h('p', {}, text).textContent, shown);
    }
};

tests.textsAreNeverHtml = () => {
    const element = h('p', {title: '<b>"x"</b>'}, '<img src=x onerror=alert(1)>');
    check('children', element.childElementCount, 0);
    check('text', element.textContent, '<img src=x onerror=alert(1)>');
};

const axis = (fields) => ({
    position: 0,
    minimum: 0,
    maximum: 359999,
    endless: true,
    softPosition: {enabled: false, minimum: 1000, maximum: 2000},
    ...fields,
});
const kState = {
    services: {
        positioning: {
            targets: {
                'positioning/1': {
                    pan: axis(),
                    tilt: axis({endless: false, minimum: -90000, maximum: 20000}),
                    zoom: axis(),
                },
            },
        },
        presets_tours: {
            targets: {
                'presets_tours/1': {
                    presets: [
                        {number: 7, name: 'b', pan: 90000, tilt: -5000, zoom: 20},
                        {number: 2, name: 'a', pan: 0, tilt: 0, zoom: 10},
                    ],
                },
            },
        },
    },
};

tests.theStateTellsAxesLimitsAndPresets = () => {
    check('axes', axesOf(kState), ['pan', 'tilt', 'zoom']);
    check('no state', axesOf(null), []);
    check('endless pan', limitsOf(kState, 'pan'), {low: 0, high: 359.999, limited: false});
    check('tilt', limitsOf(kState, 'tilt'), {low: -90, high: 20, limited: true});
    check(
        'presets',
        presetsOf(kState).map(({number, pan, zoom}) => [number, pan, zoom]),
        [
            [2, 0, 1],
            [7, 90, 2],
        ],
    );
};

const pause = (milliseconds) =>
    new Promise((resolve) => {
        setTimeout(resolve, milliseconds);
    });

// Sends take a while, as over a network. Each entry is an action with its axes.
function recorder(milliseconds) {
    const sent = [];
    const moves = new HeldMoves(async (action) => {
        sent.push([action.action, action.axes]);
        await pause(milliseconds);
        return true;
    });
    return {sent, moves};
}

tests.aHeldMoveEndsWithAStop = async () => {
    const {sent, moves} = recorder(5);
    moves.hold('drag', {pan: 40, tilt: 0});
    await pause(250);
    moves.release('drag');
    await pause(50);
    check('sent', sent, [
        ['towards', {pan: 40}],
        ['stop', ['pan']],
    ]);
};

tests.aReleaseDuringARequestStopsAgainAfterIt = async () => {
    const {sent, moves} = recorder(200);
    moves.hold('drag', {pan: 40});
    await pause(50);
    moves.release('drag');
    await pause(400);
    check('sent', sent, [
        ['towards', {pan: 40}],
        ['stop', ['pan']],
        ['stop', ['pan']],
    ]);
};

tests.onlyTheNewestSpeedIsSent = async () => {
    const {sent, moves} = recorder(150);
    for (const speed of [10, 20, 30, 40]) {
        moves.hold('drag', {pan: speed});
        await pause(20);
    }
    await pause(600);
    check('first and newest', sent.length <= 3 && sent.at(-1), ['towards', {pan: 40}]);
    moves.release('drag');
    await pause(50);
};

tests.aLostFocusEndsAllMoves = async () => {
    const {sent, moves} = recorder(5);
    moves.hold('one', {pan: 40});
    moves.hold('other', {zoom: 10});
    await pause(250);
    window.dispatchEvent(new Event('blur'));
    await pause(50);
    check(
        'stopped',
        sent
            .filter(([action]) => action === 'stop')
            .flatMap(([, axes]) => axes)
            .sort(),
        ['pan', 'zoom'],
    );
    check('active', moves.active, false);
};

for (const [name, test] of Object.entries(tests)) {
    current = name;
    try {
        await test();
    } catch (error) {
        failures.push(`${name}: ${error}`);
    }
}
window.testResult = {count: Object.keys(tests).length, failures};
