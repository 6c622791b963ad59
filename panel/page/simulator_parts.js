// SPDX-License-Identifier: Apache-2.0
// What the groups of the camera's side share.
import {h} from './dom.js';

/** Makes a group with a title. */
export function group(title, ...children) {
    return h('section', {class: 'group', 'aria-label': title}, h('h3', {}, title), children);
}

/** Makes an option of a list. */
export function option(value, text = value) {
    return h('option', {value}, text);
}

/** Replaces the options of a list, and keeps the choice if it still exists. */
export function setOptions(select, values) {
    const key = values.join('\n');
    if (select.dataset.key !== key) {
        const chosen = select.value;
        select.dataset.key = key;
        select.replaceChildren(...values.map((value) => option(value)));
        select.value = values.includes(chosen) ? chosen : (values[0] ?? '');
    }
}
