// SPDX-License-Identifier: Apache-2.0
// The records of the log: a bounded list, a filter, and JSON lines.

/** A list that drops its oldest entries. */
export class BoundedList {
    constructor(limit) {
        this.limit = limit;
        this.entries = [];
        this.dropped = 0;
    }

    add(entry) {
        this.entries.push(entry);
        // In batches, because removing the first of many is slow.
        if (this.entries.length > this.limit * 1.1) {
            const surplus = this.entries.length - this.limit;
            this.entries.splice(0, surplus);
            this.dropped += surplus;
        }
    }

    clear() {
        this.entries = [];
        this.dropped = 0;
    }
}

/**
 * Makes a filter from words. Each must occur in a record's text, without regard to case; a word with a leading minus
 * must not occur.
 */
export function wordFilter(words) {
    const all = words
        .toLowerCase()
        .split(/\s+/)
        .filter((word) => word !== '' && word !== '-');
    const wanted = all.filter((word) => !word.startsWith('-'));
    const unwanted = all.filter((word) => word.startsWith('-')).map((word) => word.slice(1));
    return (text) => {
        const lower = text.toLowerCase();
        return wanted.every((word) => lower.includes(word)) && !unwanted.some((word) => lower.includes(word));
    };
}

/** Writes records as JSON lines. */
export function jsonLines(records) {
    return records.map((record) => `${JSON.stringify(record)}\n`).join('');
}

const two = (number) => String(number).padStart(2, '0');

/** Writes a time of day with milliseconds, in the browser's time zone. */
export function clockText(milliseconds) {
    const date = new Date(milliseconds);
    return (
        `${two(date.getHours())}:${two(date.getMinutes())}:${two(date.getSeconds())}.` +
        String(date.getMilliseconds()).padStart(3, '0')
    );
}

/** Writes an age: "now", "12 s", "5 min", "3 h". */
export function ageText(milliseconds) {
    const seconds = Math.max(0, Math.floor(milliseconds / 1000));
    if (seconds < 2) {
        return 'now';
    }
    if (seconds < 120) {
        return `${seconds} s ago`;
    }
    return seconds < 7200 ? `${Math.floor(seconds / 60)} min ago` : `${Math.floor(seconds / 3600)} h ago`;
}

/** Writes a duration in milliseconds with two or more significant digits. */
export function durationText(milliseconds) {
    if (milliseconds === null || milliseconds === undefined) {
        return '';
    }
    if (milliseconds >= 1000) {
        return `${(milliseconds / 1000).toFixed(2)} s`;
    }
    return `${milliseconds.toFixed(milliseconds < 10 ? 2 : 0)} ms`;
}

/** Quotes a word for a POSIX shell where it needs quotes. */
export function shellWord(word) {
    return /^[\w@%+=:,./-]+$/.test(word) ? word : `'${word.replaceAll("'", `'\\''`)}'`;
}
