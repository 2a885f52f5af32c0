// Draws the product's view trees. An element stays as long as its node keeps its identity and kind, so that what the
// person is doing (typing, dragging, scrolling) goes on while the tree changes around it.

import { h, icon, leave, rememberFocus, set } from "./dom.js";
import { cancelFirst, firstText, isSame, oversOf, textsOf } from "./nodes.js";
import { latest } from "./server.js";

const rowsDrawnAtOnce = "oncontentvisibilityautostatechange" in document ? 12 : Infinity;
const styles = ["padding", "width", "height", "maxWidth", "background"];

function styleOf(name, value) {
    if (typeof value !== "number") {
        return value ?? "";
    }
    return name === "maxWidth" ? `min(100%, ${value}px)` : `${value}px`; // a small screen cuts windows
}

const whenIdle = globalThis.requestIdleCallback ?? ((work) => setTimeout(work, 50));
const rowPatterns = new Map(["vstack", "hstack"].map((kind) => [kind, h("div", { className: `ui-${kind}` })]));

/// One tree in one container. `send` takes what the person does: {node, do, value}. Sheets and dialogs lie in `host`,
/// which does not scroll with the container.
export class Tree {
    #container;
    #host;
    #send;
    #focus = "";
    #selectionAnchor = null;
    #typing = null;

    constructor(container, send, host = container) {
        this.#container = container;
        this.#host = h("div", { className: "overlays" });
        this.#send = send;
        host.append(this.#host);
    }

    show(root, focus = "") {
        const overs = root ? oversOf(root) : [];
        // The keyboard can't go behind a sheet; it returns there when the sheet is gone.
        if (overs.length === 0) {
            this.#reach(true);
        }
        this.#fill(this.#container, root ? [root] : []);
        this.#fill(this.#host, overs);
        if (overs.length > 0) {
            this.#reach(false);
        }
        if (focus && focus !== this.#focus) {
            this.#find(focus)?.focus({ preventScroll: true });
        }
        this.#focus = focus;
    }

    #reach(isReached) {
        const isBeside = !this.#container.contains(this.#host);
        for (const element of isBeside ? [this.#container] : this.#container.children) {
            element.inert = !isReached && element !== this.#host;
        }
        [...this.#host.children].forEach((over, index, all) => (over.inert = index < all.length - 1));
    }

    #find(identity) {
        const controls = [this.#host, this.#container].flatMap((part) => [...part.querySelectorAll("[data-control]")]);
        return controls.find((element) => element.dataset.control === identity);
    }

    // Brings the children of an element into line with nodes, in order.
    #fill(parent, nodes) {
        const present = new Map();
        for (const element of parent.children) {
            if (element.sentrelKey) {
                present.set(element.sentrelKey, element);
            }
        }
        // First, so that what stays is not moved: an element that is moved loses the keyboard.
        const keys = nodes.map((node) => `${node.kind} ${node.id}`);
        const wanted = new Set(present.size > 0 ? keys : []);
        for (const [key, element] of present) {
            if (!wanted.has(key)) {
                leave(element);
            }
        }
        let place = parent.firstChild;
        for (const [index, node] of nodes.entries()) {
            const key = keys[index];
            let element = present.get(key);
            if (!element) {
                element = parent.list ? this.#makeRow(node) : this.#make(node);
                element.sentrelKey = key;
                if (parent.rowsDrawn !== undefined && element.inside) {
                    element.inside.list = parent;
                }
            }
            // A new element is made whole before it gets its place: the browser lays it out once.
            if (parent.list) {
                this.#showRow(parent.list, element, node);
            } else {
                this.#update(element, node);
            }
            if (element !== place) {
                parent.insertBefore(element, place);
            } else {
                place = place.nextSibling;
            }
        }
    }

    #makeRow(node) {
        const row = rowPatterns.get(node.kind)?.cloneNode() ?? this.#make(node);
        row.rowId = node.id.slice(node.id.lastIndexOf("/") + 1);
        row.setAttribute("role", "option");
        row.setAttribute("aria-selected", "false");
        return row;
    }

    // Only the nearly visible rows of a long list are drawn; the others are there, and have their names.
    #showRow(list, row, node) {
        const isNew = row.isDrawn === undefined;
        if (!isNew && isSame(row.sentrelNode, node)) {
            return;
        }
        row.sentrelNode = node;
        if (row.isDrawn || (isNew && list.rowsDrawn < rowsDrawnAtOnce)) {
            this.#drawRow(list, row);
            return;
        }
        row.isDrawn = false;
        this.#nameLater(list, row);
    }

    #nameLater(list, row) {
        list.unnamed.push(row);
        list.naming ??= whenIdle(() => {
            list.naming = null;
            for (const unnamed of list.unnamed.splice(0).filter((each) => !each.isDrawn)) {
                unnamed.setAttribute("aria-label", textsOf(unnamed.sentrelNode));
            }
        });
    }

    #drawRow(list, row) {
        if (!row.isDrawn) {
            row.isDrawn = true;
            ++list.rowsDrawn;
        }
        this.#update(row, row.sentrelNode); // which takes the name away again
    }

    #make(node) {
        const make = this.#makers[node.kind];
        const element = make ? make(node) : h("div", { className: "group" });
        element.classList.add(`ui-${node.kind}`);
        return element;
    }

    #update(element, node) {
        element.sentrelNode = node;
        const control = element.inputPart ?? element;
        set(element, { title: node.help ?? "" });
        set(control, { "aria-label": node.label ?? null, disabled: node.disabled ?? false, "data-control": node.id });
        element.classList.toggle("disabled", node.disabled ?? false);
        const shown = (element.sentrelStyle ??= {});
        for (const name of styles) {
            if (shown[name] !== node[name]) {
                shown[name] = node[name];
                element.style[name] = styleOf(name, node[name]);
            }
        }
        this.#updaters[node.kind]?.(element, node);
        const inside = element.inside ?? (node.children || node.toolbar ? element : null);
        if (inside) {
            const toolbar = node.toolbar ? [{ kind: "toolbar", id: `${node.id}/toolbar`, children: node.toolbar }] : [];
            const children = node.kind === "dialogContent" ? cancelFirst(node.children ?? []) : (node.children ?? []);
            this.#fill(inside, [...toolbar, ...children]);
            if (element.rowsDrawn !== undefined) {
                this.#markRows(element);
            }
        }
    }

    async #act(element, action, value) {
        if (action !== "text") {
            await this.#typing; // a button never overtakes what was typed before it
        }
        return this.#send({ node: element.sentrelNode.id, do: action, value });
    }

    #stack = (node) => {
        const element = h("div", {});
        element.sentrelNode = node;
        return element;
    };

    #button = () => {
        const text = h("span", {});
        const button = h("button", { type: "button", onclick: () => this.#act(button, "press") }, text);
        button.text = text;
        return button;
    };

    #toggle = () => {
        const input = h("input", { type: "checkbox" });
        const text = h("span", {});
        const label = h("label", {}, input, text);
        input.addEventListener("change", () => {
            const wanted = input.checked;
            // The state decides what the box shows.
            input.checked = Boolean(label.sentrelNode.on);
            this.#act(label, "switch", wanted);
        });
        label.inputPart = input;
        label.text = text;
        return label;
    };

    #slider = () => {
        const input = h("input", { type: "range" });
        const text = h("span", {});
        const value = h("span", { className: "reading", ariaHidden: "true" });
        const label = h("label", {}, text, input, value);
        const send = latest((wanted) => this.#act(label, "slide", wanted));
        input.addEventListener("input", () => send(input.valueAsNumber));
        input.addEventListener("change", () => {
            label.wasReleased = true;
        });
        Object.assign(label, { inputPart: input, text, value });
        return label;
    };

    #field = (node) => {
        const input = h("input", { type: node.kind === "secure" ? "password" : "text", autocomplete: "off" });
        const send = latest((wanted) => this.#act(input, "text", wanted));
        input.addEventListener("input", () => {
            this.#typing = send(input.value);
        });
        input.addEventListener("focus", () => this.#act(input, "focus", true));
        input.addEventListener("keydown", (event) => {
            if (event.key === "Enter" && !event.isComposing) {
                event.preventDefault();
                event.stopPropagation();
                this.#act(input, "submit");
            }
        });
        return input;
    };

    #list = () => {
        const list = h("div", { role: "listbox", tabIndex: 0 });
        Object.assign(list, { rowsDrawn: 0, unnamed: [], naming: null });
        list.addEventListener("contentvisibilityautostatechange", ({ target, skipped }) => {
            if (!skipped && target.isDrawn === false) {
                this.#drawRow(list, target);
            }
        });
        list.addEventListener("click", (event) => this.#clickRow(list, event));
        list.addEventListener("keydown", (event) => this.#moveInList(list, event));
        return list;
    };

    #rowsOf(list) {
        return [...list.querySelectorAll("[role=option]")];
    }

    #select(list, rows) {
        return this.#act(list, "select", rows.map((row) => row.rowId));
    }

    #clickRow(list, event) {
        const row = event.target.closest("[role=option]");
        if (!row) {
            return;
        }
        const rows = this.#rowsOf(list);
        const selected = new Set(list.sentrelNode.selection ?? []);
        const isMultiple = list.sentrelNode.mode === "multiple";
        if (isMultiple && event.shiftKey && this.#selectionAnchor) {
            const anchor = rows.findIndex((other) => other.rowId === this.#selectionAnchor);
            const [from, to] = [anchor, rows.indexOf(row)].sort((a, b) => a - b);
            this.#select(list, rows.slice(Math.max(from, 0), to + 1));
            return;
        }
        this.#selectionAnchor = row.rowId;
        if (isMultiple && (event.metaKey || event.ctrlKey)) {
            this.#select(list, rows.filter((other) => (other === row) !== selected.has(other.rowId)));
            return;
        }
        this.#select(list, [row]);
    }

    #moveInList(list, event) {
        const step = { ArrowDown: 1, ArrowUp: -1 }[event.key];
        const rows = this.#rowsOf(list);
        if (event.key === "a" && (event.metaKey || event.ctrlKey) && list.sentrelNode.mode === "multiple") {
            event.preventDefault();
            this.#select(list, rows);
            return;
        }
        if (!step || rows.length === 0) {
            return;
        }
        event.preventDefault();
        const selected = new Set(list.sentrelNode.selection ?? []);
        const present = rows.findIndex((row) => selected.has(row.rowId));
        const next = rows[Math.min(Math.max(present + step, 0), rows.length - 1)];
        this.#selectionAnchor = next.rowId;
        this.#select(list, [next]);
        next.scrollIntoView({ block: "nearest" });
    }

    #section = (node) => {
        const header = h("h3", {});
        const body = h("div", { className: "section-body" });
        const footer = h("p", { className: "section-footer" });
        const section = h("div", { role: "group" }, header, body, footer);
        Object.assign(section, { header, inside: body, footer, sentrelNode: node });
        return section;
    };

    #dialog = () => {
        const title = h("h3", {});
        const message = h("p", {});
        const buttons = h("div", { className: "dialog-buttons" });
        const dialog = h("div", { role: "alertdialog", "aria-modal": "true" }, title, message, buttons);
        Object.assign(dialog, { titleText: title, message, inside: buttons });
        dialog.addEventListener("keydown", (event) => {
            const cancel = dialog.querySelector(".role-cancel");
            if (event.key === "Escape" && cancel) {
                event.stopPropagation();
                cancel.click();
            }
        });
        return rememberFocus(h("div", { className: "veil" }, dialog));
    };

    #sheet = () => {
        const body = h("div", { role: "dialog", "aria-modal": "true", className: "sheet-body" });
        const veil = rememberFocus(h("div", { className: "veil" }, body));
        veil.inside = body;
        veil.addEventListener("keydown", (event) => {
            if (event.key === "Escape") {
                event.stopPropagation();
                this.#act(veil, "dismiss");
            }
        });
        return veil;
    };

    #makers = {
        vstack: this.#stack,
        hstack: this.#stack,
        text: () => h("span", {}),
        divider: () => h("hr", {}),
        image: (node) => (node.source === "data" ? h("img", { alt: "" }) : h("span", { className: "symbol" })),
        button: this.#button,
        toggle: this.#toggle,
        slider: this.#slider,
        field: this.#field,
        secure: this.#field,
        list: this.#list,
        section: this.#section,
        progress: () => h("div", { role: "status" }, h("progress", {}), h("span", {})),
        sheetContent: this.#sheet,
        dialogContent: this.#dialog,
    };

    #updaters = {
        vstack: (element, node) => this.#updateStack(element, node),
        hstack: (element, node) => this.#updateStack(element, node),
        text: (element, node) => {
            set(element, { textContent: node.text });
            element.className = `ui-text text-${node.style ?? "body"} color-${node.color ?? "primary"}`;
        },
        image: (element, node) => {
            if (node.source === "data") {
                set(element, { src: node.url, alt: node.label ?? "" });
            } else if (element.shown !== node.name) {
                element.shown = node.name;
                element.replaceChildren(icon(node.name, node.label ?? ""));
            }
        },
        button: (element, node) => {
            set(element.text, { textContent: node.text });
            element.className = `ui-button role-${node.role ?? "standard"}${node.image ? " has-image" : ""}`;
            if (element.shown !== node.image?.name) {
                element.shown = node.image?.name;
                element.querySelector("svg")?.remove();
                if (node.image) {
                    element.prepend(icon(node.image.name));
                }
            }
            if (node.image && !node.label) {
                set(element, { "aria-label": node.text });
            }
            const offersReturn = node.key === "return" || node.role === "prominent";
            element.classList.toggle("default", offersReturn);
        },
        toggle: (element, node) => {
            set(element.text, { textContent: node.text });
            set(element.inputPart, { checked: Boolean(node.on) });
        },
        slider: (element, node) => {
            set(element.text, { textContent: node.text });
            set(element.value, { textContent: node.valueText ?? "" });
            set(element.inputPart, { min: node.lower, max: node.upper, step: node.step ?? "any" });
            if (!element.inputPart.matches(":active")) {
                element.inputPart.value = String(node.value);
            }
            set(element.inputPart, { "aria-label": node.label ?? node.text, "aria-valuetext": node.valueText ?? null });
        },
        field: (element, node) => {
            set(element, { placeholder: node.prompt ?? "", "aria-label": node.label ?? node.prompt ?? "" });
            if (document.activeElement !== element && element.value !== (node.value ?? "")) {
                element.value = node.value ?? "";
            }
        },
        secure: (element, node) => {
            set(element, { placeholder: node.prompt ?? "", "aria-label": node.label ?? node.prompt ?? "" });
            // Nobody can read the text back; what can be seen is that it was emptied.
            if ((node.length ?? 0) === 0 && element.sentrelLength > 0) {
                element.value = "";
            }
            element.sentrelLength = node.length ?? 0;
        },
        list: (element, node) => {
            set(element, { "aria-multiselectable": node.mode === "multiple" ? "true" : null });
        },
        section: (element, node) => {
            set(element.header, { textContent: node.header ?? "", hidden: !node.header });
            if (element.inside.list) {
                // A list has rows and groups of rows, and nothing else.
                set(element.header, { "aria-hidden": "true" });
                set(element, { "aria-label": node.label ?? node.header ?? null });
            }
            set(element.footer, { textContent: node.footer ?? "", hidden: !node.footer });
        },
        split: (element, node) => element.classList.toggle("no-sidebar", node.isSidebarShown === false),
        progress: (element, node) => {
            set(element.lastChild, { textContent: node.text ?? "" });
            if (node.fraction !== undefined) {
                element.firstChild.value = node.fraction;
            }
        },
        dialogContent: (element, node) => {
            const dialog = element.firstChild;
            set(dialog.titleText, { textContent: node.title });
            set(dialog.message, { textContent: node.message ?? "", hidden: !node.message });
            element.inside = dialog.inside;
            set(dialog, { "aria-label": node.title });
            if (!element.wasFocused) {
                element.wasFocused = true;
                // No key does what can't be undone.
                const isGrave = (node.children ?? []).some((button) => button.role === "destructive");
                const first = isGrave ? "button.role-cancel, button:not(.role-destructive)" : "button.default, button";
                queueMicrotask(() => dialog.querySelector(first)?.focus());
            }
        },
        sheetContent: (element, node) => {
            set(element.inside, { "aria-label": node.label ?? firstText(node) ?? null });
        },
    };

    #markRows(list) {
        const selected = new Set(list.sentrelNode.selection ?? []);
        for (const row of this.#rowsOf(list)) {
            const isSelected = selected.has(row.rowId);
            if ((row.isSelected ?? false) !== isSelected) {
                row.isSelected = isSelected;
                row.setAttribute("aria-selected", isSelected);
            }
        }
    }

    #updateStack(element, node) {
        element.style.gap = `${node.spacing ?? 8}px`;
        element.dataset.align = node.align ?? "center";
    }
}
