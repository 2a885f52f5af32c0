// The phone beside the Mac.

import { follow, h, set } from "./dom.js";
import { act } from "./server.js";

/// How long ago, in words.
export function ago(seconds) {
    if (seconds < 10) {
        return "just now";
    }
    if (seconds < 90) {
        return `${Math.round(seconds)} s ago`;
    }
    return seconds < 5400 ? `${Math.round(seconds / 60)} min ago` : `${Math.round(seconds / 3600)} h ago`;
}

const longestShown = 50;
const noticesShown = 5;

export class Phone {
    #state = { alerts: [], notifications: [], macs: [] };
    #seen = 0;

    constructor(element, stream, now) {
        this.now = now;
        this.banner = h("div", { className: "banner", role: "status", hidden: true });
        this.macs = h("div", { className: "phone-macs" });
        this.noMacs = h("p", { className: "quiet" }, "No Mac has been seen in this account.");
        this.alerts = h("ul", { className: "phone-alerts" });
        this.noAlerts = h("p", { className: "quiet" }, "No alerts");
        this.noticesTitle = h("h3", {}, "Notifications");
        this.notices = h("ul", { className: "phone-notices" });
        this.photo = h("button", { type: "button", className: "phone-photo", hidden: true, ariaLabel: "Close photo" });
        this.photo.addEventListener("click", () => {
            this.photo.hidden = true;
        });
        element.append(
            h("div", { className: "phone-notch", ariaHidden: "true" }),
            this.banner,
            h("h2", {}, "Sentrel"),
            this.macs,
            this.noMacs,
            h("h3", {}, "Alerts"),
            this.alerts,
            this.noAlerts,
            this.noticesTitle,
            this.notices,
            this.photo,
        );
        stream.on("phone", (state) => this.#show(state));
    }

    #show(state) {
        const fresh = state.notifications.length - this.#state.notifications.length;
        this.#state = state;
        if (this.#seen++ > 0 && fresh > 0) {
            this.banner.replaceChildren(h("small", {}, "Sentrel · now"), state.notifications[0].text);
            this.banner.hidden = false;
            clearTimeout(this.timer);
            this.timer = setTimeout(() => (this.banner.hidden = true), 6000);
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
            ...latest.map(({ text, date }) => h("li", {}, text, h("span", { className: "quiet" }, this.#time(date)))),
        );
        this.refreshTimes();
    }

    #time(seconds) {
        const format = { hour: "2-digit", minute: "2-digit", timeZone: this.timeZone };
        return new Date(seconds * 1000).toLocaleTimeString([], format);
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
        set(name, { textContent: mac.name });
        set(state, { textContent: mac.isArmed ? "Armed" : "Disarmed", className: mac.isArmed ? "badge armed" : "badge" });
        set(arm, { textContent: mac.isArmed ? "Disarm" : "Arm", disabled: !mac.isCompatible });
        set(arm, { "aria-label": `${mac.isArmed ? "Disarm" : "Arm"} ${mac.name} from the phone` });
    }

    #alert(alert) {
        const about = h("span", { className: "quiet" }, `${alert.device}, ${this.#time(alert.date)}`);
        const text = h("div", {}, h("strong", {}, alert.title), about);
        if (!alert.photo) {
            return h("li", {}, text);
        }
        const picture = h("img", { src: alert.photo, alt: "", loading: "lazy" });
        const open = h("button", { type: "button", ariaLabel: `Photo: ${alert.title}` }, picture);
        open.addEventListener("click", () => {
            this.photo.replaceChildren(h("img", { src: alert.photo, alt: `The photo of the alert: ${alert.title}` }));
            this.photo.hidden = false;
            this.photo.focus();
        });
        return h("li", {}, open, text);
    }

    refreshTimes() {
        for (const seen of this.macs.querySelectorAll(".phone-mac > .quiet")) {
            set(seen, { textContent: `seen ${ago(this.now() - seen.lastSeen)}` });
        }
    }
}
