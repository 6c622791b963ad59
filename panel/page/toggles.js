// SPDX-License-Identifier: Apache-2.0
// Rows of switches, one for each relay or input of the camera.
import {targetsOf} from './camera_state.js';
import {h, setAttribute, setText} from './dom.js';

/**
 * Makes a row of switches.
 * @param service  service of the camera whose targets have a switch each
 * @param title  name of one switch, which its number follows
 * @param words  texts of a switch that is off and of one that is on
 * @param isOn  tells from the fields of a target whether it is on
 * @param turn  gets the number, the wanted position and the target's ID when a person operates a switch
 * @returns {element, count, update()}; `count` is the number of switches
 */
export function createToggles(panel, {service, title, words, isOn, turn}) {
    const element = h('div', {class: 'row'});
    const buttons = [];

    function add(number, id) {
        const button = h('button', {
            type: 'button',
            class: 'toggle',
            'aria-label': `${title} ${number}`,
            on: {click: () => turn(number, button.getAttribute('aria-pressed') !== 'true', id)},
        });
        buttons.push(button);
        element.append(button);
    }

    function update() {
        const current = panel.isCurrent();
        targetsOf(panel.state, service).forEach(([id, fields], index) => {
            if (index >= buttons.length) {
                add(index + 1, id);
            }
            const on = isOn(fields);
            setText(buttons[index], `${index + 1} ${current ? words[Number(on)] : '–'}`);
            setAttribute(buttons[index], 'aria-pressed', current ? String(on) : 'mixed');
        });
    }
    return {
        element,
        get count() {
            return buttons.length;
        },
        update,
    };
}
