// SPDX-License-Identifier: Apache-2.0
// Scenarios: timed changes of the camera.
import {getJson} from './connection.js';
import {h, labelled, setText} from './dom.js';
import {group, setOptions} from './simulator_parts.js';

const kScenarioEnds = {done: 'Done', stopped: 'Stopped', failed: 'Failed'};

function progressText({name, step, steps, message}) {
    return `${name}, step ${step} of ${steps}: ${message}`;
}

function endText({status, name, message}) {
    const reason = status === 'failed' ? `: ${message}` : '';
    return name ? `${kScenarioEnds[status] ?? status}: ${name}${reason}` : '';
}

/** Makes the choice of scenarios, with the progress of the one that plays. */
export function scenarios(panel) {
    const choice = h('select', {});
    const speed = h('input', {
        type: 'number',
        min: 0.001,
        max: 1000000,
        step: 'any',
        value: '10',
        required: true,
    });
    const about = h('p', {class: 'note'});
    const progress = h('progress', {max: 1, value: 0, hidden: true, 'aria-label': 'Progress of the scenario'});
    const text = h('p', {class: 'note', role: 'status'});
    const known = new Map();
    const play = h('button', {type: 'submit'}, 'Play');
    const stop = h(
        'button',
        {type: 'button', hidden: true, on: {click: () => panel.control({stop: true}, '/api/scenario')}},
        'Stop scenario',
    );
    const form = h(
        'form',
        {
            class: 'scenario-form',
            'aria-label': 'Play a scenario',
            on: {
                submit: (event) => {
                    event.preventDefault();
                    if (choice.value) {
                        panel.control({play: choice.value, speed: Number(speed.value)}, '/api/scenario');
                    }
                },
            },
        },
        labelled('Scenario', choice),
        labelled('Speed factor', speed),
        play,
        stop,
    );
    const describe = () => setText(about, known.get(choice.value)?.description ?? '');
    choice.addEventListener('change', describe);
    async function load() {
        try {
            const answer = await getJson(`/api/scenarios?camera=${panel.camera}`);
            answer.scenarios.forEach((scenario) => known.set(scenario.name, scenario));
            setOptions(choice, [...known.keys()]);
            describe();
        } catch (error) {
            setText(about, error.message);
        }
    }
    panel.connection.addEventListener('link', (event) => event.detail.up && load());
    panel.connection.addEventListener('scenario', ({detail}) => {
        const playing = detail.status === 'playing';
        progress.hidden = !playing;
        progress.value = detail.seconds > 0 ? detail.at / detail.seconds : 0;
        stop.hidden = !playing;
        play.disabled = playing;
        setText(text, playing ? progressText(detail) : endText(detail));
    });
    return {element: group('Scenarios', form, about, progress, text), update() {}};
}
