import { h } from "./dom.js";
import { hardwareCards } from "./hardware.js";
import { Phone } from "./phone.js";
import { Screen } from "./screen.js";
import { onProblem, Stream } from "./server.js";
import { Sound } from "./sound.js";

const problemShown = 5000; // milliseconds
const storyKept = 200; // lines

const stream = new Stream();
const sound = new Sound(stream);
const screen = new Screen(document.getElementById("screen"), stream);

// The simulated world's clock goes on between two events.
const clock = { date: 0, taken: 0, language: "", zone: "", format: null };
const now = () => clock.date + (performance.now() - clock.taken) / 1000;

const phone = new Phone(document.getElementById("phone"), stream, now);
document.getElementById("hardware").append(...hardwareCards(stream, sound));

// An alarm is seen, too: most visitors come without sound.
stream.on("sound", (sounds) => document.querySelector(".macbook").classList.toggle("sounding", sounds.length > 0));

stream.on("run", (run) => {
    const { language, timeZone } = run;
    if (timeZone !== clock.zone || language !== clock.language) {
        clock.zone = phone.timeZone = timeZone;
        clock.language = screen.element.lang = language;
        const shown = { weekday: "short", hour: "2-digit", minute: "2-digit", timeZone };
        clock.format = new Intl.DateTimeFormat(language, shown);
    }
    Object.assign(clock, { date: run.date, taken: performance.now() });
    document.title = run.title ? `${run.title} – Sentrel` : "Sentrel";
    document.getElementById("ended").hidden = run.process === "running";
    tick();
});

function tick() {
    if (clock.date === 0) {
        return;
    }
    screen.showTime(clock.format.format(now() * 1000));
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
