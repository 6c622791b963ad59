// SPDX-License-Identifier: Apache-2.0
// The page: all cameras as stills, or the panel of one camera.
import {axesOf, driveOf, isAutomatic} from './camera_state.js';
import {createConditions} from './conditions.js';
import {Connection, getJson} from './connection.js';
import {createControls} from './controls.js';
import {ask, createHelp} from './dialogs.js';
import {h, setAttribute, setText} from './dom.js';
import {createExchange} from './exchange.js';
import {createLog} from './log.js';
import {HeldMoves} from './moves.js';
import {createObjects} from './objects.js';
import {createPicture} from './picture.js';
import {createPlan} from './plan.js';
import {createSimulator} from './simulator.js';
import {createTabs} from './tabs.js';
import {showWall} from './wall.js';

const kStaleMs = 3000; // a state of this age is not current
const kTickMs = 500;

const byId = (id) => document.getElementById(id);

/** What the parts of the page share: the camera's last known state and the ways to change it. */
class Panel {
    constructor(camera) {
        this.camera = camera;
        this.connection = new Connection(camera);
        this.moves = new HeldMoves((action) => this.act(action, true));
        this.state = null;
        this.view = null;
        this.status = '';
        this.stale = true;
        this.cameraMessage = '';
        this.agent = null;
        this.client = null;
        this.received = 0;
        this.reportedAge = 0;
        this.zoomGoal = null;
    }

    /** Age of the state in milliseconds. It grows while no event arrives. */
    stateAge() {
        return this.reportedAge + Date.now() - this.received;
    }

    /** Whether state and view are those of this moment. */
    isCurrent() {
        return (
            this.connection.up &&
            this.status === 'up' &&
            this.state !== null &&
            !this.stale &&
            this.stateAge() < kStaleMs
        );
    }

    takeCamera(detail) {
        this.status = detail.status;
        this.cameraMessage = detail.message;
        this.stale = detail.stale;
        this.reportedAge = detail.ageMs ?? 0;
        this.received = Date.now();
        // The last known values stay, marked as such, when the camera is gone.
        this.state = detail.state ?? this.state;
        this.view = detail.view ?? this.view;
    }

    axes() {
        return axesOf(this.state);
    }

    /**
     * Returns the zoom percentage for a factor of the present zoom, or null. Turns of the wheel follow each other faster
     * than the camera, so they build on the last goal while it moves there.
     */
    zoomPercentAfter(factor) {
        const percent = this.view?.zoomPercent;
        const zoom = this.view?.zoom;
        if (!this.isCurrent() || !Number.isFinite(percent)) {
            return null;
        }
        const goal = this.zoomGoal && Date.now() - this.zoomGoal.time < 1200 ? this.zoomGoal : {percent, zoom};
        let next;
        if (Number.isFinite(goal.zoom) && Number.isFinite(this.zoomRange?.low)) {
            const {low, high} = this.zoomRange;
            const wanted = Math.min(Math.max(goal.zoom * factor, low), high);
            next = {zoom: wanted, percent: ((wanted - low) / (high - low)) * 100};
        } else {
            next = {percent: Math.min(Math.max(goal.percent + (factor > 1 ? 5 : -5), 0), 100)};
        }
        this.zoomGoal = {...next, time: Date.now()};
        return Number(next.percent.toFixed(3));
    }

    /** The range of the zoom factor that 0 to 100 percent span, as far as the camera tells. */
    get zoomRange() {
        const positioning = Object.values(this.state?.services?.positioning?.targets ?? {})[0];
        const zoom = positioning?.zoom;
        if (!zoom) {
            return null;
        }
        const free = !zoom.softPosition.enabled && !positioning.digitalZoom?.enabled;
        return {low: zoom.softPosition.minimum / 10, high: (free ? zoom.maximum : zoom.softPosition.maximum) / 10};
    }

    announce(text) {
        setText(byId('announcements'), text);
    }

    alert(text) {
        setText(byId('alerts'), '');
        setText(byId('alerts'), text);
    }

    speed() {
        return this.controls.speed();
    }

    /** Sends an action. Resolves to whether the server has taken it, whatever the agent's answer. */
    async act(action) {
        const number = this.exchange.begin();
        try {
            const answer = await this.connection.post(
                '/api/action',
                this.client ? {...action, client: this.client} : action,
            );
            this.exchange.show(number, answer);
            return answer.ok || answer.status === 'superseded';
        } catch (error) {
            this.exchange.fail(error);
            return false;
        }
    }

    /** Stops pan, tilt and zoom, and a drive of the lens that moves by command: stopping others would be an error. */
    stop() {
        const moving = (axis) =>
            !isAutomatic(this.state, axis) && (driveOf(this.state, axis)?.moving || this.moves.isHeld(axis));
        const axes = this.axes().filter((axis) => !['focus', 'iris'].includes(axis) || moving(axis));
        this.moves.forget();
        this.zoomGoal = null;
        this.announce('Stop');
        return this.act(axes.length > 0 ? {action: 'stop', axes} : {action: 'stop'});
    }

    async control(body, path = '/api/control') {
        try {
            this.simulator.show(await this.connection.post(path, body));
        } catch (error) {
            this.simulator.show({ok: false, message: error.message});
            this.alert(error.message);
        }
    }

    confirm(question, consequence, yes) {
        return ask(question, consequence, yes);
    }
}

function isTyping(element) {
    return (
        element instanceof HTMLTextAreaElement ||
        element instanceof HTMLSelectElement ||
        (element instanceof HTMLInputElement && !['checkbox', 'range', 'button'].includes(element.type))
    );
}

function listenForKeys(panel, parts) {
    const {help, picture, log, tabs} = parts;
    const keys = {
        '?': () => help.open(),
        p: () => picture.frame.focus(),
        l: () => {
            tabs.choose(0);
            log.search.focus();
        },
        1: () => tabs.choose(0),
        2: () => tabs.choose(1),
        3: () => tabs.choose(2),
    };
    document.addEventListener('keydown', (event) => {
        if (event.key === 'Escape') {
            panel.stop();
            return;
        }
        if (
            event.ctrlKey ||
            event.altKey ||
            event.metaKey ||
            isTyping(event.target) ||
            document.querySelector('dialog[open]') ||
            !help.singleKeys()
        ) {
            return;
        }
        const action = keys[event.key.toLowerCase()];
        if (action) {
            event.preventDefault();
            action();
        }
    });
}

function showPanel(main, camera, cameras) {
    const panel = new Panel(camera);
    const conditions = createConditions(panel, byId('conditions'));
    const help = createHelp();
    panel.controls = createControls(panel);
    panel.exchange = createExchange(panel);
    panel.simulator = createSimulator(panel);
    const picture = createPicture(panel);
    const plan = createPlan(panel);
    const log = createLog(panel);
    const objects = createObjects(panel);
    const tabs = createTabs([
        ['Log', log.element],
        ['Objects', objects.element],
        ['Camera’s side', panel.simulator.element],
    ]);
    panel.pickObject = (name) => objects.pick(name);
    main.className = 'panel';
    main.replaceChildren(
        h('div', {class: 'left'}, picture.element, panel.controls.element),
        h('div', {class: 'right'}, panel.exchange.element, plan.element),
        tabs.element,
    );

    let waiting = false;
    const parts = [conditions, picture, plan, panel.controls, panel.simulator];
    const update = () => {
        waiting = false;
        document.body.dataset.link = panel.connection.up ? 'up' : panel.received ? 'lost' : 'opening';
        document.body.classList.toggle('old', !panel.isCurrent());
        parts.forEach((part) => part.update());
    };
    const schedule = () => {
        if (!waiting) {
            waiting = true;
            setTimeout(update, 30); // not at the next frame: a hidden page has none
        }
    };
    const {connection} = panel;
    connection.addEventListener('hello', ({detail}) => {
        panel.client = detail.client ?? null;
        const name = detail.name || cameras[camera]?.name || `Camera ${camera + 1}`;
        setText(byId('title'), name);
        setAttribute(byId('title'), 'title', `Camera in ${detail.directory}, agent ${detail.agent}`);
        document.title = `${name} – quarnsnmp panel`;
    });
    connection.addEventListener('camera', ({detail}) => {
        panel.takeCamera(detail);
        schedule();
    });
    connection.addEventListener('agent', ({detail}) => {
        panel.agent = detail;
        schedule();
    });
    connection.addEventListener('link', ({detail}) => {
        if (!detail.up) {
            panel.moves.endAll();
        }
        objects.tick();
        schedule();
    });
    setInterval(() => {
        objects.tick();
        update();
    }, kTickMs);
    byId('stop').addEventListener('click', () => panel.stop());
    byId('help-button').addEventListener('click', () => help.open());
    listenForKeys(panel, {help, picture, log, tabs});
    update();
}

function showCameraLinks(cameras, current) {
    if (cameras.length < 2) {
        return;
    }
    const link = (href, text, isCurrent) => h('a', {href, 'aria-current': isCurrent ? 'page' : null}, text);
    byId('cameras').append(
        link('/', 'All', current === null),
        ...cameras.map(({id, name}) => link(`?camera=${id}`, name || `Camera ${id + 1}`, id === current)),
    );
}

async function start() {
    const main = byId('main');
    const asked = new URLSearchParams(location.search).get('camera');
    let cameras;
    try {
        ({cameras} = await getJson('/api/cameras'));
    } catch (error) {
        main.replaceChildren(h('p', {class: 'problem'}, `${error.message} The page tries again.`));
        setTimeout(start, 2000);
        return;
    }
    const camera = asked === null ? (cameras.length === 1 ? 0 : null) : Number(asked);
    if (camera !== null && !cameras[camera]) {
        main.replaceChildren(
            h('p', {class: 'problem'}, 'There is no such camera. ', h('a', {href: '/'}, 'All cameras')),
        );
        return;
    }
    showCameraLinks(cameras, camera);
    if (camera === null) {
        byId('stop').hidden = true;
        byId('help-button').hidden = true;
        showWall(main, cameras);
    } else {
        showPanel(main, camera, cameras);
    }
}

start();
