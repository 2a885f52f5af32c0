// Makes the alarm unmistakable for people who don't hear it: round the screen, under it, in the tab's title, and in a bar
// that stays in view on a small screen.

import { h, set } from "./dom.js";

const percent = (value) => `${Math.round(value * 100)} %`;

export class Alarm {
    #run = {};
    #hardware = null;
    #sounds = [];

    constructor(stream, phone) {
        this.phone = phone;
        this.chin = document.querySelector(".chin");
        this.told = document.getElementById("alarm-told");
        this.bar = document.getElementById("alarm-bar");
        this.barText = this.bar.firstElementChild;
        stream.on("run", (run) => (this.#run = run));
        stream.on("hardware", (hardware) => (this.#hardware = hardware));
        stream.on("sound", (sounds) => (this.#sounds = sounds));
        stream.on("state", () => this.#show());
    }

    #show() {
        const { isAlarmActive = false, title } = this.#run;
        const wasActive = document.body.classList.contains("alarm");
        document.body.classList.toggle("alarm", isAlarmActive);
        const name = title ? `${title} – Sentrel` : "Sentrel";
        document.title = isAlarmActive ? `🔴 ALARM – ${name}` : name;
        set(this.chin, { textContent: isAlarmActive ? this.#words() : "MacBook" });
        set(this.barText, { textContent: this.phone.latest || "The alarm sounds." });
        if (isAlarmActive !== wasActive) {
            // Once, however often its loudness changes.
            set(this.told, { textContent: isAlarmActive ? "The alarm sounds." : "The alarm has stopped." });
        }
    }

    #words() {
        const device = this.#hardware?.audio.devices.find(({ id }) => this.#sounds.some((sound) => sound.device === id));
        return device ? `ALARM · ${device.name} at ${percent(device.volume)}` : "ALARM";
    }
}
