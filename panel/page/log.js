// SPDX-License-Identifier: Apache-2.0
// The log: requests to the agent from anyone, traps, the camera's events and notices of the panel.
import {copyButton, download, h, setAttribute, setText} from './dom.js';
import {valueView} from './exchange.js';
import {BoundedList, clockText, durationText, jsonLines, wordFilter} from './records.js';

const kRecords = 2000;
const kRows = 200;
const kRenderMs = 150;

const kKinds = [
    ['write', 'Writes', (record) => record.kind === 'request' && record.operation === 'SET'],
    ['read', 'Reads', (record) => record.kind === 'request' && record.operation !== 'SET'],
    ['trap', 'Traps', (record) => record.kind === 'trap'],
    ['event', 'Camera', (record) => record.kind === 'event'],
    ['notice', 'Notices', (record) => record.kind === 'notice'],
];

const kColumns = ['Time', 'From', 'What', 'Object', 'Value', 'Meaning', 'Outcome', 'Took'];

/** Returns the part of a record that a person reads and the filter searches. */
function cellsOf(record) {
    const kind = kKinds.find(([, , is]) => is(record))?.[0] ?? 'notice';
    const what = {write: 'SET', read: record.operation ?? '', trap: 'trap', event: 'camera', notice: 'panel'}[kind];
    const from = record.sender ? `${record.sender}${record.as ? ` ${record.as}` : ''}` : '';
    const outcome = record.outcome ?? (record.ok === false ? 'problem' : '');
    const took = record.durationUs === undefined ? '' : durationText(record.durationUs / 1000);
    const meaning = record.meaning === record.value ? '' : (record.meaning ?? '');
    return {
        kind,
        cells: [
            clockText(Date.parse(record.time)),
            from,
            what,
            record.name ?? '',
            record.value ?? '',
            meaning,
            outcome,
            took,
        ],
    };
}

function detailsOf(record) {
    const values = record.values ?? (record.value !== undefined ? [record] : []);
    return [
        ...values.map(valueView),
        h(
            'div',
            {class: 'line'},
            h('code', {}, JSON.stringify(record)),
            copyButton('the record', () => JSON.stringify(record)),
        ),
    ];
}

export function createLog(panel) {
    const records = new BoundedList(kRecords);
    const shownKinds = new Set(kKinds.map(([kind]) => kind));
    let matches = wordFilter('');
    let waiting = [];
    let paused = false;
    let timer = 0;

    const search = h('input', {
        type: 'search',
        id: 'log-filter',
        placeholder: 'Filter: words, -without',
        'aria-label': 'Filter the log',
        autocomplete: 'off',
        spellcheck: false,
    });
    const pause = h('button', {type: 'button', class: 'toggle', 'aria-pressed': 'false'}, 'Pause');
    const count = h('output', {class: 'count'});
    const body = h('tbody', {});
    const empty = h('p', {class: 'note'});
    const table = h(
        'table',
        {class: 'log'},
        h('caption', {class: 'offscreen'}, 'Log, newest first'),
        h(
            'thead',
            {},
            h(
                'tr',
                {},
                kColumns.map((title) => h('th', {scope: 'col'}, title)),
            ),
        ),
        body,
    );
    const scroller = h(
        'div',
        {class: 'scroller', tabindex: 0, role: 'region', 'aria-label': 'Log entries'},
        table,
        empty,
    );

    const visible = ({text, kind}) => shownKinds.has(kind) && matches(text);

    function makeRow({record, kind, cells}) {
        const details = h('tr', {class: 'details', hidden: true}, h('td', {colspan: kColumns.length}));
        const opener = h(
            'button',
            {
                type: 'button',
                class: 'opener',
                'aria-expanded': 'false',
                title: 'Details',
                'aria-label': `Details of ${cells[2]} ${cells[3]} at ${cells[0]}`,
            },
            cells[0],
        );
        opener.addEventListener('click', () => {
            const open = details.hidden;
            details.hidden = !open;
            setAttribute(opener, 'aria-expanded', String(open));
            if (open && details.firstChild.childElementCount === 0) {
                details.firstChild.append(...detailsOf(record));
            }
        });
        const classes = ['time', 'from', 'what', 'name', 'octets', 'meaning', 'result', 'took'];
        // A meaning without a value and an outcome takes their place.
        const around = ['octets', 'result', 'took'];
        const isWide = classes.every((name, index) => !around.includes(name) || cells[index] === '');
        const row = h(
            'tr',
            {class: `record ${kind}${record.ok === false ? ' bad' : ''}`},
            cells.map((text, index) => {
                const name = classes[index];
                const colspan = isWide && name === 'meaning' ? around.length + 1 : null;
                return isWide && around.includes(name)
                    ? null
                    : h('td', {class: name, colspan}, index === 0 ? opener : text);
            }),
        );
        return [row, details];
    }

    function describe() {
        const held = records.entries.length;
        const dropped = records.dropped > 0 ? `, ${records.dropped} older ones dropped` : '';
        setText(count, paused ? `${waiting.length} new while paused` : `${held} ${held === 1 ? 'entry' : 'entries'}${dropped}`);
        empty.hidden = body.childElementCount > 0;
        setText(
            empty,
            held === 0
                ? 'Nothing yet. Requests of all managers, traps and the camera’s events appear here.'
                : 'No entry matches the filter.',
        );
    }

    function trim() {
        while (body.childElementCount > 2 * kRows) {
            body.lastChild.remove();
        }
    }

    function render() {
        timer = 0;
        const rows = waiting.filter(visible).slice(-kRows).reverse().flatMap(makeRow);
        waiting.forEach((entry) => records.add(entry));
        waiting = [];
        body.prepend(...rows);
        trim();
        describe();
    }

    function renderAll() {
        const rows = records.entries.filter(visible).slice(-kRows).reverse().flatMap(makeRow);
        body.replaceChildren(...rows);
        describe();
    }

    function add(record) {
        const {kind, cells} = cellsOf(record);
        waiting.push({record, kind, cells, text: cells.join(' ')});
        if (waiting.length > kRecords) {
            waiting.shift();
            records.dropped += 1;
        }
        if (paused) {
            describe();
        } else {
            timer ||= setTimeout(render, kRenderMs);
        }
    }

    search.addEventListener('input', () => {
        matches = wordFilter(search.value);
        renderAll();
    });
    pause.addEventListener('click', () => {
        paused = !paused;
        setAttribute(pause, 'aria-pressed', String(paused));
        if (!paused) {
            render();
        }
        describe();
    });
    const kinds = h(
        'fieldset',
        {class: 'kinds'},
        h('legend', {class: 'offscreen'}, 'Kinds of entries'),
        kKinds.map(([kind, title]) =>
            h(
                'label',
                {},
                h('input', {
                    type: 'checkbox',
                    checked: true,
                    on: {
                        change: (event) => {
                            event.target.checked ? shownKinds.add(kind) : shownKinds.delete(kind);
                            renderAll();
                        },
                    },
                }),
                title,
            ),
        ),
    );
    const matching = () => records.entries.filter(visible).map(({record}) => record);
    const tools = h(
        'div',
        {class: 'tools'},
        search,
        kinds,
        h('span', {class: 'spring'}),
        count,
        pause,
        copyButton('the filtered log', () => jsonLines(matching())),
        h(
            'button',
            {
                type: 'button',
                class: 'quiet',
                'aria-label': 'Download the filtered log as JSON lines',
                on: {
                    click: () => {
                        download(
                            `quarnsnmp-log-${new Date().toISOString().slice(0, 19).replaceAll(':', '')}.jsonl`,
                            'application/x-ndjson',
                            jsonLines(matching()),
                        );
                    },
                },
            },
            'Download',
        ),
        h(
            'button',
            {
                type: 'button',
                class: 'quiet',
                on: {
                    click: () => {
                        records.clear();
                        waiting = [];
                        renderAll();
                    },
                },
            },
            'Clear',
        ),
    );
    panel.connection.addEventListener('log', (event) => add(event.detail));
    describe();
    return {element: h('div', {class: 'log-view'}, tools, scroller), search};
}
