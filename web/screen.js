// The MacBook's screen: menu bar, windows, panels, and the cover over everything.

import { h, icon, set } from "./dom.js";
import { keyOf } from "./nodes.js";
import { SystemPanels } from "./panels.js";
import { latest, post } from "./server.js";
import { Tree } from "./tree.js";

const smallestZoom = 0.85;

/// A window of the product: drawn at a readable size whatever the screen's, at the place that corresponds.
class WindowView {
    constructor(screen, id) {
        this.id = id;
        this.screen = screen;
        this.title = h("h2", { className: "window-title" });
        this.close = h("button", {
            type: "button",
            className: "window-close",
            ariaLabel: "Close window",
            onclick: () => post("window", { window: id, do: "close" }),
        });
        this.bar = h("div", { className: "window-bar" }, this.close, this.title);
        this.content = h("div", { className: "window-content" });
        this.grip = h("div", { className: "window-grip", ariaHidden: "true" });
        this.element = h(
            "div",
            { className: "window", role: "dialog", tabindex: "-1" },
            this.bar,
            this.content,
            this.grip,
        );
        this.tree = new Tree(this.content, (action) => post("ui", { in: id, ...action }), this.element);
        this.element.addEventListener("pointerdown", () => {
            if (!this.state?.isKey) {
                post("window", { window: id, do: "front" });
            }
        });
        this.element.addEventListener("keydown", (event) => this.#press(event));
        this.bar.addEventListener("dblclick", () => post("window", { window: id, do: "zoom" }));
        this.#drag(this.bar, "move", (frame, dx, dy) => ({ ...frame, x: frame.x + dx, y: frame.y + dy }));
        this.#drag(this.grip, "resize", (frame, dx, dy) => ({
            ...frame,
            width: frame.width + dx,
            height: frame.height + dy,
        }));
    }

    show(state) {
        this.state = state;
        set(this.title, { textContent: state.title });
        set(this.element, { "aria-label": state.title });
        this.element.classList.toggle("key", state.isKey);
        this.grip.hidden = !state.isResizable;
        const place = this.screen.place(state.frame);
        Object.assign(this.element.style, {
            left: `${place.left}px`,
            top: `${place.top}px`,
            width: `${place.width}px`,
            height: `${place.height}px`,
            transform: `scale(${place.zoom})`,
        });
    }

    fill(content) {
        this.tree.show(content, this.state.focus);
    }

    #press(event) {
        if (event.key === "w" && (event.metaKey || event.ctrlKey)) {
            event.preventDefault();
            this.close.click();
            return;
        }
        const key = keyOf(event);
        if (key && !event.defaultPrevented) {
            // Most keys mean nothing to most windows.
            post("ui", { in: this.id, node: "", do: "key", value: key }, { isOptional: true });
        }
    }

    #drag(handle, action, moved) {
        const send = latest((frame) => post("window", { window: this.id, do: action, frame }));
        handle.addEventListener("pointerdown", (down) => {
            if (down.button !== 0 || down.target.closest("button")) {
                return;
            }
            const start = this.state.frame;
            const scale = this.screen.dragScale(action, start);
            handle.setPointerCapture(down.pointerId);
            const follow = (move) =>
                send(moved(start, (move.clientX - down.clientX) * scale.x, (move.clientY - down.clientY) * scale.y));
            const stop = () => {
                handle.removeEventListener("pointermove", follow);
                handle.removeEventListener("pointerup", stop);
                handle.removeEventListener("pointercancel", stop);
            };
            handle.addEventListener("pointermove", follow);
            handle.addEventListener("pointerup", stop);
            handle.addEventListener("pointercancel", stop);
        });
    }
}

export class Screen {
    #windows = new Map();
    #covers = new Map();
    #shown = []; // the screen and its contents, as they came
    #display = { width: 1728, height: 1117 };
    isDark = false;

    constructor(element, stream) {
        this.element = element;
        this.day = h("span", { className: "menu-day" });
        this.time = h("span", {});
        this.clock = h("time", { className: "menu-clock" }, this.day, this.time);
        this.itemIcon = h("span", {});
        this.item = h("button", {
            type: "button",
            className: "menu-item",
            "aria-haspopup": "true",
            onclick: () => post("menu", { open: !this.menuShown }),
        });
        this.item.append(this.itemIcon);
        this.menuContent = h("div", { className: "menu", role: "dialog", ariaLabel: "Sentrel menu", hidden: true });
        this.menuTree = new Tree(this.menuContent, (action) => post("ui", { in: "menu", ...action }));
        this.desk = h("div", { className: "desk" });
        this.panels = new SystemPanels(() => this.#showReach(), () => this.#giveKeyboard());
        this.coverLayer = h("div", { className: "covers" });
        this.frontName = h("span", { className: "menu-name" }, "Finder");
        this.bar = h("div", { className: "menu-bar" }, this.frontName, this.item, this.clock);
        this.note = h("p", { className: "screen-note", hidden: true });
        this.glow = h("div", { className: "glow", ariaHidden: "true" });
        element.append(this.bar, this.desk, this.menuContent, this.panels.element, this.coverLayer, this.note, this.glow);
        this.desk.addEventListener("pointerdown", (event) => {
            if (this.menuShown && event.target === this.desk) {
                post("menu", { open: false });
            }
        });
        element.addEventListener("keydown", (event) => {
            if (event.key === "Escape" && this.menuShown) {
                post("menu", { open: false });
                this.item.focus();
            }
        });
        this.menuContent.addEventListener("keydown", (event) => this.#moveInMenu(event));
        this.item.addEventListener("keydown", (event) => {
            if (event.key === "ArrowDown") {
                event.preventDefault();
                this.menuShown ? this.#menuControls()[0]?.focus() : this.item.click();
            }
        });
        // A window's content comes apart from its frame: all of a change first, then the picture.
        stream.on("state", (state) => this.#show(state));
        stream.on("menuBar", (bar) => this.#showMenuBar(bar));
        stream.on("run", ({ language }) => {
            if (language !== element.lang) {
                element.lang = language;
                this.panels.speak(language);
            }
        });
        stream.on("panels", (panels) => this.panels.show(panels));
        stream.on("hardware", (hardware) => this.#showPower(hardware));
        new ResizeObserver(() => this.#show(stream.state, true)).observe(element);
    }

    showTime(day, time) {
        set(this.day, { textContent: day });
        set(this.time, { textContent: time });
    }

    // Windows are drawn as large as they fit, at most at their own size, and not too small to be read: one that is then
    // too large is cut to what there is, and its content wraps and scrolls. Where they stand is in proportion.
    place(frame) {
        const room = { width: this.desk.clientWidth, height: this.desk.clientHeight };
        const fitting = Math.min((room.width - 8) / frame.width, (room.height - 8) / frame.height);
        const zoom = Math.min(1, Math.max(fitting, smallestZoom));
        const width = Math.min(frame.width, (room.width - 8) / zoom);
        const height = Math.min(frame.height, (room.height - 8) / zoom);
        const part = (offset, outer, inner) => Math.min(Math.max(offset / Math.max(outer - inner, 1), 0), 1);
        return {
            zoom,
            width,
            height,
            left: part(frame.x, this.#display.width, frame.width) * (room.width - width * zoom),
            top: part(frame.y, this.#display.height, frame.height) * (room.height - height * zoom),
        };
    }

    dragScale(action, frame) {
        const { zoom, width, height } = this.place(frame);
        if (action === "resize") {
            return { x: 1 / zoom, y: 1 / zoom };
        }
        return {
            x: (this.#display.width - frame.width) / Math.max(this.desk.clientWidth - width * zoom, 1),
            y: (this.#display.height - frame.height) / Math.max(this.desk.clientHeight - height * zoom, 1),
        };
    }

    #show(state, isResized = false) {
        const { screen } = state;
        if (!screen) {
            return;
        }
        const parts = [screen, ...[...screen.windows, ...screen.covers].map(({ content }) => state[content])];
        if (!isResized && parts.length === this.#shown.length && parts.every((part, index) => part === this.#shown[index])) {
            return;
        }
        this.#shown = parts;
        this.#display = screen.displays[0] ?? this.#display;
        // The one application that is not Sentrel is the Finder.
        set(this.frontName, { textContent: screen.windows.some((window) => window.isKey) ? "Sentrel" : "Finder" });
        const seen = new Set();
        screen.windows.forEach((window, index) => {
            seen.add(window.id);
            let view = this.#windows.get(window.id);
            if (!view) {
                view = new WindowView(this, window.id);
                this.#windows.set(window.id, view);
                this.desk.append(view.element);
            }
            view.element.style.zIndex = String(index + 1);
            view.show(window);
        });
        for (const [id, view] of this.#windows) {
            if (!seen.has(id)) {
                view.element.remove();
                this.#windows.delete(id);
            }
        }
        this.#showCovers(screen.covers, state);
        this.keyWindow = screen.windows.find((window) => window.isKey)?.id;
        this.#giveKeyboard(); // before the browser would have to lay out a thousand rows for it
        for (const window of screen.windows) {
            this.#windows.get(window.id).fill(state[window.content]);
        }
    }

    // A window that comes to the front has the keyboard, as soon as no question and no lock screen has it.
    #giveKeyboard() {
        if (this.desk.inert || this.keyWindow === this.hasKeyboard) {
            return;
        }
        this.hasKeyboard = this.keyWindow;
        const element = this.#windows.get(this.keyWindow)?.element;
        if (element && document.hasFocus() && !element.contains(document.activeElement)) {
            element.focus({ preventScroll: true });
        }
    }

    #showCovers(covers, state) {
        this.coverLayer.hidden = covers.length === 0;
        this.coverLayer.dataset.count = String(covers.length);
        for (const index of this.#covers.keys()) {
            if (index >= covers.length) {
                this.#covers.get(index).element.remove();
                this.#covers.delete(index);
            }
        }
        covers.forEach((cover, index) => {
            let view = this.#covers.get(index);
            if (!view) {
                const element = h("div", { className: "cover", role: "dialog", ariaModal: "true" });
                set(element, { "aria-label": `Lock screen of display ${cover.display + 1}` });
                const tree = new Tree(element, (action) => post("ui", { in: `cover:${index}`, ...action }));
                view = { element, tree };
                this.#covers.set(index, view);
                this.coverLayer.append(element);
            }
        });
        this.#showReach(); // before anything on a cover takes the keyboard
        covers.forEach((cover, index) => this.#covers.get(index).tree.show(state[cover.content], cover.focus));
    }

    #showMenuBar(bar) {
        const isThere = Boolean(bar?.icon);
        this.item.hidden = !isThere;
        if (isThere && this.item.dataset.icon !== bar.icon) {
            this.item.dataset.icon = bar.icon;
            this.itemIcon.replaceChildren(icon(bar.icon));
        }
        this.menuShown = Boolean(bar?.menu);
        set(this.item, { "aria-label": bar?.label || "Sentrel", "aria-expanded": String(this.menuShown) });
        const opens = this.menuShown && this.menuContent.hidden;
        this.menuContent.hidden = !this.menuShown;
        this.menuTree.show(bar?.menu ?? null);
        if (opens && document.hasFocus()) {
            this.#menuControls()[0]?.focus({ preventScroll: true });
        }
    }

    #menuControls() {
        return [...this.menuContent.querySelectorAll("button:not(:disabled), input:not(:disabled)")];
    }

    #moveInMenu(event) {
        const controls = this.#menuControls();
        const present = controls.indexOf(document.activeElement);
        const next = {
            ArrowDown: (present + 1) % controls.length,
            ArrowUp: (Math.max(present, 0) + controls.length - 1) % controls.length,
            Home: 0,
            End: controls.length - 1,
        }[event.key];
        if (next !== undefined) {
            event.preventDefault();
            controls[next]?.focus();
        }
    }

    // Behind a closed lid, and asleep, the screen shows nothing and takes nothing; more displays go on without the lid.
    #showPower({ lid, displays, isAsleep }) {
        const isShut = lid === "closed" && displays < 2;
        this.isDark = isShut || isAsleep;
        this.element.classList.toggle("dark-screen", this.isDark);
        set(this.note, { textContent: isShut ? "The lid is closed." : "The Mac sleeps.", hidden: !this.isDark });
        this.#showReach();
    }

    // The keyboard can't go where the mouse can't: behind panels and covers.
    #showReach() {
        const isAsking = this.panels.isAsking;
        this.panels.element.inert = this.isDark;
        this.coverLayer.inert = this.isDark || isAsking;
        for (const part of [this.bar, this.desk, this.menuContent]) {
            part.inert = this.isDark || isAsking || !this.coverLayer.hidden;
        }
    }
}
