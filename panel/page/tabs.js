// SPDX-License-Identifier: Apache-2.0
// Tabs: one page of several, chosen by click or with the arrow keys.
import {h, setAttribute} from './dom.js';

export function createTabs(pages) {
    const tabs = pages.map(([title], index) =>
        h(
            'button',
            {
                type: 'button',
                role: 'tab',
                id: `tab-${index}`,
                'aria-controls': `page-${index}`,
                on: {click: () => choose(index)},
            },
            title,
        ),
    );
    const bodies = pages.map(([, element], index) =>
        h('div', {role: 'tabpanel', id: `page-${index}`, 'aria-labelledby': `tab-${index}`}, element),
    );

    function choose(chosen) {
        tabs.forEach((tab, index) => {
            setAttribute(tab, 'aria-selected', String(index === chosen));
            tab.tabIndex = index === chosen ? 0 : -1;
            bodies[index].hidden = index !== chosen;
        });
    }
    const list = h(
        'div',
        {
            role: 'tablist',
            'aria-label': 'Details',
            class: 'tabs',
            on: {
                keydown: (event) => {
                    const step = {ArrowRight: 1, ArrowLeft: -1}[event.key];
                    if (step) {
                        const next = (tabs.indexOf(document.activeElement) + step + tabs.length) % tabs.length;
                        choose(next);
                        tabs[next].focus();
                        event.preventDefault();
                    }
                },
            },
        },
        tabs,
    );
    choose(0);
    return {element: h('section', {class: 'card details-card', 'aria-label': 'Details'}, list, bodies), choose};
}
