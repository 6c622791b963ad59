// SPDX-License-Identifier: Apache-2.0
// The last command: what went over the wire, taken apart, how to send it from a shell, and the answer.
import {copyButton, flash, h, setText} from './dom.js';
import {durationText} from './records.js';

function partsTable(parts) {
    return h(
        'table',
        {class: 'parts'},
        h(
            'thead',
            {class: 'offscreen'},
            h(
                'tr',
                {},
                ['Octets', 'Field', 'Meaning'].map((title) => h('th', {scope: 'col'}, title)),
            ),
        ),
        h(
            'tbody',
            {},
            parts.map((part) =>
                h(
                    'tr',
                    {},
                    h('td', {class: 'octets'}, part.octets),
                    h('th', {scope: 'row'}, part.field),
                    h('td', {}, part.meaning),
                ),
            ),
        ),
    );
}

/** Shows an object's octets, as in an action and in the log. */
export function valueView(object) {
    return h(
        'div',
        {class: 'value'},
        h(
            'p',
            {class: 'value-line'},
            h('strong', {}, object.name),
            ' ',
            h('code', {class: 'octets'}, object.value),
            ' ',
            object.meaning && object.meaning !== object.value ? object.meaning : null,
        ),
        object.parts?.length ? partsTable(object.parts) : null,
    );
}

function commandLines(name, lines) {
    const text = lines.join('\n');
    return h(
        'div',
        {class: 'line'},
        h('code', {}, text),
        copyButton(`the ${name} command`, () => text),
    );
}

const kOutcomes = {
    noError: 'Accepted',
    noAnswer: 'No answer',
    superseded: 'Replaced by a newer command before it was sent',
    badResponse: 'Unusable answer',
};

export function createExchange(panel) {
    const outcome = h('p', {class: 'outcome'});
    const body = h('div', {class: 'exchange-body'});
    const element = h(
        'section',
        {class: 'card exchange', 'aria-label': 'Last command over SNMP'},
        h('header', {class: 'card-head'}, h('h2', {}, 'Last command over SNMP'), outcome),
        body,
    );
    const empty = h(
        'p',
        {class: 'note'},
        'Each command goes over SNMP through the agent. Its octets, the lines that do the same ' +
            'in a shell, and the answer appear here.',
    );
    body.append(empty);
    let newest = 0;

    function show(answer, isFailure) {
        const lines = answer.lines ?? {};
        const text = kOutcomes[answer.status] ?? `Refused: ${answer.status}`;
        const time = answer.durationUs ? ` in ${durationText(answer.durationUs / 1000)}` : '';
        outcome.className = `outcome ${isFailure ? 'bad' : 'good'}`;
        setText(outcome, `${text}${answer.ok ? time : ''}`);
        body.replaceChildren(
            ...(answer.message
                ? [
                      h(
                          'p',
                          {class: isFailure ? 'problem' : 'note'},
                          answer.message,
                          answer.advice ? ` ${answer.advice}` : '',
                      ),
                  ]
                : []),
            ...(answer.objects ?? []).map(valueView),
            ...['snmpset', 'snmpget'].filter((name) => lines[name]).map((name) => commandLines(name, [lines[name]])),
            ...(lines.ptzctl?.length ? [commandLines('ptzctl', lines.ptzctl)] : []),
        );
        flash(outcome);
    }

    return {
        element,
        /** Numbers a command that is about to be sent, so that answers that arrive in another order are not shown. */
        begin() {
            newest += 1;
            return newest;
        },
        show(number, answer) {
            const isFailure = !answer.ok && answer.status !== 'superseded';
            if (number === newest || isFailure) {
                show(answer, isFailure);
            }
            if (isFailure) {
                panel.alert(`${kOutcomes[answer.status] ?? `Refused: ${answer.status}`}. ${answer.message ?? ''}`);
            } else if (answer.action !== 'towards') {
                const commands = (answer.objects ?? []).map(({name, meaning}) => `${name} ${meaning}`);
                panel.announce(`${commands.join(', ')}: accepted`);
            }
        },
        fail(error) {
            outcome.className = 'outcome bad';
            setText(outcome, 'Not sent');
            body.replaceChildren(h('p', {class: 'problem'}, error.message));
            panel.alert(error.message);
        },
    };
}
