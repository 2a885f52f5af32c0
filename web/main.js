import { Alarm } from "./alarm.js";
import { Guide } from "./guide.js";
import { h, icon, set } from "./dom.js";
import { hardwareCards } from "./hardware.js";
import { Phone } from "./phone.js";
import { Screen } from "./screen.js";
import { onProblem, post, Stream } from "./server.js";
import { Sound } from "./sound.js";

const problemShown = 5000; // milliseconds
const storyKept = 200; // lines

const stream = new Stream();
const sound = new Sound(stream);
const screen = new Screen(document.getElementById("screen"), stream);

// The simulated world's clock goes on between two events.
const clock = { date: 0, taken: 0, language: "", zone: "", day: null, time: null };
const now = () => clock.date + (performance.now() - clock.taken) / 1000;

const phone = new Phone(document.getElementById("phone"), stream, now);
document.getElementById("hardware").append(...hardwareCards(stream));
new Alarm(stream, phone);

const guide = new Guide(stream, sound);
const show = showButton();
const reset = h("button", { type: "button", onclick: () => post("replace", {}) }, "New Mac");
set(reset, { title: "Starts over with a new MacBook" });
document.getElementById("offers").append(guide.button, show, sound.button, reset);

/// Plays a theft, or stops it. Its steps are fetched when it is wanted.
function showButton() {
    let playing = null;
    const button = h("button", { type: "button" });
    const label = () =>
        button.replaceChildren(icon(playing ? "stop" : "play"), h("span", {}, playing ? "Stop the theft" : "Play a theft"));
    button.addEventListener("click", async () => {
        if (playing) {
            playing.abort();
            return;
        }
        playing = new AbortController();
        label();
        guide.end();
        const { playTheft } = await import("./theft.js");
        await playTheft(stream, document.getElementById("caption"), playing.signal);
        playing = null;
        label();
    });
    label();
    return button;
}

stream.on("run", (run) => {
    const { language, timeZone } = run;
    if (timeZone !== clock.zone || language !== clock.language) {
        clock.zone = timeZone;
        clock.language = language;
        const format = (shown) => new Intl.DateTimeFormat(language, { ...shown, timeZone });
        clock.day = format({ weekday: "short", month: "short", day: "numeric" });
        clock.time = format({ hour: "numeric", minute: "2-digit" });
    }
    Object.assign(clock, { date: run.date, taken: performance.now() });
    document.getElementById("ended").hidden = run.process === "running";
    tick();
});

function tick() {
    if (clock.date === 0) {
        return;
    }
    screen.showTime(clock.day.format(now() * 1000), clock.time.format(now() * 1000));
    phone.refreshTimes();
}
setInterval(tick, 1000);

const story = document.getElementById("story");
stream.on("story", ({ from, lines }) => {
    if (from === 0) {
        story.replaceChildren();
    }
    for (const line of lines) {
        const minutes = Math.floor(line.at / 60);
        const seconds = (line.at % 60).toFixed(1).padStart(4, "0");
        story.append(h("li", {}, h("time", {}, `${minutes}:${seconds}`), line.text));
    }
    while (story.childElementCount > storyKept) {
        story.firstElementChild.remove();
    }
    // In the frame, whose layout is due anyway.
    requestAnimationFrame(() => (story.scrollTop = story.scrollHeight));
});

const problem = document.getElementById("problem");
onProblem((text) => {
    problem.textContent = text;
    problem.hidden = false;
    clearTimeout(problem.timer);
    problem.timer = setTimeout(() => (problem.hidden = true), problemShown);
});

stream.on("connected", (isConnected) => {
    document.body.classList.toggle("offline", !isConnected);
});
const connection = document.querySelector(".connection");
const connecting = connection.textContent;
stream.on("refused", (why) => {
    connection.textContent = why || connecting;
});

// For measurements from outside: what the page hears.
globalThis.sentrelSound = sound;
stream.open();
