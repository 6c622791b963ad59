// SPDX-License-Identifier: Apache-2.0
// The table of objects: values, meanings, and who has read and written them last.
import {flash, h, setAttribute, setText} from './dom.js';
import {ageText, clockText, wordFilter} from './records.js';

// The table reads all objects in turn, which is no news: the last reader is somebody else.
const kColumns = [
    ['Object'],
    ['OID'],
    ['Value'],
    ['Meaning'],
    ['As of', 'When this table has read the value'],
    ['Last read', 'By whom, apart from this table'],
    ['Last written', 'By whom'],
];

function makeRow(panel, object) {
    const cells = {
        value: h('td', {class: 'octets'}),
        meaning: h('td', {class: 'meaning'}),
        age: h('td', {class: 'age'}),
        asked: h('td', {class: 'when', 'data-column': 'Read'}),
        written: h('td', {class: 'when', 'data-column': 'Written'}),
    };
    const pick = h(
        'button',
        {
            type: 'button',
            class: 'opener',
            title: 'Take into the form',
            on: {click: () => panel.pickObject(object.name)},
        },
        object.name,
    );
    const row = h(
        'tr',
        {},
        h(
            'th',
            {scope: 'row'},
            pick,
            object.access === 'read-write' ? h('span', {class: 'tag', title: 'read-write'}, 'rw') : null,
        ),
        h('td', {class: 'oid'}, object.oid),
        Object.values(cells),
    );
    return {row, cells, object: null, received: 0};
}

function meaningText(object) {
    if (object.missing) {
        return 'not on this camera';
    }
    if (object.problem) {
        return `${object.problem}; before: ${object.meaning || object.value || 'nothing'}`;
    }
    return object.meaning === object.value ? '' : object.meaning;
}

function accessText({time, by, as}) {
    return `${clockText(Date.parse(time)).slice(0, 8)} by ${by || 'an unknown manager'}${as ? ` (${as})` : ''}`;
}

function fillAccess(cell, access) {
    setText(cell, access ? accessText(access) : '');
    const {value, meaning} = access ?? {};
    setAttribute(cell, 'title', access ? (meaning && meaning !== value ? `${value}: ${meaning}` : value) : null);
}

function fill(entry, object) {
    const {cells} = entry;
    const old = entry.object;
    entry.object = object;
    entry.received = Date.now();
    setText(cells.value, object.value || (object.missing ? '' : '–'));
    setText(cells.meaning, meaningText(object));
    fillAccess(cells.asked, object.asked);
    fillAccess(cells.written, object.written);
    if (old && (old.value !== object.value || old.problem !== object.problem)) {
        flash(cells.value);
        flash(cells.meaning);
    }
    if (old && old.written?.time !== object.written?.time) {
        flash(cells.written);
    }
}

// The age grows between the server's events, and must not look current when they stop.
function showAge(entry, linkUp) {
    const {object, cells, received, row} = entry;
    const age = (object.ageMs ?? 0) + Date.now() - received;
    const stale = object.stale || object.problem !== '' || !linkUp;
    row.classList.toggle('stale', stale && !object.missing);
    row.classList.toggle('missing', object.missing);
    const when = object.read ? ageText(age) : 'never';
    setText(cells.age, object.missing ? '' : stale && object.read ? `not current: ${when}` : when);
}

export function createObjects(panel) {
    const rows = new Map();
    const body = h('tbody', {});
    const search = h('input', {
        type: 'search',
        placeholder: 'Filter objects',
        'aria-label': 'Filter objects',
        autocomplete: 'off',
        spellcheck: false,
    });
    const name = h('input', {
        list: 'object-names',
        'aria-label': 'Object',
        placeholder: 'Object',
        autocomplete: 'off',
        spellcheck: false,
    });
    const names = h('datalist', {id: 'object-names'});
    const value = h('input', {
        'aria-label': 'Value: a number, or octets in hexadecimal',
        placeholder: 'Number or hex octets',
        autocomplete: 'off',
        spellcheck: false,
    });
    const form = h(
        'form',
        {
            class: 'set-object',
            'aria-label': 'Read or write an object',
            on: {
                submit: (event) => {
                    event.preventDefault();
                    if (name.value && value.value) {
                        panel.act({action: 'set', object: name.value.trim(), value: value.value.trim()});
                    }
                },
            },
        },
        name,
        names,
        h(
            'button',
            {type: 'button', on: {click: () => name.value && panel.act({action: 'get', object: name.value.trim()})}},
            'Read',
        ),
        value,
        h('button', {type: 'submit'}, 'Set'),
    );
    const table = h(
        'table',
        {class: 'objects'},
        h('caption', {class: 'offscreen'}, 'Objects of the camera'),
        h(
            'thead',
            {},
            h(
                'tr',
                {},
                kColumns.map(([text, title]) => h('th', {scope: 'col', title}, text)),
            ),
        ),
        body,
    );
    let matches = wordFilter('');

    function applyFilter() {
        for (const {row, object} of rows.values()) {
            row.hidden = !matches(`${object.name} ${object.oid} ${object.meaning}`);
        }
    }
    search.addEventListener('input', () => {
        matches = wordFilter(search.value);
        applyFilter();
    });

    panel.connection.addEventListener('objects', (event) => {
        let added = false;
        for (const object of event.detail.objects) {
            let entry = rows.get(object.oid);
            if (!entry) {
                entry = makeRow(panel, object);
                rows.set(object.oid, entry);
                body.append(entry.row);
                names.append(h('option', {value: object.name}));
                added = true;
            }
            fill(entry, object);
            showAge(entry, panel.connection.up);
        }
        if (added) {
            applyFilter();
        }
    });
    return {
        element: h(
            'div',
            {class: 'objects-view'},
            h('div', {class: 'tools'}, search, h('span', {class: 'spring'}), form),
            h('div', {class: 'scroller', tabindex: 0, role: 'region', 'aria-label': 'Objects'}, table),
        ),
        pick(object) {
            name.value = object;
            value.value = '';
            value.focus();
        },
        tick() {
            for (const entry of rows.values()) {
                showAge(entry, panel.connection.up);
            }
        },
    };
}
