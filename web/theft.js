// A theft that plays by itself, with captions in the Mac's language: that of scenarios/cafe-theft.yaml, in half its time.

import { set } from "./dom.js";
import { act } from "./server.js";

/// The loudspeakers that the thief reaches for.
const quieten = (change) => (hardware) => {
    const device = hardware.audio.devices.find((each) => each.isDefault);
    return device && { volume: { device: device.id, ...change } };
};

// Each step waits so many seconds, tells, and does something.
const theft = [
    [0, "Maya sits in a café. She arms Sentrel, and goes for a second coffee.", "arm"],
    [4, "Somebody sits down at her table …"],
    [4, "… and pulls the charger.", "unplug"],
    [3, "The alarm sounds, the camera has taken a photo, and Maya's phone shows both."],
    [4, "Heads turn. The thief snaps the lid shut. The alarm goes on.", "close-lid"],
    [4, "At the counter the phone has buzzed twice. Maya turns round."],
    [3, "The thief opens the lid, and turns the sound down …", "open-lid"],
    [1, "", quieten({ value: 0.1 })],
    [2, "… and Sentrel turns it up again."],
    [2, "He mutes it. Sentrel does not stay mute.", quieten({ muted: true })],
    [4, "He lets go and walks away. Maya is back, and stops the alarm with her login.", "stop-alarm"],
    [4, "The music stays paused, and the speakers are as she left them.", "disarm"],
    [4, ""],
];

const wait = (seconds, signal) =>
    new Promise((done) => {
        const timer = setTimeout(done, seconds * 1000);
        signal.addEventListener("abort", () => (clearTimeout(timer), done()));
    });

/// The captions in English.
export const captions = theft.map(([, text]) => text).filter(Boolean);

/// The captions in a language, and what that language is.
async function captionsIn(tag) {
    const others = tag.startsWith("en") ? undefined : (await import("./captions.js")).captionsFor(tag);
    return others ? { lang: tag, texts: others } : { lang: "en", texts: captions };
}

/// Plays until it has ended, or the signal stops it.
export async function playTheft(stream, caption, signal) {
    const { lang, texts } = await captionsIn(stream.state.run.language);
    set(caption, { lang });
    await setTheScene(stream.state);
    for (const [pause, text, action] of theft) {
        await wait(pause, signal);
        if (signal.aborted) {
            break;
        }
        if (text || !action) {
            set(caption, { textContent: texts[captions.indexOf(text)] ?? "" });
        }
        const wanted = typeof action === "function" ? action(stream.state.hardware) : action;
        if (wanted) {
            await act(wanted);
        }
    }
    set(caption, { textContent: "" });
}

// The Mac as Maya has it before the theft, whatever the visitor has done to it.
async function setTheScene({ run, hardware }) {
    const needed = [
        run.process === "ended" && "relaunch",
        run.isAlarmActive && "stop-alarm",
        run.isArmed && "disarm",
        hardware.isAsleep && "wake",
        hardware.lid === "closed" && "open-lid",
        hardware.power !== "ac" && "plug-in",
        hardware.music === "paused" && { music: "play" },
    ];
    for (const action of needed.filter(Boolean)) {
        await act(action);
    }
}
