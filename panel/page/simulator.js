// SPDX-License-Identifier: Apache-2.0
// The camera's side: what happens to the simulated camera, under the names of quarnsnmp-camctl.
import {firstTarget} from './camera_state.js';
import {copyButton, h, setAttribute, setText} from './dom.js';
import {faults} from './faults.js';
import {scenarios} from './scenarios.js';
import {group} from './simulator_parts.js';
import {createToggles} from './toggles.js';

/** A form that sets one field of the camera, and shows its present value. */
function fieldForm(panel, {title, target, field, unit, toField, fromField}) {
    const shown = h('output', {class: 'field-value'});
    const input = h('input', {
        type: 'number',
        step: 'any',
        required: true,
        'aria-label': `${title}${unit ? ` in ${unit}` : ''}`,
    });
    const element = h(
        'form',
        {
            class: 'field',
            on: {
                submit: (event) => {
                    event.preventDefault();
                    panel.control({command: 'set', target, field, value: toField(Number(input.value))});
                    input.value = '';
                },
            },
        },
        h('span', {class: 'field-name', title: `${target} ${field}`}, title),
        shown,
        input,
        h('button', {type: 'submit', 'aria-label': `Set ${title}`}, 'Set'),
    );
    return {
        element,
        update() {
            const fields = panel.state?.services?.[target.split('/')[0]]?.targets?.[target];
            element.hidden = !fields;
            if (fields) {
                setText(shown, panel.isCurrent() ? `${fromField(fields[field])}${unit ? ` ${unit}` : ''}` : '–');
            }
        },
    };
}

const kFields = [
    {
        title: 'Temperature',
        target: 'temperature/1',
        field: 'temperature',
        unit: '°C',
        toField: (value) => Math.round(value * 1000),
        fromField: (value) => (value / 1000).toFixed(1),
    },
    {title: 'Power state', target: 'power/1', field: 'powerState', unit: '', toField: Math.round, fromField: String},
    {
        title: 'Voltage state',
        target: 'power/1',
        field: 'voltageState',
        unit: '',
        toField: Math.round,
        fromField: String,
    },
    {
        title: 'Light: iris when automatic',
        target: 'iris/1',
        field: 'automaticPosition',
        unit: '',
        toField: Math.round,
        fromField: String,
    },
    ...['lens_focus/1', 'focus_stepper/1'].map((target) => ({
        title: 'Scene: sharp focus at',
        target,
        field: 'sharpPosition',
        unit: '',
        toField: Math.round,
        fromField: String,
    })),
];

function sensors(panel) {
    const forms = kFields.map((field) => fieldForm(panel, field));
    return {
        element: group(
            'Sensors and scene',
            forms.map((form) => form.element),
        ),
        update: () => forms.forEach((form) => form.update()),
    };
}

function inputs(panel) {
    const toggles = createToggles(panel, {
        service: 'alarm',
        title: 'Input',
        words: ['idle', 'active'],
        isOn: ({state}) => state !== 0,
        turn: (number, on, target) => panel.control({command: 'set', target, field: 'state', value: Number(on)}),
    });
    const element = group('Alarm inputs', toggles.element);
    return {
        element,
        update() {
            toggles.update();
            element.hidden = toggles.count === 0;
        },
    };
}

function services(panel) {
    const body = h('tbody', {});
    const element = group(
        'Services',
        h('table', {class: 'services'}, h('caption', {class: 'offscreen'}, 'Services of the camera'), body),
    );
    const rows = new Map();
    return {
        element,
        update() {
            for (const [name, service] of Object.entries(panel.state?.services ?? {})) {
                if (!rows.has(name)) {
                    const state = h('td', {});
                    const button = h('button', {
                        type: 'button',
                        class: 'quiet',
                        on: {
                            click: () => {
                                panel.control({command: button.dataset.command, service: name});
                            },
                        },
                    });
                    rows.set(name, {state, button});
                    body.append(h('tr', {}, h('th', {scope: 'row'}, name), state, h('td', {}, button)));
                }
                const {state, button} = rows.get(name);
                setText(state, !panel.isCurrent() ? 'unknown' : service.up ? 'up' : 'down');
                state.className = !panel.isCurrent() ? 'unknown' : service.up ? 'good' : 'bad';
                button.dataset.command = service.up ? 'down' : 'up';
                setText(button, service.up ? 'Take down' : 'Bring up');
                setAttribute(button, 'aria-label', `${service.up ? 'Take down' : 'Bring up'} ${name}`);
            }
        },
    };
}

function restart(panel) {
    const note = h('p', {class: 'note'});
    const button = h(
        'button',
        {
            type: 'button',
            on: {
                click: async () => {
                    if (
                        await panel.confirm(
                            'Restart the camera over SNMP?',
                            'Its services go away for some seconds, and moves end.',
                            'Restart',
                        )
                    ) {
                        panel.act({action: 'reboot'});
                    }
                },
            },
        },
        'Restart the camera',
    );
    return {
        element: group('Restart', button, note),
        update() {
            const fields = firstTarget(panel.state, 'device_management');
            button.disabled = !fields || panel.state?.rebooting;
            setText(
                note,
                panel.state?.rebooting
                    ? 'The camera restarts now.'
                    : fields
                      ? `Sets rebootDevice over SNMP. Restarts so far: ${fields.reboots}; each takes ${fields.rebootSeconds}\u00a0s.`
                      : '',
            );
        },
    };
}

export function createSimulator(panel) {
    let commandLine = '';
    const line = h('code', {});
    const message = h(
        'p',
        {class: 'note', role: 'status'},
        'The commands of this tab do not use SNMP, except the restart. Each shows the line that does the same.',
    );
    panel.connection.addEventListener('hello', ({detail}) => {
        commandLine ||= `${detail.camctl} state`;
        setText(line, commandLine);
    });
    const parts = [inputs, sensors, services, faults, scenarios, restart].map((make) => make(panel));
    const element = h(
        'div',
        {class: 'simulator'},
        h(
            'div',
            {class: 'control-line'},
            h(
                'div',
                {class: 'line'},
                line,
                copyButton('the quarnsnmp-camctl line', () => commandLine),
            ),
            message,
        ),
        h(
            'div',
            {class: 'groups'},
            parts.map((part) => part.element),
        ),
    );
    return {
        element,
        show(answer) {
            if (answer.line) {
                commandLine = answer.line;
                setText(line, commandLine);
            }
            setText(message, answer.message);
            message.className = answer.ok ? 'note' : 'problem';
        },
        update: () => parts.forEach((part) => part.update()),
    };
}
