// The phone beside the Mac. It speaks its owner's language, which is the Mac's.

import { follow, h, set } from "./dom.js";
import { act } from "./server.js";
import { ago, wordsIn } from "./words.js";

const longestShown = 50;
const noticesShown = 5;
const bannerShown = 6000; // milliseconds

export class Phone {
    #state = { alerts: [], notifications: [], macs: [] };
    #seen = 0;
    #language = "";
    #isAlarm = false;
    #isBannerDue = false;

    constructor(element, stream, now) {
        this.element = element;
        this.now = now;
        this.clock = h("time", { className: "phone-clock" });
        this.bannerText = h("strong", {});
        this.banner = h("div", { className: "banner" }, this.bannerText);
        this.notice = h("div", { role: "status" }); // there before its banner, so that it is read out
        this.macs = h("div", { className: "phone-macs" });
        this.noMacs = h("p", { className: "quiet" });
        this.alertsTitle = h("h3", {});
        this.alerts = h("ul", { className: "phone-alerts" });
        this.noAlerts = h("p", { className: "quiet" });
        this.noticesTitle = h("h3", {});
        this.notices = h("ul", { className: "phone-notices" });
        this.photo = h("button", { type: "button", className: "phone-photo", hidden: true });
        this.photo.addEventListener("click", () => this.#closePhoto());
        this.photo.addEventListener("keydown", (event) => event.key === "Escape" && this.#closePhoto());
        this.page = h(
            "div",
            { className: "phone-page", tabIndex: 0, role: "group", ariaLabel: "Sentrel on the phone" },
            this.macs,
            this.noMacs,
            this.alertsTitle,
            this.alerts,
            this.noAlerts,
            this.noticesTitle,
            this.notices,
        );
        const top = h("div", { className: "phone-top" }, h("h2", {}, "Sentrel"), this.clock);
        element.append(h("div", { className: "phone-notch", ariaHidden: "true" }), top, this.notice, this.page, this.photo);
        stream.on("phone", (state) => this.#show(state));
        stream.on("run", (run) => this.#follow(run));
    }

    /// The text of the latest notification; empty while there is none.
    get latest() {
        const notification = this.#state.notifications[0];
        return notification && this.words ? this.#textOf(notification) : "";
    }

    async #follow({ language, timeZone, isAlarmActive }) {
        this.#isAlarm = Boolean(isAlarmActive);
        this.#showBanner();
        if (language === this.#language && timeZone === this.timeZone) {
            return;
        }
        this.#language = this.element.lang = language;
        this.timeZone = timeZone;
        this.words = await wordsIn(language);
        set(this.alertsTitle, { textContent: this.words("alerts") });
        set(this.noAlerts, { textContent: this.words("noAlerts") });
        set(this.noticesTitle, { textContent: this.words("notifications") });
        set(this.noMacs, { textContent: this.words("noMacs") });
        set(this.photo, { ariaLabel: this.words("closePhoto") });
        this.alerts.replaceChildren();
        this.#show(this.#state);
        if (this.#isAlarm && this.latest) {
            this.#ring(); // for a page that was opened while the alarm sounds
        }
    }

    #show(state) {
        const fresh = state.notifications.length - this.#state.notifications.length;
        const isNews = this.#seen > 0 && fresh > 0;
        if (state !== this.#state) {
            ++this.#seen;
        }
        this.#state = state;
        if (!this.words) {
            return;
        }
        set(this.bannerText, { textContent: this.latest }); // anew: its Mac may be known later
        if (isNews) {
            this.#ring();
        }
        follow(this.macs, state.macs, {
            key: (mac) => mac.id,
            make: () => this.#mac(),
            update: (element, mac) => this.#showMac(element, mac),
        });
        this.noMacs.hidden = state.macs.length > 0;
        follow(this.alerts, state.alerts.slice(0, longestShown), {
            key: (alert) => JSON.stringify(alert),
            make: (alert) => this.#alert(alert),
        });
        this.noAlerts.hidden = state.alerts.length > 0;
        const latest = state.notifications.slice(0, noticesShown);
        this.noticesTitle.hidden = latest.length === 0;
        this.notices.replaceChildren(
            ...latest.map((each) =>
                h("li", {}, h("span", {}, this.#textOf(each)), h("span", { className: "quiet" }, this.#time(each.date))),
            ),
        );
        this.refreshTimes();
    }

    #ring() {
        this.#isBannerDue = true;
        this.#showBanner();
        clearTimeout(this.timer);
        this.timer = setTimeout(() => {
            this.#isBannerDue = false;
            this.#showBanner();
        }, bannerShown);
    }

    // The banner goes after a while, but not before the alarm that it tells of.
    #showBanner() {
        const isShown = this.#isBannerDue || (this.#isAlarm && this.notice.childElementCount > 0);
        if (isShown !== this.notice.childElementCount > 0) {
            this.notice.replaceChildren(...(isShown ? [this.banner] : []));
        }
        this.element.classList.toggle("ringing", isShown && this.#isAlarm);
    }

    // The server words it in English; its parts are the Mac's own words.
    #textOf({ text }) {
        const mac = this.#state.macs.find(({ name }) => text.endsWith(` on ${name}`))?.name;
        return mac ? this.words("on", { what: text.slice(0, -` on ${mac}`.length), mac }) : text;
    }

    #time(seconds) {
        const format = { hour: "numeric", minute: "2-digit", timeZone: this.timeZone };
        // In one piece: "PM" never stands alone on a line.
        return new Date(seconds * 1000).toLocaleTimeString(this.#language, format).replaceAll(" ", "\u00a0");
    }

    #mac() {
        const [name, state, seen] = [h("strong", {}), h("span", {}), h("span", { className: "quiet" })];
        const arm = h("button", { type: "button", onclick: () => act({ phone: { arm: !element.mac.isArmed } }) });
        const element = h("div", { className: "phone-mac" }, name, state, seen, arm);
        return Object.assign(element, { name, state, seen, arm });
    }

    #showMac(element, mac) {
        const { name, state, seen, arm } = Object.assign(element, { mac });
        seen.lastSeen = mac.lastSeen;
        const action = this.words(mac.isArmed ? "disarm" : "arm");
        set(name, { textContent: mac.name });
        set(state, { textContent: this.words(mac.isArmed ? "armed" : "disarmed") });
        set(state, { className: mac.isArmed ? "badge armed" : "badge" });
        set(arm, { textContent: action, disabled: !mac.isCompatible });
        set(arm, { "aria-label": this.words("byPhone", { action, mac: mac.name }) });
    }

    #alert(alert) {
        const about = h("span", { className: "quiet" }, `${alert.device}, ${this.#time(alert.date)}`);
        const text = h("div", {}, h("strong", {}, alert.title), about);
        if (!alert.photo) {
            return h("li", {}, h("span", { className: "no-photo", ariaHidden: "true" }), text);
        }
        const picture = h("img", { src: alert.photo, alt: "" });
        const open = h("button", { type: "button", ariaLabel: this.words("photo", { what: alert.title }) }, picture);
        open.addEventListener("click", () => {
            const alt = this.words("photo", { what: alert.title });
            this.photo.replaceChildren(h("img", { src: alert.photo, alt }));
            this.photo.hidden = false;
            this.photo.cameFrom = open;
            this.photo.focus();
        });
        return h("li", {}, open, text);
    }

    #closePhoto() {
        this.photo.hidden = true;
        this.photo.cameFrom?.focus();
    }

    refreshTimes() {
        if (!this.words) {
            return;
        }
        set(this.clock, { textContent: this.#time(this.now()) });
        for (const seen of this.macs.querySelectorAll(".phone-mac > .quiet")) {
            const words = ago(this.now() - seen.lastSeen, this.#language);
            set(seen, { textContent: this.words("seen", { ago: words }) });
        }
    }
}
