// SPDX-License-Identifier: Apache-2.0
// The start page for several cameras: a still of each, with its condition.
import {getJson} from './connection.js';
import {h, setText} from './dom.js';

const kRefreshMs = 2000;
const kTexts = {up: 'Up', rebooting: 'Restarts', gone: 'Gone', unknown: 'Not asked yet'};

function tile(camera) {
    const image = h('img', {alt: '', width: camera.size?.[0] ?? 1280, height: camera.size?.[1] ?? 720});
    const name = h('strong', {});
    const status = h('span', {class: 'tile-status'});
    const element = h(
        'li',
        {},
        h(
            'a',
            {href: `?camera=${camera.id}`, class: 'tile'},
            h('span', {class: 'tile-picture'}, image),
            h('span', {class: 'tile-text'}, name, h('span', {class: 'note'}, `Agent ${camera.agent}`), status),
        ),
    );
    const stale = (isStale) => element.firstChild.classList.toggle('stale', isStale);
    image.addEventListener('error', () => stale(true));
    return {
        element,
        update(current, round) {
            setText(name, current.name || `Camera ${camera.id + 1}`);
            setText(status, kTexts[current.status] ?? current.status);
            status.className = `tile-status ${current.status === 'up' ? 'good' : 'bad'}`;
            stale(current.status !== 'up');
            image.src = `/snapshot.jpg?camera=${camera.id}&round=${round}`;
        },
        lose() {
            setText(status, 'Unknown: no connection to the panel’s server');
            status.className = 'tile-status bad';
            stale(true);
        },
    };
}

/** Shows all cameras, until the page is left. */
export function showWall(main, cameras) {
    const tiles = cameras.map(tile);
    main.className = 'wall';
    document.title = `${cameras.length} cameras – quarnsnmp panel`;
    main.replaceChildren(
        h('h2', {}, `${cameras.length} cameras`),
        h(
            'ul',
            {class: 'tiles'},
            tiles.map(({element}) => element),
        ),
    );
    let round = 0;
    async function refresh() {
        if (!document.hidden) {
            round += 1;
            try {
                const answer = await getJson('/api/cameras');
                tiles.forEach((each, index) => each.update(answer.cameras[index], round));
            } catch {
                tiles.forEach((each) => each.lose());
            }
        }
        setTimeout(refresh, kRefreshMs);
    }
    refresh();
}
