// SPDX-License-Identifier: Apache-2.0
// The picture, frame by frame.
//
// Not from the stream: a browser cannot tell a frozen stream from a camera at rest, and each stream takes one of the six
// connections that all its pages share, until no command gets through. A frame that is asked for has an age.

const kRetryMs = 1000;
const kTimeoutMs = 4000;

/** Draws the camera's picture on a canvas while it runs. */
export class Frames {
    #context;
    #address;
    #running = false;
    #round = 0;
    #abort = new AbortController();

    constructor(canvas, camera) {
        this.#context = canvas.getContext('bitmaprenderer');
        this.#address = `/snapshot.jpg?camera=${camera}`;
        this.framesPerSecond = 15;
        this.lastFrame = Date.now();
    }

    /** Milliseconds since the last frame. */
    get ageMs() {
        return Date.now() - this.lastFrame;
    }

    /** Starts or ends the drawing. */
    run(running) {
        if (running && !this.#running) {
            this.lastFrame = Date.now();
            this.#round += 1;
            this.#abort = new AbortController();
            this.#draw(this.#round);
        }
        if (!running && this.#running) {
            this.#abort.abort();
        }
        this.#running = running;
    }

    async #draw(round) {
        const started = performance.now();
        let period = 1000 / this.framesPerSecond;
        try {
            const response = await fetch(this.#address, {
                cache: 'no-store',
                priority: 'low', // commands of all pages go first
                signal: AbortSignal.any([this.#abort.signal, AbortSignal.timeout(kTimeoutMs)]),
            });
            if (!response.ok) {
                throw new Error(`status ${response.status}`);
            }
            const bitmap = await createImageBitmap(await response.blob());
            if (round === this.#round && this.#running) {
                this.#context.transferFromImageBitmap(bitmap);
                this.lastFrame = Date.now();
            }
        } catch {
            period = kRetryMs; // the age tells of the failure
        }
        setTimeout(
            () => {
                if (round === this.#round && this.#running) {
                    this.#draw(round);
                }
            },
            Math.max(0, period - (performance.now() - started)),
        );
    }
}
