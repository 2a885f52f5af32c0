// The phone beside the Mac.

import { h, set } from "./dom.js";
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

export class Phone {
    #state = { alerts: [], notifications: [], macs: [] };
    #seen = 0;

    constructor(element, stream, now) {
        this.now = now;
        this.banner = h("div", { className: "banner", role: "status", hidden: true });
        this.macs = h("div", { className: "phone-macs" });
        this.alerts = h("ul", { className: "phone-alerts" });
        this.photo = h("button", { type: "button", className: "phone-photo", hidden: true, ariaLabel: "Close photo" });
        this.photo.addEventListener("click", () => {
            this.photo.hidden = true;
        });
        element.append(
            h("div", { className: "phone-notch", ariaHidden: "true" }),
            this.banner,
            h("h2", {}, "Sentrel"),
            this.macs,
            h("h3", {}, "Alerts"),
            this.alerts,
            this.photo,
        );
        stream.on("phone", (state) => this.#show(state));
    }

    #show(state) {
        const fresh = state.notifications.length - this.#state.notifications.length;
        this.#state = state;
        if (this.#seen++ > 0 && fresh > 0) {
            this.banner.textContent = state.notifications[0].text;
            this.banner.hidden = false;
            clearTimeout(this.timer);
            this.timer = setTimeout(() => (this.banner.hidden = true), 6000);
        }
        this.macs.replaceChildren(...state.macs.map((mac) => this.#mac(mac)));
        if (state.macs.length === 0) {
            this.macs.append(h("p", { className: "quiet" }, "No Mac has been seen in this account."));
        }
        this.alerts.replaceChildren(...state.alerts.slice(0, longestShown).map((alert) => this.#alert(alert)));
        if (state.alerts.length === 0) {
            this.alerts.append(h("li", { className: "quiet" }, "No alerts"));
        }
        this.refreshTimes();
    }

    #mac(mac) {
        const state = h("span", { className: mac.isArmed ? "badge armed" : "badge" }, mac.isArmed ? "Armed" : "Disarmed");
        const seen = h("span", { className: "quiet" });
        seen.lastSeen = mac.lastSeen;
        const arm = h("button", { type: "button", onclick: () => act({ phone: { arm: !mac.isArmed } }) });
        set(arm, { textContent: mac.isArmed ? "Disarm" : "Arm", disabled: !mac.isCompatible });
        set(arm, { "aria-label": `${mac.isArmed ? "Disarm" : "Arm"} ${mac.name} from the phone` });
        return h("div", { className: "phone-mac" }, h("strong", {}, mac.name), state, seen, arm);
    }

    #alert(alert) {
        const date = new Date(alert.date * 1000);
        const time = date.toLocaleTimeString([], { hour: "2-digit", minute: "2-digit", timeZone: this.timeZone });
        const text = h("div", {}, h("strong", {}, alert.title), h("span", { className: "quiet" }, `${alert.device}, ${time}`));
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
