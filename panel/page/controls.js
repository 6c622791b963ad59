// SPDX-License-Identifier: Apache-2.0
// Buttons and fields for everything that SNMP can move and switch.
import {firstTarget, isAutomatic, presetsOf} from './camera_state.js';
import {h, labelled, setAttribute, setText} from './dom.js';
import {holdButton} from './moves.js';
import {createToggles} from './toggles.js';

const kStepDegrees = 5;
const kStepPercent = 5;

const kPad = [
    ['↖', 'left and up', {pan: -1, tilt: 1}],
    ['↑', 'up', {tilt: 1}],
    ['↗', 'right and up', {pan: 1, tilt: 1}],
    ['←', 'left', {pan: -1}],
    null,
    ['→', 'right', {pan: 1}],
    ['↙', 'left and down', {pan: -1, tilt: -1}],
    ['↓', 'down', {tilt: -1}],
    ['↘', 'right and down', {pan: 1, tilt: -1}],
];

const kDrives = [
    ['zoom', 'Zoom', ['−', 'Zoom out'], ['+', 'Zoom in']],
    ['focus', 'Focus', ['Near', 'Focus near'], ['Far', 'Focus far']],
    ['iris', 'Iris', ['Close', 'Close the iris'], ['Open', 'Open the iris']],
];

function moveButton(panel, text, label, directions) {
    const button = h('button', {type: 'button', 'aria-label': label}, text);
    const scaled = (factor) =>
        Object.fromEntries(Object.entries(directions).map(([axis, sign]) => [axis, sign * factor]));
    const step = 'pan' in directions || 'tilt' in directions ? kStepDegrees : kStepPercent;
    holdButton(
        button,
        panel.moves,
        () => scaled(panel.speed()),
        () => panel.act({action: 'by', axes: scaled(step), speed: panel.speed()}),
    );
    return button;
}

function pad(panel) {
    const buttons = kPad.map((cell) => {
        if (!cell) {
            return h(
                'button',
                {type: 'button', class: 'pad-stop', 'aria-label': 'Stop', on: {click: () => panel.stop()}},
                '■',
            );
        }
        const [arrow, name, directions] = cell;
        return moveButton(panel, arrow, `Move ${name}`, directions);
    });
    return h('div', {class: 'pad', role: 'group', 'aria-label': 'Pan and tilt'}, buttons);
}

function driveRow(panel, [axis, title, backward, forward]) {
    const value = h('output', {class: 'drive-value'});
    const automatic =
        axis === 'zoom'
            ? null
            : h(
                  'button',
                  {
                      type: 'button',
                      class: 'toggle',
                      'aria-pressed': 'false',
                      'aria-label': `Automatic ${axis}`,
                      on: {
                          click: () => panel.act({action: 'auto', feature: axis, on: !isAutomatic(panel.state, axis)}),
                      },
                  },
                  'Auto',
              );
    const element = h(
        'div',
        {class: 'drive', role: 'group', 'aria-label': title},
        h('span', {class: 'drive-name'}, title),
        moveButton(panel, backward[0], backward[1], {[axis]: -1}),
        value,
        moveButton(panel, forward[0], forward[1], {[axis]: 1}),
        automatic,
    );
    return {
        element,
        update() {
            element.hidden = !panel.axes().includes(axis);
            const percent = panel.view?.[`${axis}Percent`];
            const text =
                axis === 'zoom' && panel.view?.zoom
                    ? `${panel.view.zoom.toFixed(1)}×`
                    : Number.isFinite(percent)
                      ? `${percent.toFixed(0)} %`
                      : '';
            setText(value, panel.isCurrent() && text ? text : '–');
            if (automatic) {
                const on = isAutomatic(panel.state, axis);
                automatic.hidden = on === null;
                setAttribute(automatic, 'aria-pressed', panel.isCurrent() ? String(on === true) : 'mixed');
            }
        },
    };
}

function goForm(panel) {
    const fields = {
        pan: h('input', {type: 'number', step: 'any', min: 0, max: 359.99, inputmode: 'decimal'}),
        tilt: h('input', {type: 'number', step: 'any', min: -90, max: 90}),
        zoom: h('input', {type: 'number', step: 'any', min: 0, max: 100, inputmode: 'decimal'}),
    };
    const labels = {pan: 'Pan °', tilt: 'Tilt °', zoom: 'Zoom %'};
    const cells = Object.fromEntries(
        Object.entries(fields).map(([axis, field]) => [axis, labelled(labels[axis], field)]),
    );
    const element = h(
        'form',
        {
            class: 'go',
            'aria-label': 'Go to a position',
            on: {
                submit: (event) => {
                    event.preventDefault();
                    const given = Object.entries(fields).filter(([, field]) => field.value !== '');
                    if (given.length > 0) {
                        panel.act({
                            action: 'to',
                            axes: Object.fromEntries(given.map(([axis, field]) => [axis, Number(field.value)])),
                            speed: panel.speed(),
                        });
                    }
                },
            },
        },
        Object.values(cells),
        h('button', {type: 'submit'}, 'Go'),
    );
    return {
        element,
        update() {
            for (const [axis, cell] of Object.entries(cells)) {
                cell.hidden = !panel.axes().includes(axis);
            }
            element.hidden = Object.values(cells).every((cell) => cell.hidden);
        },
    };
}

function presets(panel) {
    const number = h('input', {type: 'number', min: 1, max: 255, value: '1', 'aria-label': 'Number of the preset'});
    const list = h('ul', {class: 'chips', 'aria-label': 'Stored presets'});
    const act = (verb, preset) => panel.act({action: 'preset', do: verb, number: preset});
    const chosen = () => (number.reportValidity() && number.value !== '' ? Number(number.value) : null);
    const both = ['go', 'store'].map((verb) =>
        h(
            'button',
            {
                type: 'button',
                on: {
                    click: () => {
                        const preset = chosen();
                        if (preset !== null) {
                            act(verb, preset);
                        }
                    },
                },
            },
            verb === 'go' ? 'Recall' : 'Store',
        ),
    );
    const element = h(
        'div',
        {class: 'presets', role: 'group', 'aria-label': 'Presets'},
        h('h3', {}, 'Presets'),
        h('div', {class: 'row'}, number, both),
        list,
    );
    let shown = '';
    return {
        element,
        update() {
            element.hidden = !panel.state?.services?.presets_tours;
            const stored = presetsOf(panel.state);
            const key = JSON.stringify(stored.map((preset) => [preset.number, preset.name]));
            if (key !== shown) {
                shown = key;
                list.replaceChildren(
                    ...stored.map((preset) =>
                        h(
                            'li',
                            {},
                            h(
                                'button',
                                {
                                    type: 'button',
                                    title: preset.name,
                                    'aria-label': `Recall preset ${preset.number}: ${preset.name}`,
                                    on: {click: () => act('go', preset.number)},
                                },
                                String(preset.number),
                            ),
                        ),
                    ),
                );
            }
        },
    };
}

function relays(panel) {
    const toggles = createToggles(panel, {
        service: 'relay',
        title: 'Relay',
        words: ['off', 'on'],
        isOn: ({state}) => (state & 1) !== 0,
        turn: (number, on) => panel.act({action: 'relay', number, on}),
    });
    const element = h(
        'div',
        {class: 'relays', role: 'group', 'aria-label': 'Relays'},
        h('h3', {}, 'Relays'),
        toggles.element,
    );
    return {
        element,
        update() {
            toggles.update();
            element.hidden = toggles.count === 0;
        },
    };
}

/** Makes the controls, and `speed()`, the speed that people chose. */
export function createControls(panel) {
    const slider = h('input', {type: 'range', min: 1, max: 127, value: '64', id: 'speed'});
    const sliderText = h('output', {for: 'speed'}, '64');
    slider.addEventListener('input', () => setText(sliderText, slider.value));
    const speed = h('div', {class: 'speed'}, h('label', {for: 'speed'}, 'Speed'), slider, sliderText);
    const padElement = pad(panel);
    const parts = [...kDrives.map((row) => driveRow(panel, row)), goForm(panel), presets(panel), relays(panel)];
    const [zoom, focus, iris, go, presetPart, relayPart] = parts;
    const element = h(
        'section',
        {class: 'card controls', 'aria-label': 'Controls'},
        padElement,
        h('div', {class: 'drives'}, zoom.element, focus.element, iris.element, speed),
        h('div', {class: 'places'}, go.element, presetPart.element, relayPart.element),
    );
    return {
        element,
        speed: () => Number(slider.value),
        update() {
            padElement.hidden = !panel.axes().includes('pan');
            speed.hidden = !firstTarget(panel.state, 'positioning') && panel.state !== null;
            for (const part of parts) {
                part.update();
            }
            // A camera without drives has nothing to control.
            element.hidden =
                panel.state !== null && [padElement, ...parts.map((part) => part.element)].every((each) => each.hidden);
        },
    };
}
