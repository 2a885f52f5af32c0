// The few things that every part of the page does with elements.

// Of the same name as a property that is something else: an element's form, an address made absolute, or a text that
// is empty whether the attribute is there or not.
const attributesOnly = new Set(["list", "form", "src", "alt"]);

/// An element with properties, attributes (when there is no such property), listeners ("onclick") and children.
export function h(tag, properties = {}, ...children) {
    const element = document.createElement(tag);
    set(element, properties);
    element.append(...children.filter((child) => child !== null && child !== undefined));
    return element;
}

export function set(element, properties) {
    for (const [name, value] of Object.entries(properties)) {
        if (name.startsWith("on")) {
            element.addEventListener(name.slice(2), value);
        } else if (name in element && !attributesOnly.has(name)) {
            if (element[name] !== value) {
                element[name] = value;
            }
        } else if (value === null || value === undefined || value === false) {
            element.removeAttribute(name);
        } else if (element.getAttribute(name) !== String(value)) {
            element.setAttribute(name, value);
        }
    }
}

/// Notes where the keyboard is, for something that comes in front.
export function rememberFocus(element) {
    element.cameFrom = document.activeElement;
    return element;
}

/// Removes an element; a keyboard that was in it returns to where it was before.
export function leave(element) {
    const hadFocus = element.contains(document.activeElement);
    element.remove();
    if (hadFocus && element.cameFrom?.isConnected) {
        element.cameFrom.focus({ preventScroll: true });
    }
}

/// Brings a list's elements into line with its items, each known by a key. An element that stays is not moved, so that the
/// keyboard stays on it.
export function follow(list, items, { key, make, update = () => {} }) {
    const present = new Map([...list.children].map((element) => [element.sentrelKey, element]));
    let place = list.firstElementChild;
    for (const item of items) {
        const element = present.get(key(item)) ?? make(item);
        element.sentrelKey = key(item);
        present.delete(element.sentrelKey);
        if (element === place) {
            place = place.nextElementSibling;
        } else {
            list.insertBefore(element, place);
        }
        update(element, item);
    }
    for (const gone of present.values()) {
        gone.remove();
    }
}

const symbols = {
    bell: "M8 2a4 4 0 0 0-4 4v3l-1.5 2.5h11L12 9V6a4 4 0 0 0-4-4zM6.5 13a1.5 1.5 0 0 0 3 0",
    "bell.slash": "M8 2a4 4 0 0 0-4 4v3l-1.5 2.5h11L12 9V6a4 4 0 0 0-4-4zM6.5 13a1.5 1.5 0 0 0 3 0M2 2l12 12",
    trash: "M3 4.5h10M6.5 4.5V3h3v1.5M4.5 4.5l.5 9h6l.5-9M7 7v4M9 7v4",
    "arrow.clockwise": "M13 8a5 5 0 1 1-1.6-3.7M13 2.5v2.5h-2.5",
    "arrow.down.circle": "M8 2a6 6 0 1 0 0 12A6 6 0 0 0 8 2M8 5v5.5M5.7 8.3 8 10.6l2.3-2.3",
    "photo.badge.exclamationmark": "M2 4h12v9H2zM2 11l3.5-3.5L9 11l2-2 3 3M10 6v.1",
    desktopcomputer: "M2 3h12v8H2zM6 14h4M8 11v3",
    "sidebar.left": "M2 3h12v10H2zM6 3v10",
    "sidebar.leading": "M2 3h12v10H2zM6 3v10",
    eye: "M1.5 8S4 3.5 8 3.5 14.5 8 14.5 8 12 12.5 8 12.5 1.5 8 1.5 8zM8 6a2 2 0 1 0 0 4 2 2 0 0 0 0-4",
    lock: "M4 7.5h8V14H4zM5.5 7.5V5a2.5 2.5 0 0 1 5 0v2.5",
    "lock.fill": "M4 7.5h8V14H4zM5.5 7.5V5a2.5 2.5 0 0 1 5 0v2.5M8 10v2",
    "lock.open": "M4 7.5h8V14H4zM5.5 7.5V5a2.5 2.5 0 0 1 4.8-1",
    "lock.shield.fill": "M8 1.8 13 4v4c0 3-2 5.2-5 6.3C5 13.2 3 11 3 8V4zM6 7.5h4v3H6zM7 7.5V6a1 1 0 0 1 2 0v1.5",
    "bell.slash.fill": "M8 2a4 4 0 0 0-4 4v3l-1.5 2.5h11L12 9V6a4 4 0 0 0-4-4zM6.5 13a1.5 1.5 0 0 0 3 0M2 2l12 12",
    laptopcomputer: "M3.5 4h9v6.5h-9zM1.5 12.5h13",
    "checkmark.icloud": "M4.5 12.5a3 3 0 0 1-.3-6 4 4 0 0 1 7.6 .1 3 3 0 0 1-.3 5.9zM6 9l1.5 1.5L10.2 7.8",
    "icloud.and.arrow.up": "M4.5 12.5a3 3 0 0 1-.3-6 4 4 0 0 1 7.6 .1 3 3 0 0 1-.3 5.9zM8 11V7.5M6.5 8.8 8 7.3l1.5 1.5",
    power: "M8 2v5M4.8 4a5 5 0 1 0 6.4 0",
    play: "M4.5 3v10l8-5z",
    stop: "M4 4h8v8H4z",
    hand: "M5 8V4a1 1 0 0 1 2 0v3V3a1 1 0 0 1 2 0v4V4a1 1 0 0 1 2 0v5.5a4 4 0 0 1-7.5 2L2.5 9a1 1 0 0 1 1.6-1L5 9.5",
    speaker: "M3 6v4h2.5L9 13V3L5.5 6zM11 6a3 3 0 0 1 0 4M12.8 4a6 6 0 0 1 0 8",
    muted: "M3 6v4h2.5L9 13V3L5.5 6zM11.5 6.5l3 3M14.5 6.5l-3 3",
    MenuBarIcon: "M8 1.8 13 4v4c0 3-2 5.2-5 6.3C5 13.2 3 11 3 8V4z",
    MenuBarIconArmed: "M8 1.8 13 4v4c0 3-2 5.2-5 6.3C5 13.2 3 11 3 8V4zM5.8 8l1.6 1.600L10.4 6.4",
};

/// A line drawing for a symbol or an asset; a plain dot stands in for one that is not drawn here.
export function icon(name, label = "") {
    const svg = document.createElementNS("http://www.w3.org/2000/svg", "svg");
    svg.setAttribute("viewBox", "0 0 16 16");
    svg.setAttribute("class", "icon");
    if (label) {
        svg.setAttribute("role", "img");
        svg.setAttribute("aria-label", label);
    } else {
        svg.setAttribute("aria-hidden", "true");
    }
    const path = document.createElementNS("http://www.w3.org/2000/svg", "path");
    path.setAttribute("d", symbols[name] ?? "M8 6a2 2 0 1 0 0 4 2 2 0 0 0 0-4");
    svg.append(path);
    return svg;
}

/// A named group of controls with a heading.
export function card(title, ...children) {
    return h("section", { className: "card" }, h("h2", {}, title), ...children);
}

/// A row of buttons of which one is pressed: what a state is, and the way to another. The Tab key stops at it once, and
/// arrows lead from button to button.
export function choice(label, options, choose) {
    const group = h("div", { className: "choice", role: "toolbar", ariaLabel: label });
    const stopAt = (stop) => [...group.children].forEach((button) => set(button, { tabindex: button === stop ? 0 : -1 }));
    group.addEventListener("focusin", ({ target }) => stopAt(target));
    group.addEventListener("keydown", (event) => {
        const all = [...group.children];
        const step = { ArrowRight: 1, ArrowDown: 1, ArrowLeft: -1, ArrowUp: -1 }[event.key];
        if (step) {
            event.preventDefault();
            all.at((all.indexOf(event.target) + step) % all.length).focus();
        }
    });
    const buttons = new Map();
    for (const [value, text] of options) {
        const button = h("button", { type: "button", "data-value": value, onclick: () => choose(value) }, text);
        buttons.set(value, button);
        group.append(button);
    }
    return {
        element: group,
        show(present) {
            for (const [value, button] of buttons) {
                set(button, { "aria-pressed": String(value === present) });
            }
            if (!group.contains(document.activeElement)) {
                stopAt(buttons.get(present) ?? group.firstChild);
            }
        },
    };
}

/// A slider with its label; it is left alone while somebody drags it.
export function slider(label, { min, max, step, text }, changed) {
    const reading = h("span", { className: "reading", ariaHidden: "true" });
    const input = h("input", { type: "range", min, max, step, ariaLabel: label });
    const read = () => {
        reading.textContent = text(input.valueAsNumber);
        set(input, { "aria-valuetext": reading.textContent });
    };
    input.addEventListener("input", () => {
        read();
        changed(input.valueAsNumber);
    });
    return {
        element: h("label", { className: "slider" }, h("span", {}, label), input, reading),
        show(value) {
            if (document.activeElement !== input || !input.matches(":active")) {
                input.value = String(value);
                read();
            }
        },
    };
}
