// Makes audible what the simulated speakers play.

import { h, icon, set } from "./dom.js";

export class Sound {
    #context = null;
    #output = null;
    #playing = new Map();
    #buffers = new Map();
    #wanted = [];
    #music = null;
    #hardware = null;

    constructor(stream) {
        this.button = h("button", { type: "button", className: "sound-button", onclick: () => this.#switch() });
        this.#showButton();
        stream.on("sound", (sounds) => {
            this.#wanted = sounds;
            this.#showButton();
            this.#follow();
        });
        stream.on("hardware", (hardware) => {
            this.#hardware = hardware;
            this.#followMusic();
        });
    }

    /// The node that a measurement may listen to; null while nothing is switched on.
    get output() {
        return this.#output;
    }

    get isOn() {
        return this.#context?.state === "running";
    }

    // Browsers let a page sound only after the person has done something on it.
    async #switch() {
        const isWanted = !this.isOn; // before there is a context: a new one may run at once
        if (!this.#context) {
            this.#context = new AudioContext();
            this.#output = this.#context.createGain();
            this.#output.connect(this.#context.destination);
        }
        await (isWanted ? this.#context.resume() : this.#context.suspend());
        this.#showButton();
        this.#follow();
        this.#followMusic();
    }

    // Its text names its action. Until it has been used, it asks for attention.
    #showButton() {
        const silence = this.#wanted.length > 0 ? "Hear the alarm" : "Turn sound on";
        const text = this.isOn ? "Turn sound off" : silence;
        this.button.replaceChildren(icon(this.isOn ? "muted" : "speaker"), h("span", {}, text));
        this.button.classList.toggle("default", !this.#context || (!this.isOn && this.#wanted.length > 0));
        set(this.button, { title: "Hear what the MacBook's speakers play" });
    }

    async #bufferOf(url) {
        if (!this.#buffers.has(url)) {
            const load = async () => this.#context.decodeAudioData(await (await fetch(url)).arrayBuffer());
            this.#buffers.set(url, load());
        }
        return this.#buffers.get(url);
    }

    async #follow() {
        if (!this.isOn) {
            return;
        }
        for (const [id, { source }] of this.#playing) {
            if (!this.#wanted.some((sound) => sound.id === id)) {
                source?.stop();
                this.#playing.delete(id);
            }
        }
        for (const sound of this.#wanted) {
            const present = this.#playing.get(sound.id);
            if (present) {
                present.gain.gain.setTargetAtTime(sound.gain, this.#context.currentTime, 0.01);
            } else {
                await this.#begin(sound);
            }
        }
    }

    async #begin(sound) {
        const gain = this.#context.createGain();
        gain.gain.value = sound.gain;
        gain.connect(this.#output);
        const entry = { gain, source: null };
        this.#playing.set(sound.id, entry);
        const buffer = await this.#bufferOf(sound.url);
        if (this.#playing.get(sound.id) !== entry) {
            return; // it ended while its samples came
        }
        entry.source = new AudioBufferSourceNode(this.#context, { buffer, loop: sound.loops });
        entry.source.connect(gain);
        entry.source.start();
    }

    #followMusic() {
        if (!this.isOn || !this.#hardware) {
            return;
        }
        const { audio, music } = this.#hardware;
        const device = audio.devices.find((each) => each.isDefault);
        const level = music === "playing" && device && !device.isMuted ? device.volume * 0.5 : 0;
        if (!this.#music && level > 0) {
            const gain = new GainNode(this.#context, { gain: 0 });
            const tune = new AudioBufferSourceNode(this.#context, { buffer: tuneIn(this.#context), loop: true });
            tune.connect(gain).connect(this.#output);
            tune.start();
            this.#music = gain;
        }
        this.#music?.gain.setTargetAtTime(level, this.#context.currentTime, 0.05);
    }
}

// The music is nobody's recording: a few plucked notes, over and over, that tell that it plays.
function tuneIn(context) {
    const beat = 0.4; // seconds
    const notes = [220, 330, 440, 550, 494, 440, 330, 275, 185, 277, 370, 440, 415, 370, 277, 247]; // Hz
    const length = Math.round(beat * context.sampleRate);
    const buffer = new AudioBuffer({ length: notes.length * length, sampleRate: context.sampleRate });
    const samples = buffer.getChannelData(0);
    notes.forEach((frequency, index) => {
        for (let step = 0; step < 2 * length; ++step) {
            const time = step / context.sampleRate;
            const phase = 2 * Math.PI * frequency * time;
            const pluck = Math.min(time / 0.005, 1) * Math.exp(-4 * time) * (1 - step / (2 * length));
            samples[(index * length + step) % samples.length] +=
                0.25 * pluck * (Math.sin(phase) + 0.3 * Math.sin(2 * phase));
        }
    });
    return buffer;
}
