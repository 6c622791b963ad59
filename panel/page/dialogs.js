// SPDX-License-Identifier: Apache-2.0
// The list of keys, and questions before commands with consequences.
import {h} from './dom.js';

const kGlobalKeys = [
    ['Esc', 'Stop pan, tilt, zoom, focus and iris, from anywhere'],
    ['?', 'This list'],
    ['P', 'To the picture'],
    ['L', 'To the log’s filter'],
    ['1 2 3', 'Log, objects, camera’s side'],
];
const kPictureKeys = [
    ['← → ↑ ↓', 'Move while pressed; with Shift at full speed'],
    ['+ −', 'Zoom while pressed; also Page up, Page down'],
    ['F N', 'Focus far, near'],
    ['O C', 'Iris open, close'],
];
const kPointer = [
    ['Click', 'Centre this place'],
    ['Drag', 'Move; the farther, the faster'],
    ['Wheel', 'Zoom'],
];

function list(title, keys) {
    return h(
        'section',
        {},
        h('h3', {}, title),
        h(
            'dl',
            {class: 'keys'},
            keys.map(([key, effect]) => [
                h(
                    'dt',
                    {},
                    key.split(' ').map((each) => h('kbd', {}, each)),
                ),
                h('dd', {}, effect),
            ]),
        ),
    );
}

const kSetting = 'quarnsnmp-single-keys';

function readSetting() {
    try {
        return localStorage.getItem(kSetting) !== 'off';
    } catch {
        return true; // a browser may forbid the storage
    }
}

/** Makes the list of keys. `singleKeys()` tells whether keys without a modifier are on. */
export function createHelp() {
    let singleKeys = readSetting();
    const box = h('input', {
        type: 'checkbox',
        checked: singleKeys,
        on: {
            change: () => {
                singleKeys = box.checked;
                try {
                    localStorage.setItem(kSetting, singleKeys ? 'on' : 'off');
                } catch {
                    // lasts until the page is left
                }
            },
        },
    });
    const dialog = h(
        'dialog',
        {'aria-labelledby': 'help-title'},
        h('h2', {id: 'help-title'}, 'Keys and gestures'),
        list('Everywhere', kGlobalKeys),
        list('While the picture has the focus', kPictureKeys),
        list('On the picture', kPointer),
        h('label', {class: 'inline'}, box, 'Keys without a modifier (? P L 1 2 3) are on'),
        h('form', {method: 'dialog', class: 'dialog-end'}, h('button', {autofocus: true}, 'Close')),
    );
    document.body.append(dialog);
    return {open: () => dialog.open || dialog.showModal(), singleKeys: () => singleKeys};
}

/** Asks a question. Resolves to whether the answer is yes. */
export function ask(question, consequence, yes) {
    return new Promise((resolve) => {
        const dialog = h(
            'dialog',
            {'aria-labelledby': 'question'},
            h('h2', {id: 'question'}, question),
            h('p', {}, consequence),
            h(
                'form',
                {method: 'dialog', class: 'dialog-end'},
                h('button', {value: 'no', autofocus: true}, 'Cancel'),
                h('button', {value: 'yes', class: 'primary'}, yes),
            ),
        );
        dialog.addEventListener('close', () => {
            dialog.remove();
            resolve(dialog.returnValue === 'yes');
        });
        document.body.append(dialog);
        dialog.showModal();
    });
}
