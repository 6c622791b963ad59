// SPDX-License-Identifier: Apache-2.0
// The conditions of server, camera, agent and services in the page's head.
import {servicesDown} from './camera_state.js';
import {h, setAttribute, setText} from './dom.js';
import {ageText} from './records.js';

const kCamera = {
    up: ['good', 'up'],
    rebooting: ['bad', 'restarts'],
    gone: ['bad', 'gone'],
    unknown: ['wait', 'not asked yet'],
};
const kAgent = {up: ['good', 'up'], silent: ['bad', 'no answer'], waiting: ['bad', 'waits for a service']};

function serverCondition(panel) {
    const {connection} = panel;
    return connection.up
        ? ['good', 'connected', '']
        : [
              'bad',
              `lost ${ageText(Date.now() - connection.since)}`,
              'Everything on this page is as it was then. The page reconnects by itself.',
          ];
}

function cameraCondition(panel) {
    if (!panel.connection.up || !panel.status) {
        return ['wait', 'unknown', ''];
    }
    if (panel.status === 'up' && !panel.isCurrent()) {
        return ['bad', 'does not answer', panel.cameraMessage];
    }
    const [level, text] = kCamera[panel.status] ?? ['wait', panel.status];
    return [level, text, panel.cameraMessage];
}

function agentCondition(panel) {
    if (!panel.connection.up || !panel.agent) {
        return ['wait', 'unknown', ''];
    }
    const [level, text] = kAgent[panel.agent.status] ?? ['wait', panel.agent.status];
    const waits = panel.agent.status === 'waiting' ? ` for ${(panel.agent.busyMs / 1000).toFixed(0)} s` : '';
    return [level, `${text}${waits}`, panel.agent.message];
}

function servicesCondition(panel) {
    if (!panel.isCurrent()) {
        return ['wait', 'unknown', ''];
    }
    const total = Object.keys(panel.state.services).length;
    const down = servicesDown(panel.state);
    const faults = [...(panel.state.failures ?? []), ...(panel.state.delays ?? [])];
    const faulty = [...new Set(faults.map((fault) => fault.service))];
    const few = (names) => (names.length <= 2 ? names.join(', ') : `${names.length} of ${total}`);
    const troubles = [
        ...(down.length > 0 ? [`${few(down)} down`] : []),
        ...(faulty.length > 0 ? [`faults in ${few(faulty)}`] : []),
    ];
    if (troubles.length === 0) {
        return ['good', `${total} up`, ''];
    }
    return [down.length > 0 ? 'bad' : 'wait', troubles.join(', '), [...down, ...faulty].join(', ')];
}

const kRows = [
    ['Server', serverCondition],
    ['Camera', cameraCondition],
    ['Agent', agentCondition],
    ['Services', servicesCondition],
];

export function createConditions(panel, list) {
    const rows = kRows.map(([name, read]) => {
        const value = h('dd', {});
        const row = h('div', {}, h('dt', {}, name), value);
        list.append(row);
        return {name, read, value, row, level: ''};
    });
    return {
        update() {
            for (const each of rows) {
                const [level, text, message] = each.read(panel);
                setText(each.value, text);
                setAttribute(each.row, 'class', level);
                setAttribute(each.row, 'title', message || null);
                if (level !== each.level) {
                    if (each.level !== '' && (level === 'bad' || each.level === 'bad')) {
                        panel.announce(`${each.name}: ${text}`);
                    }
                    each.level = level;
                }
            }
        },
    };
}
