// The system's own questions and notices, over everything that the product shows.

import { h } from "./dom.js";
import { post } from "./server.js";
import { wordsIn } from "./words.js";

const answer = (panel, value) => post("panel", { panel, answer: value });

/// A panel with a question and its answers: [label, what it does, "default" or "cancel" or nothing]. Return gives the
/// default one, Escape the one that cancels.
function systemPanel(title, text, fields, answers) {
    const buttons = answers.map(([label, act, kind]) =>
        h("button", { type: "button", className: kind ?? "", onclick: act }, label),
    );
    const panel = h(
        "div",
        { className: "system-panel", role: "dialog", ariaModal: "true", ariaLabel: title },
        h("h2", {}, title),
        text ? h("p", {}, text) : null,
        ...fields,
        h("div", { className: "dialog-buttons" }, ...buttons),
    );
    panel.addEventListener("keydown", (event) => {
        const isAnswered = event.target.matches("button");
        const wanted = event.key === "Escape" ? ".cancel" : event.key === "Enter" && !isAnswered ? ".default" : null;
        if (wanted && !event.isComposing) {
            event.preventDefault();
            event.stopPropagation();
            (panel.querySelector(wanted) ?? panel.querySelector(".default"))?.click();
        }
    });
    return panel;
}

let words; // in the Mac's language

function loginPanel({ reason }) {
    const how = h("p", { className: "quiet" }, words("how"));
    return systemPanel("Sentrel", words("trying", { reason }), [how], [
        [words("cancel"), () => answer("login", "cancel"), "cancel"],
        [words("wrong"), () => answer("login", "fail")],
        [words("logIn"), () => answer("login", "succeed"), "default"],
    ]);
}

function alertPanel({ message, informative }) {
    return systemPanel(message, informative, [], [[words("ok"), () => answer("alert", "close"), "default"]]);
}

function savePanel({ title, name, folder }) {
    const field = h("input", { type: "text", value: name, ariaLabel: words("fileName") });
    return systemPanel(title, words("place", { folder }), [field], [
        [words("cancel"), () => answer("save", "cancel"), "cancel"],
        [words("save"), () => answer("save", field.value), "default"],
    ]);
}

function previewPanel({ image, name }) {
    return systemPanel(words("photoTitle"), "", [h("img", { src: image, alt: "", title: name })], [
        [words("close"), () => answer("preview", "close"), "default"],
    ]);
}

const kinds = { login: loginPanel, alert: alertPanel, save: savePanel, preview: previewPanel };

export class SystemPanels {
    #shown = new Map();
    #panels = {};
    #cameFrom = null;

    /// `changed` is told before anything takes the keyboard, `ended` when the last panel has gone.
    constructor(changed, ended) {
        this.element = h("div", { className: "panels", hidden: true });
        this.changed = changed;
        this.ended = ended;
    }

    /// From now on the panels are in this language; before, none is shown.
    async speak(language) {
        words = await wordsIn(language);
        this.#shown.forEach((panel) => (panel.key = ""));
        this.show(this.#panels);
    }

    get isAsking() {
        return this.element.childElementCount > 0;
    }

    show(panels) {
        this.#panels = panels;
        if (!words) {
            return;
        }
        const wasAsking = this.isAsking;
        if (!wasAsking) {
            this.#cameFrom = document.activeElement;
        }
        for (const [name, make] of Object.entries(kinds)) {
            this.#showOne(name, panels[name], make);
        }
        this.element.hidden = !this.isAsking;
        this.changed();
        if (this.isAsking) {
            this.element.lastElementChild.querySelector("input, button.default")?.focus({ preventScroll: true });
        } else if (wasAsking) {
            this.#cameFrom?.focus({ preventScroll: true });
            this.ended();
        }
    }

    #showOne(name, content, make) {
        const key = JSON.stringify(content ?? null);
        if (this.#shown.get(name)?.key === key) {
            return;
        }
        this.#shown.get(name)?.element?.remove();
        const element = content ? make(content) : null;
        if (element) {
            this.element.append(element);
        }
        this.#shown.set(name, { key, element });
    }
}
