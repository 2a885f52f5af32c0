// The MacBook as a thing: what a person, or a thief, does to it.

import { card, choice, h, set, slider } from "./dom.js";
import { act, latest, post } from "./server.js";
import { Trace } from "./trace.js";

const percent = (value) => `${Math.round(value * 100)} %`;

function button(label, action, className = "") {
    return h("button", { type: "button", className, onclick: action }, label);
}

/// A row of a label and what belongs to it.
function row(label, ...controls) {
    return h("div", { className: "row" }, h("span", { className: "row-label" }, label), ...controls);
}

function body(stream) {
    const power = choice("Charger", [["ac", "Plugged in"], ["battery", "Unplugged"]], (to) =>
        act(to === "ac" ? "plug-in" : "unplug"),
    );
    const lid = choice("Lid", [["open", "Open"], ["closed", "Closed"]], (to) =>
        act(to === "open" ? "open-lid" : "close-lid"),
    );
    const sleep = choice("System", [[false, "Awake"], [true, "Asleep"]], (asleep) => act(asleep ? "sleep" : "wake"));
    const displays = choice("Displays", [[1, "1"], [2, "2"], [3, "3"]], (count) => act({ displays: count }));
    const launch = button("Open", () => post("launch", {}), "default");
    const quit = button("Quit", () => act("quit"));
    const crash = button("Crash", () => act("crash"));
    for (const [control, name] of [[launch, "Open Sentrel"], [quit, "Quit Sentrel"], [crash, "Crash Sentrel"]]) {
        set(control, { "aria-label": name });
    }
    stream.on("run", (run) => {
        launch.hidden = run.process === "running";
        quit.hidden = crash.hidden = !launch.hidden;
    });
    stream.on("hardware", (hardware) => {
        power.show(hardware.power);
        lid.show(hardware.lid);
        sleep.show(hardware.isAsleep);
        displays.show(hardware.displays);
    });
    return card(
        "MacBook",
        row("Charger", power.element),
        row("Lid", lid.element),
        row("System", sleep.element),
        row("Displays", displays.element),
        row("Sentrel", h("div", { className: "buttons" }, launch, quit, crash)),
    );
}

// A hand on the machine: dragging the pad accelerates it, the further the harder.
function motion(stream) {
    const trace = new Trace(stream);
    const move = latest(([x, y, z]) => act({ accelerometer: { sample: [x, y, z] } }));
    const shake = async () => {
        for (let step = 0; step < 12; ++step) {
            const swing = 0.35 * (step % 2 === 0 ? 1 : -1);
            await act({ accelerometer: { sample: [swing, swing / 2, 1] } });
            await new Promise((done) => setTimeout(done, 40));
        }
        await act({ accelerometer: { sample: [0, 0, 1] } });
    };
    const tilt = slider("Tilt", { min: -45, max: 45, step: 1, text: (angle) => `${angle}°` }, (angle) => {
        const radians = (angle * Math.PI) / 180;
        move([Math.sin(radians), 0, Math.cos(radians)]);
    });
    tilt.show(0);
    return card(
        "Motion",
        trace.element,
        tilt.element,
        h(
            "div",
            { className: "buttons" },
            button("Nudge", () => act({ accelerometer: { sample: [0.05, 0.02, 1] } })),
            button("Shake", shake),
            button("Carry off", () => act({ accelerometer: { sample: [0.4, 0.3, 1.2] } })),
        ),
    );
}

function audio(stream) {
    const list = h("div", { className: "devices" });
    const rows = new Map();
    const music = choice("Music", [["playing", "Playing"], ["paused", "Paused"]], (to) =>
        act({ music: to === "playing" ? "play" : "pause" }),
    );
    const noMusic = h("span", { className: "quiet" }, "No player is open");
    const make = (device) => {
        const volume = slider(`Volume of ${device.name}`, { min: 0, max: 1, step: 0.01, text: percent }, latest((value) =>
            act({ volume: { device: device.id, value } }),
        ));
        const mute = button("Mute", () => act({ volume: { device: device.id, muted: !rows.get(device.id).isMuted } }));
        const use = button("Use", () => act({ "default-output": device.id }));
        const head = h("div", { className: "row" }, h("span", {}, device.name), h("div", { className: "buttons" }, use, mute));
        const element = h("div", { className: "device" }, head, volume.element);
        return { element, volume, mute, use, isMuted: false };
    };
    stream.on("hardware", (hardware) => {
        music.show(hardware.music);
        music.element.hidden = hardware.music === "absent";
        noMusic.hidden = !music.element.hidden;
        const present = new Set(hardware.audio.devices.map((device) => device.id));
        for (const [id, entry] of rows) {
            if (!present.has(id)) {
                entry.element.remove();
                rows.delete(id);
            }
        }
        for (const device of hardware.audio.devices) {
            if (!rows.has(device.id)) {
                rows.set(device.id, make(device));
                list.append(rows.get(device.id).element);
            }
            const entry = rows.get(device.id);
            entry.isMuted = device.isMuted;
            entry.volume.show(device.volume);
            set(entry.mute, { "aria-pressed": String(device.isMuted), "aria-label": `Mute ${device.name}` });
            set(entry.use, { "aria-pressed": String(device.isDefault), "aria-label": `Use ${device.name}` });
        }
    });
    return card("Sound", list, row("Music", music.element, noMusic));
}

function camera(stream) {
    const picture = h("img", { className: "scene", alt: "What the camera sees" });
    const lamp = h("span", { className: "lamp", role: "img" });
    const light = slider("Light", { min: 0, max: 1, step: 0.01, text: percent }, latest((brightness) =>
        act({ camera: { brightness } }),
    ));
    let webcam = null; // fetched when it is wanted: most visitors never do
    const source = choice("Camera sees", [["scene", "A café"], ["webcam", "Your webcam"]], async (to) => {
        webcam ??= new (await import("./webcam.js")).Webcam();
        await (to === "webcam" ? webcam.start() : webcam.stop());
    });
    stream.on("hardware", ({ camera: state }) => {
        light.show(state.brightness ?? 0);
        source.show(state.source);
        if (state.scene) {
            set(picture, { src: state.scene });
        }
        picture.hidden = !state.scene;
        lamp.classList.toggle("on", Boolean(state.lamp));
        set(lamp, { "aria-label": state.lamp ? "The camera is on" : "The camera is off" });
    });
    return card("Camera", h("div", { className: "scene-box" }, picture, lamp), light.element, row("Sees", source.element));
}

const faultChoices = [
    ["3", "network unavailable"],
    ["7", "rate limited"],
    ["6", "service unavailable"],
    ["23", "zone busy"],
    ["15", "request rejected"],
    ["25", "storage full"],
];

// Mostly for people who try out the product's ways in a bad network.
function cloud(stream) {
    const network = choice("Network", [["up", "Online"], ["down", "Offline"]], (to) => act({ network: to }));
    const account = choice("Account", [["available", "Signed in"], ["none", "Signed out"], ["other", "Someone else"]], (to) =>
        act({ icloud: to === "other" ? { account: "available", user: "other" } : { account: to } }),
    );
    const quota = choice("Storage", [["ok", "Free"], ["full", "Full"]], (to) => act({ icloud: { quota: to } }));
    const latency = slider("Answer delay", { min: 0, max: 20, step: 0.1, text: (s) => `${s.toFixed(1)} s` }, latest(
        (s) => act({ icloud: { latency: `${Math.round(s * 1000)}ms` } }),
    ));
    const fault = h("select", { ariaLabel: "What goes wrong" });
    fault.append(...faultChoices.map(([code, label]) => h("option", { value: code }, label)));
    const failing = h("p", { className: "quiet" });
    stream.on("cloud", (state) => {
        network.show(state.network);
        const isOther = state.account === "available" && state.user === "other";
        account.show(isOther ? "other" : state.account);
        quota.show(state.quota);
        latency.show(state.latency);
        const faults = state.faults.map((each) => (each.times < 0 ? each.name : `${each.name} × ${each.times}`));
        failing.textContent = faults.join(", ") || `${state.requests} requests so far`;
    });
    const states = h("div", { className: "half" }, row("Network", network.element), row("Account", account.element));
    states.append(row("Storage", quota.element), latency.element);
    const troubles = h(
        "div",
        { className: "half" },
        row("Fault", fault),
        h(
            "div",
            { className: "buttons" },
            button("Fail 3 times", () => act({ icloud: { fail: { code: Number(fault.value), times: 3 } } })),
            button("Lose one answer", () => act({ icloud: { loseAnswers: 1 } })),
            button("Clear", () => act({ icloud: { fail: "none" } })),
        ),
        failing,
    );
    const whole = card("Network and iCloud", h("div", { className: "halves" }, states, troubles));
    whole.classList.add("wide");
    return whole;
}

export function hardwareCards(stream) {
    return [body(stream), motion(stream), audio(stream), camera(stream), cloud(stream)];
}
