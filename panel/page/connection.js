// SPDX-License-Identifier: Apache-2.0
// The connection to the panel's server: events of one camera, and requests.

const kKinds = ['hello', 'camera', 'agent', 'objects', 'log', 'scenario'];
// The server says something every second or two. After this time without a word, it hangs or the network is cut.
const kSilenceMs = 5000;
const kRetryMs = 1500;
// A browser has six connections to a server for all its pages. One that is hidden for this time gives up its own.
const kHiddenMs = 30000;

/**
 * Dispatches the server's events under their names, with the data in `detail`, and "link" with {up, since} when the
 * connection comes or goes.
 */
export class Connection extends EventTarget {
    #source = null;
    #lastHeard = 0;
    #lastLogId = 0;
    #retry = 0;
    #hidden = 0;

    constructor(camera) {
        super();
        this.camera = camera;
        this.up = false;
        this.since = Date.now();
        this.#open();
        setInterval(() => this.#watch(), 1000);
        document.addEventListener('visibilitychange', () => this.#rest());
        // A browser keeps a page that was left for the way back, and its connections with it.
        window.addEventListener('pagehide', () => this.#close());
        window.addEventListener('pageshow', (event) => event.persisted && this.#open());
    }

    /** Milliseconds since the server's last event. */
    get silenceMs() {
        return Date.now() - this.#lastHeard;
    }

    #open() {
        this.#lastHeard = Date.now();
        const source = new EventSource(`/events?camera=${this.camera}&lastEventId=${this.#lastLogId}`);
        this.#source = source;
        for (const kind of kKinds) {
            source.addEventListener(kind, (event) => this.#receive(kind, event));
        }
        source.addEventListener('error', () => this.#lose());
    }

    #receive(kind, event) {
        let detail;
        try {
            detail = JSON.parse(event.data);
        } catch {
            console.warn('unreadable event', kind);
            return;
        }
        this.#lastHeard = Date.now();
        if (kind === 'log') {
            this.#lastLogId = detail.id;
        }
        this.#setUp(true);
        this.dispatchEvent(new CustomEvent(kind, {detail}));
    }

    #setUp(up) {
        if (up !== this.up) {
            this.up = up;
            this.since = Date.now();
            this.dispatchEvent(new CustomEvent('link', {detail: {up, since: this.since}}));
        }
    }

    // The browser's own retries do not survive an answer with an error status, so the page makes its own.
    #lose() {
        this.#close();
        this.#retry = setTimeout(() => this.#open(), kRetryMs);
    }

    #rest() {
        clearTimeout(this.#hidden);
        if (!document.hidden) {
            if (this.#source.readyState === EventSource.CLOSED) {
                clearTimeout(this.#retry);
                this.#open();
            }
            return;
        }
        this.#hidden = setTimeout(() => this.#close(), kHiddenMs);
    }

    #close() {
        this.#source.close();
        clearTimeout(this.#retry);
        this.#setUp(false);
    }

    #watch() {
        if (this.#source.readyState !== EventSource.CLOSED && this.silenceMs > kSilenceMs) {
            this.#lose();
        }
    }

    /** Posts JSON. Throws an Error with a text for people if the server cannot be reached or objects. */
    async post(path, body) {
        let response;
        let answer;
        try {
            response = await fetch(`${path}?camera=${this.camera}`, {
                method: 'POST',
                headers: {'Content-Type': 'application/json', 'X-Quarnsnmp-Panel': '1'},
                body: JSON.stringify(body),
                priority: 'high',
                keepalive: true, // a stop must arrive although its page is being closed
            });
            answer = await response.json();
        } catch {
            throw new Error('The panel’s server does not answer.');
        }
        if (!response.ok) {
            throw new Error(answer.error ?? `The server answers ${response.status}.`);
        }
        return answer;
    }
}

/** Gets JSON. Throws an Error with a text for people. */
export async function getJson(path) {
    let response;
    try {
        response = await fetch(path, {cache: 'no-store'});
    } catch {
        throw new Error('The panel’s server does not answer.');
    }
    if (!response.ok) {
        throw new Error(`The server answers ${response.status}.`);
    }
    return response.json();
}
