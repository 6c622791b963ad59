// SPDX-License-Identifier: Apache-2.0
// Building elements. Texts become text nodes, so nothing that a camera or a manager sends is read as HTML.

const kSvg = 'http://www.w3.org/2000/svg';

// Characters that show nothing, or turn the direction of the text around them. Line feeds and tabs are harmless.
const kUnseen = /[\0-\x08\x0b-\x1f\x7f-\x9f\u061c\u200b-\u200f\u2028-\u202e\u2060-\u206f\ufeff]/g;

/** Writes unseen characters as the escapes of JSON, such as \u001b. */
export function visible(text) {
    return String(text).replace(
        kUnseen,
        (character) => `\\u${character.charCodeAt(0).toString(16).padStart(4, '0')}`,
    );
}

function fill(element, attributes, children) {
    for (const [name, value] of Object.entries(attributes ?? {})) {
        if (value === null || value === undefined) {
            continue;
        }
        if (name === 'on') {
            for (const [type, listener] of Object.entries(value)) {
                element.addEventListener(type, listener);
            }
        } else if (name in element && typeof value !== 'string' && !(element instanceof SVGElement)) {
            element[name] = value;
        } else if (value !== false) {
            element.setAttribute(name, value === true ? '' : String(value));
        }
    }
    element.append(
        ...children
            .flat(Infinity)
            .filter((child) => child !== null && child !== undefined)
            .map((child) => (child instanceof Node ? child : document.createTextNode(visible(child)))),
    );
    return element;
}

/** Makes an HTML element. Listeners are in the attribute `on`; children are nodes and texts. */
export function h(tag, attributes, ...children) {
    return fill(document.createElement(tag), attributes, children);
}

/** Makes an SVG element. */
export function s(tag, attributes, ...children) {
    return fill(document.createElementNS(kSvg, tag), attributes, children);
}

/** Sets the text of an element, without touching a document that already shows it. */
export function setText(element, text) {
    const shown = visible(text);
    if (element.textContent !== shown) {
        element.textContent = shown;
    }
}

/** Sets or removes an attribute. */
export function setAttribute(element, name, value) {
    if (value === null || value === undefined || value === false) {
        element.removeAttribute(name);
    } else if (element.getAttribute(name) !== String(value)) {
        element.setAttribute(name, String(value));
    }
}

/** Puts a label above a field. */
export function labelled(text, field) {
    return h('label', {class: 'labelled'}, h('span', {}, text), field);
}

/** Copies a text. Resolves to whether it worked. */
export async function copyText(text) {
    try {
        await navigator.clipboard.writeText(text);
        return true;
    } catch {
        // Only secure origins have a clipboard, and a panel on another address has none.
        const area = h('textarea', {class: 'offscreen', 'aria-hidden': 'true', readonly: true});
        area.value = text;
        const focused = document.activeElement;
        document.body.append(area);
        area.select();
        let copied = false;
        try {
            copied = document.execCommand('copy');
        } catch {
            copied = false;
        }
        area.remove();
        focused?.focus?.();
        return copied;
    }
}

/** Makes a button that copies the text that `read` returns. */
export function copyButton(what, read) {
    const button = h('button', {type: 'button', class: 'quiet copy', 'aria-label': `Copy ${what}`}, 'Copy');
    let back = 0;
    button.addEventListener('click', async () => {
        setText(button, (await copyText(read())) ? 'Copied' : 'No clipboard');
        clearTimeout(back);
        back = setTimeout(() => setText(button, 'Copy'), 1500);
    });
    return button;
}

/** Offers a text as a file. */
export function download(name, type, text) {
    const address = URL.createObjectURL(new Blob([text], {type}));
    const link = h('a', {href: address, download: name});
    link.click();
    setTimeout(() => URL.revokeObjectURL(address), 10000);
}

let reducedMotion = null;

/** Marks an element as changed for a moment. */
export function flash(element) {
    reducedMotion ??= matchMedia('(prefers-reduced-motion: reduce)');
    element.classList.add('changed');
    if (reducedMotion.matches || !element.animate) {
        setTimeout(() => element.classList.remove('changed'), 2000);
        return;
    }
    const animation = element.animate([{backgroundColor: 'var(--flash)'}, {backgroundColor: 'transparent'}], {
        duration: 1600,
        easing: 'ease-out',
    });
    animation.onfinish = () => element.classList.remove('changed');
}
