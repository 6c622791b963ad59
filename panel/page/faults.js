// SPDX-License-Identifier: Apache-2.0
// Failures and delays of the camera's services.
import {h, labelled, setText} from './dom.js';
import {group, option, setOptions} from './simulator_parts.js';

function faultText(fault) {
    const times = fault.times === 'always' || fault.times === undefined ? 'always' : `${fault.times} times`;
    const effect =
        fault.milliseconds !== undefined ? `${fault.milliseconds} ms late` : `fails with status ${fault.status}`;
    return `${fault.service} ${fault.operation}: ${effect}, ${times}`;
}

/** Makes the list of failures and delays, and the form that adds one. */
export function faults(panel) {
    const kind = h('select', {}, option('delay', 'Delay'), option('fail', 'Failure'));
    const service = h('select', {});
    const operation = h('input', {
        value: '*',
        title: 'Name of an operation, or * for all',
        required: true,
        spellcheck: false,
        autocomplete: 'off',
    });
    const amount = h('input', {type: 'number', min: 0, max: 600000, value: '3000', required: true});
    const amountField = labelled('Milliseconds', amount);
    const times = h('input', {type: 'number', min: 1, placeholder: 'always', title: 'Empty for all calls'});
    kind.addEventListener('change', () => {
        const isDelay = kind.value === 'delay';
        setText(amountField.firstChild, isDelay ? 'Milliseconds' : 'Status, 1 to 6');
        amount.value = isDelay ? '3000' : '1';
    });
    const list = h('ul', {class: 'faults'});
    const none = h('p', {class: 'note'}, 'No failures or delays.');
    const form = h(
        'form',
        {
            class: 'fault-form',
            'aria-label': 'Add a failure or delay',
            on: {
                submit: (event) => {
                    event.preventDefault();
                    panel.control({
                        command: kind.value,
                        service: service.value,
                        operation: operation.value.trim(),
                        [kind.value === 'delay' ? 'milliseconds' : 'status']: Number(amount.value),
                        times: times.value === '' ? 'always' : Number(times.value),
                    });
                },
            },
        },
        labelled('Fault', kind),
        labelled('Service', service),
        labelled('Operation', operation),
        amountField,
        labelled('Calls', times),
        h('button', {type: 'submit'}, 'Add'),
    );
    const clear = h(
        'button',
        {type: 'button', class: 'quiet', on: {click: () => panel.control({command: 'clear'})}},
        'Clear all',
    );
    const element = group('Failures and delays', form, list, none, clear);
    let shown = null;
    return {
        element,
        update() {
            if (panel.state) {
                setOptions(service, [...Object.keys(panel.state.services), 'directory']);
            }
            const present = [...(panel.state?.failures ?? []), ...(panel.state?.delays ?? [])];
            const key = JSON.stringify(present);
            if (key === shown) {
                return;
            }
            shown = key;
            none.hidden = present.length > 0;
            clear.hidden = present.length === 0;
            list.replaceChildren(
                ...present.map((fault) =>
                    h(
                        'li',
                        {},
                        h('span', {}, faultText(fault)),
                        h(
                            'button',
                            {
                                type: 'button',
                                class: 'quiet',
                                'aria-label': `Clear ${fault.service} ${fault.operation}`,
                                on: {
                                    click: () => {
                                        panel.control({
                                            command: 'clear',
                                            service: fault.service,
                                            operation: fault.operation,
                                        });
                                    },
                                },
                            },
                            'Clear',
                        ),
                    ),
                ),
            );
        },
    };
}
