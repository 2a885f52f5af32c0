// A theft that the visitor does herself, in three steps. Each points at its control; the Mac's own state tells when it
// is done, however the visitor did it.

import { h, icon, set } from "./dom.js";

const remembered = "sentrel-guide"; // in the browser's storage: who has seen it is not bothered again
const gap = 12; // pixels between the card and its control
const head = 50; // pixels that the page's head takes
const narrow = 860; // pixels: the page is one column, and the card at its edge
const find = (...selectors) => selectors.map((each) => document.querySelector(each)).find((each) => each?.checkVisibility());
const named = (label) => `#hardware [data-value="${label}"]`;

/// Where the visitor is: the step's number, what to do, and at what. Nothing when everything is done.
function stepOf({ run, panels, hardware, phone }, guide) {
    if (run.process !== "running") {
        return [guide.step, "Sentrel has ended. Open it again.", () => find("#hardware .default")];
    }
    if (panels?.login) {
        return [guide.step, "Sentrel asks whether it is you. It is: log in.", () => find(".system-panel .default")];
    }
    if (!run.isArmed && !run.isAlarmActive) {
        return guide.isMenuOpen
            ? [1, "Now switch it on.", () => find(".menu input")]
            : [1, "Arm the Mac: open the shield in its menu bar.", () => find(".menu-item")];
    }
    if (!run.isAlarmActive) {
        const text = "It is armed. Now be the thief: pull the charger.";
        return hardware.power === "ac"
            ? [2, text, () => find(named("battery"))]
            : [2, "Plug the charger in first. Then pull it again.", () => find(named("ac"))];
    }
    if (find(".phone-photo")) {
        return [3, "This is the thief. Close the photo, and stop the alarm.", () => null];
    }
    if (!guide.hasLooked) {
        const hasPhoto = phone.alerts[0]?.photo;
        const text = hasPhoto
            ? "The alarm sounds, and the owner's phone has the thief's photo. Look at it."
            : "The alarm sounds. In a second the owner's phone shows it.";
        return [3, text, () => find(".phone-alerts button", "#phone"), hasPhoto && "Next"];
    }
    if (hardware.lid === "closed") {
        return [3, "Open the lid, so that you can stop the alarm.", () => find(named("open"))];
    }
    return guide.isMenuOpen
        ? [3, "Stop the alarm. Only the owner can: it asks for her login.", () => find(".menu .role-prominent")]
        : [3, "Now stop the alarm: the shield again.", () => find(".menu-item")];
}

export class Guide {
    #stream;
    #isShown = false;
    #timer = 0;
    step = 1;
    hasLooked = false;

    constructor(stream, sound) {
        this.#stream = stream;
        this.sound = sound;
        this.button = h("button", { type: "button", className: "guide-button", onclick: () => this.begin() });
        this.button.append(icon("hand"), h("span", {}, "Steal it yourself"));
        this.number = h("p", { className: "quiet" });
        this.text = h("p", { role: "status", className: "guide-text" });
        this.next = h("button", { type: "button", className: "default" });
        this.next.addEventListener("click", () => this.#goOn());
        this.skip = h("button", { type: "button", onclick: () => this.end() }, "Skip");
        this.where = h("button", { type: "button", onclick: () => this.#goThere() }, "Show me");
        const buttons = h("div", { className: "buttons" }, this.next, this.where, this.skip);
        this.card = h("section", { className: "guide", ariaLabel: "Guided theft", hidden: true }, this.number, this.text, buttons);
        this.ring = h("div", { className: "guide-ring", ariaHidden: "true", hidden: true });
        document.querySelector("header").after(this.card);
        document.body.append(this.ring);
        this.card.addEventListener("keydown", (event) => event.key === "Escape" && this.end());
        for (const answered of ["click", "keydown"]) {
            document.addEventListener(answered, (event) => this.#noteLook(event)); // after the phone's own listeners
        }
        for (const change of ["scroll", "resize"]) {
            addEventListener(change, () => this.#place(), { passive: true, capture: true });
        }
        stream.on("state", () => this.#show());
        if (!isRemembered()) {
            this.begin();
        }
    }

    begin() {
        Object.assign(this, { step: 1, hasLooked: false, wasAlarm: false, isOver: false });
        this.#isShown = true;
        clearInterval(this.#timer);
        this.#timer = setInterval(() => this.#place(), 200); // what it points at may move by itself
        this.#show();
    }

    end() {
        remember();
        this.#isShown = false;
        clearInterval(this.#timer);
        this.card.hidden = this.ring.hidden = true;
    }

    get isMenuOpen() {
        return Boolean(this.#stream.state.menuBar?.menu);
    }

    #noteLook({ target }) {
        if (target.closest("#phone")) {
            this.hasLooked ||= Boolean(find(".phone-photo"));
            this.#show();
        }
    }

    #goOn() {
        if (this.isOver) {
            this.end();
        } else {
            this.hasLooked = true;
            this.#show();
        }
    }

    #show() {
        const { state } = this.#stream;
        if (!this.#isShown || !state.run || !state.hardware) {
            return;
        }
        this.isOver ||= this.wasAlarm && !state.run.isAlarmActive;
        this.wasAlarm ||= state.run.isAlarmActive;
        const over = [3, "That was it. The lid, a shake and wrong passcodes do the same: try them.", () => null, "Done"];
        const [step, text, where, next] = this.isOver ? over : stepOf(state, this);
        this.step = step;
        this.target = where;
        set(this.number, { textContent: this.isOver ? "Safe again" : `Step ${step} of 3` });
        set(this.text, { textContent: text });
        set(this.next, { textContent: next || "", hidden: !next });
        this.where.hidden = this.skip.hidden = this.isOver;
        this.card.hidden = false;
        this.#place();
    }

    #goThere() {
        const target = this.target?.();
        target?.scrollIntoView({ block: "nearest" });
        target?.focus();
        this.#place();
    }

    // Beside its control, where there is room below the page's head; otherwise at the bottom.
    #place() {
        if (!this.#isShown || this.card.hidden) {
            return;
        }
        const target = this.target?.();
        this.ring.hidden = !target;
        const { offsetWidth: width, offsetHeight: height } = this.card;
        const bottom = innerHeight - height - (document.querySelector("#alarm-bar").offsetHeight || 8);
        const put = (left, top) => Object.assign(this.card.style, { left: `${left}px`, top: `${top}px` });
        if (!target) {
            put((innerWidth - width) * 0.36, innerWidth < narrow ? bottom : 2 * head);
            return;
        }
        const at = target.getBoundingClientRect();
        Object.assign(this.ring.style, {
            left: `${at.left - 5}px`,
            top: `${at.top - 5}px`,
            width: `${at.width + 10}px`,
            height: `${at.height + 10}px`,
        });
        // The control's own surroundings are not covered, either.
        const around = (target.closest(".system-panel, .menu") ?? target).getBoundingClientRect();
        if (innerWidth < narrow) {
            put(8, around.bottom > bottom && around.top < innerHeight ? 8 : bottom);
            return;
        }
        const fits = (left, top) => left >= 8 && top >= head && left + width <= innerWidth - 8 && top + height <= innerHeight - 8;
        const covers = (other, left, top) => {
            const box = other?.getBoundingClientRect();
            return box && left < box.right && box.left < left + width && top < box.bottom && box.top < top + height;
        };
        const along = Math.min(Math.max(around.left + around.width / 2 - width / 2, 8), innerWidth - width - 8);
        const beside = Math.min(Math.max(around.top + around.height / 2 - height / 2, head), innerHeight - height - 8);
        const places = [
            [around.left - gap - width, beside],
            [along, around.top - gap - height],
            [along, around.bottom + gap],
            [around.right + gap, beside],
        ];
        const fitting = places.filter((place) => fits(...place));
        put(...(fitting.find((place) => !covers(find(".menu"), ...place)) ?? fitting[0] ?? [along, bottom]));
    }
}

// A browser may keep nothing.
function isRemembered() {
    try {
        return localStorage.getItem(remembered) !== null;
    } catch {
        return false;
    }
}

function remember() {
    try {
        localStorage.setItem(remembered, "done");
    } catch {
        // Then it is shown again.
    }
}
