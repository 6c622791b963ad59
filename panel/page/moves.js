// SPDX-License-Identifier: Apache-2.0
// Continuous moves that last as long as a person holds something: a drag, a button or a key.

const kUpdateMs = 120; // the shortest time between two speeds
const kStopAttempts = 8;
const kStopRetryMs = 500;

/** All held moves of the page. A move ends on release, and when the page loses the focus, is hidden or disconnected. */
export class HeldMoves {
    #send;
    #held = new Map(); // holder: {axis: speed}
    #sent = {};
    #timer = 0;
    #busy = false;
    #lastSent = 0;

    /** @param send  sends an action and resolves to whether the server has taken it */
    constructor(send) {
        this.#send = send;
        const end = () => this.endAll();
        window.addEventListener('blur', end);
        window.addEventListener('pagehide', end);
        document.addEventListener('visibilitychange', () => document.hidden && end());
    }

    get active() {
        return this.#held.size > 0;
    }

    /** Tells whether something holds an axis. */
    isHeld(axis) {
        return [...this.#held.values()].some((speeds) => axis in speeds);
    }

    /** Sets the speeds of a holder: {pan: 40, tilt: 0}. */
    hold(holder, speeds) {
        this.#held.set(holder, speeds);
        this.#schedule();
    }

    /** Ends what a holder moves. */
    release(holder) {
        const speeds = this.#held.get(holder);
        if (!speeds) {
            return;
        }
        this.#held.delete(holder);
        const others = this.#wanted();
        const axes = Object.keys(speeds).filter((axis) => !others[axis] && this.#sent[axis]);
        for (const axis of axes) {
            delete this.#sent[axis];
        }
        if (axes.length > 0) {
            this.#stop(axes, kStopAttempts);
        }
    }

    endAll() {
        for (const holder of [...this.#held.keys()]) {
            this.release(holder);
        }
    }

    /** Forgets all holders, after a stop of everything. */
    forget() {
        this.#held.clear();
        this.#sent = {};
    }

    #wanted() {
        return Object.assign({}, ...this.#held.values());
    }

    #schedule() {
        clearTimeout(this.#timer);
        const wait = Math.max(0, this.#lastSent + kUpdateMs - Date.now());
        this.#timer = setTimeout(() => this.#update(), wait);
    }

    // One request at a time, so that the newest speed never waits behind older ones.
    async #update() {
        if (this.#busy) {
            return;
        }
        const wanted = this.#wanted();
        const changed = Object.entries(wanted).filter(([axis, speed]) => speed !== (this.#sent[axis] ?? 0));
        if (changed.length === 0) {
            return;
        }
        this.#busy = true;
        this.#lastSent = Date.now();
        const speeds = Object.fromEntries(changed);
        Object.assign(this.#sent, speeds);
        await this.#send({action: 'towards', axes: speeds});
        this.#busy = false;
        // The speed may have passed a stop that was sent after it.
        const wantedNow = this.#wanted();
        const ended = Object.keys(speeds).filter((axis) => !(axis in wantedNow));
        if (ended.length > 0) {
            this.#stop(ended, kStopAttempts);
        }
        if (this.active) {
            this.#schedule();
        }
    }

    async #stop(axes, attempts) {
        const taken = await this.#send({action: 'stop', axes});
        if (!taken && attempts > 1) {
            setTimeout(() => this.#stop(axes, attempts - 1), kStopRetryMs);
        }
    }
}

/**
 * Makes a button move something while it is pressed, by pointer or by keyboard. An assistive technology that only
 * clicks gets a step instead.
 */
export function holdButton(button, moves, speeds, step) {
    let pressed = false;
    const press = () => {
        pressed = true;
        button.classList.add('held');
        moves.hold(button, speeds());
    };
    const release = () => {
        button.classList.remove('held');
        moves.release(button);
    };
    button.addEventListener('pointerdown', (event) => {
        if (event.button === 0) {
            button.setPointerCapture(event.pointerId);
            press();
        }
    });
    for (const type of ['pointerup', 'pointercancel', 'lostpointercapture', 'blur']) {
        button.addEventListener(type, release);
    }
    button.addEventListener('contextmenu', (event) => event.preventDefault());
    button.addEventListener('keydown', (event) => {
        if ((event.key === ' ' || event.key === 'Enter') && !event.repeat) {
            press();
        }
        if (event.key === ' ' || event.key === 'Enter') {
            event.preventDefault();
        }
    });
    button.addEventListener('keyup', (event) => {
        if (event.key === ' ' || event.key === 'Enter') {
            release();
        }
    });
    button.addEventListener('click', () => {
        if (!pressed) {
            step();
        }
        pressed = false;
    });
}
